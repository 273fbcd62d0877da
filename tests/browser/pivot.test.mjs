// The page Pivot, held against ztb pivot and ztb aggregate.
import assert from 'node:assert/strict';
import {test} from 'node:test';
import {settled, ztb} from './browser.mjs';
import {makeDiet, rowsOf} from './data.mjs';
import {heads, seen, shownRows, suite, view} from './suite.mjs';

suite(makeDiet, 'diet.rxf');

const csv = (...words) => rowsOf(ztb(seen.folder, ...words, '--csv'));
const zone = (name) => seen.page.$$eval(`#zone-${name} .chip`, (chips) => chips.map((chip) => chip.textContent));

test('two positions make the table of ztb pivot', async () => {
  await view('view=pivot&s=nutrition', '.pivot tbody td');
  const expected = csv('pivot', 'diet.rxf', 'nutrition', '--rows', 'food', '--columns', 'nutrient');
  assert.deepEqual(await heads('.pivot'), expected[0]);
  assert.deepEqual(await shownRows('.pivot'), expected.slice(1));
});

test('arrow keys move a position, and what is in no place is summed over', async () => {
  await view('view=pivot&s=nutrition', '.pivot tbody td');
  await seen.page.focus('#position-1');
  await seen.page.keyboard.press('ArrowRight');
  await settled(seen.page);
  assert.deepEqual([await zone('rows'), await zone('cols'), await zone('over')], [['food'], [], ['nutrient']]);
  assert.equal(await seen.page.evaluate(() => document.activeElement.id), 'position-1');
  const expected = csv('aggregate', 'diet.rxf', 'nutrition', '--by', 'food', '--sum').slice(1);
  const rows = await shownRows('.pivot');
  assert.deepEqual(rows, expected.slice(0, rows.length));
  assert.equal(rows.length, expected.length);
});

test('each way of summing up is that of ztb aggregate', async () => {
  for (const how of ['sum', 'mean', 'count', 'min', 'max']) {
    await view(`view=pivot&s=nutrition&rows=1&over=0&how=${how}`, '.pivot tbody td');
    const expected = csv('aggregate', 'diet.rxf', 'nutrition', '--by', 'nutrient', `--${how}`).slice(1);
    assert.deepEqual(new Map(await shownRows('.pivot')), new Map(expected), how);
  }
});

test('a position is dragged to another place', async () => {
  await view('view=pivot&s=nutrition', '.pivot tbody td');
  const from = await seen.page.$('#position-0');
  const to = await seen.page.$('#zone-cols');
  await seen.page.evaluate((chip, place) => {
    const data = new DataTransfer();
    chip.dispatchEvent(new DragEvent('dragstart', {dataTransfer: data, bubbles: true}));
    place.dispatchEvent(new DragEvent('drop', {dataTransfer: data, bubbles: true}));
  }, from, to);
  await settled(seen.page);
  assert.deepEqual([await zone('rows'), await zone('cols')], [[], ['nutrient', 'food']]);
});

test('filters hold for a pivot', async () => {
  await view('view=pivot&s=nutrition&p0=*beans*', '.pivot tbody td');
  const expected = csv('pivot', 'diet.rxf', 'nutrition', '--rows', 'food', '--columns', 'nutrient', '--slice', '*beans*,*');
  assert.deepEqual(await heads('.pivot'), expected[0]);
  assert.deepEqual(await shownRows('.pivot'), expected.slice(1));
});

test('a heat map colours cells by their size', async () => {
  await view('view=pivot&s=nutrition', '.pivot tbody td');
  await seen.page.focus('#heat');
  await seen.page.keyboard.press('Space');
  await settled(seen.page);
  assert.equal(await seen.page.evaluate(() => document.activeElement.id), 'heat');
  const shares = await seen.page.$$eval('.pivot tbody td', (cells) => cells.map((cell) =>
    [Number(cell.textContent), Number.parseFloat(cell.style.getPropertyValue('--heat'))]).filter(([, share]) => share >= 0));
  const greatest = Math.max(...shares.map(([value]) => value));
  assert.ok(shares.length > 500);
  for (const [value, share] of shares) assert.ok(Math.abs(share - 70 * value / greatest) <= 0.51, `${value}: ${share}`);
});
