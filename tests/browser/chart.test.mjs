// The page Chart: its values are those of the command, and its pictures are saved.
import assert from 'node:assert/strict';
import {test} from 'node:test';
import {ztb} from './browser.mjs';
import {makeDiet, rowsOf} from './data.mjs';
import {saved, seen, shownRows, suite, view} from './suite.mjs';

suite(makeDiet, 'diet.rxf');

const csv = (...words) => rowsOf(ztb(seen.folder, ...words, '--csv')).slice(1);

test('bars have the values of the records', async () => {
  await view('view=chart&s=price&type=bar', '.chart');
  const expected = csv('show', 'diet.rxf', 'price');
  assert.deepEqual(await shownRows('.values'), expected);
  assert.deepEqual(await seen.page.$$eval('.chart rect title', (titles) => titles.map((title) => title.textContent)),
    expected.map(([label, value]) => `${label}: ${value}`));
  const heights = await seen.page.$$eval('.chart rect', (bars) => bars.map((bar) => Number(bar.getAttribute('height'))));
  const greatest = Math.max(...expected.map(([, value]) => Number(value)));
  const tallest = Math.max(...heights);
  expected.forEach(([label, value], index) =>
    assert.ok(Math.abs(heights[index] - tallest * value / greatest) < 0.6, `${label}: ${heights[index]}`));
});

for (const type of ['line', 'area', 'scatter']) {
  test(`${type}: series over a position are those of ztb pivot`, async () => {
    await view(`view=chart&s=nutrition&x=1&by=0&type=${type}&p0=*beans*`, '.values');
    const [head, ...rows] = rowsOf(ztb(seen.folder, 'pivot', 'diet.rxf', 'nutrition', '--rows', 'nutrient', '--columns', 'food',
      '--slice', '*beans*,*', '--csv'));
    assert.deepEqual(await shownRows('.values'), rows);
    assert.deepEqual(await seen.page.$$eval('.values thead th', (all) => all.map((one) => one.textContent)), head);
    assert.equal(await seen.page.$$eval('.uplot canvas', (all) => all.length), type === 'area' ? 0 : 1);
  });
}

test('small multiples are one for each label', async () => {
  await view('view=chart&s=nutrition&x=1&each=0&type=bar&p0=*beans*', '.chart');
  const expected = new Set(csv('show', 'diet.rxf', 'nutrition', '--slice', '*beans*,*').map(([food]) => food));
  assert.deepEqual(new Set(await seen.page.$$eval('figcaption', (all) => all.map((one) => one.textContent))), expected);
});

test('a distribution counts every value once', async () => {
  await view('view=chart&s=nutrition&type=spread', '.chart');
  const rows = await shownRows('.values');
  const values = csv('show', 'diet.rxf', 'nutrition').map((row) => Number(row[2]));
  assert.equal(rows.reduce((sum, [, count]) => sum + Number(count), 0), values.length);
  const facts = Object.fromEntries(await seen.page.$$eval('.numbers div', (all) => all.map((one) =>
    [one.querySelector('dt').textContent, Number(one.querySelector('dd').textContent.replace(/,/g, ''))])));
  assert.equal(facts.Values, values.length);
  assert.equal(facts.Least, Math.min(...values));
  assert.equal(facts.Greatest, Math.max(...values));
  assert.ok(Math.abs(facts.Mean - values.reduce((sum, value) => sum + value, 0) / values.length) < 1e-3);
});

test('a chart is saved as SVG and PNG', async () => {
  await view('view=chart&s=nutrition&x=1&by=0&type=line&p0=*beans*', '.values');
  const svg = (await saved('#save-svg', 'nutrition.svg')).toString();
  assert.match(svg, /^<svg xmlns="http:\/\/www.w3.org\/2000\/svg"/);
  const foods = new Set(csv('show', 'diet.rxf', 'nutrition', '--slice', '*beans*,*').map(([food]) => food));
  for (const food of foods) assert.ok(svg.includes(`>${food}</text>`), food);
  assert.equal(svg.match(/<path [^>]*stroke-width="1.8"/g).length, foods.size);
  const png = await saved('#save-png', 'nutrition.png');
  assert.equal(png.subarray(1, 4).toString(), 'PNG');
  assert.equal(png.readUInt32BE(16), 1520);
});
