// The pages Symbols and Table, held against what the command prints for the same question.
import assert from 'node:assert/strict';
import {readFileSync, writeFileSync} from 'node:fs';
import path from 'node:path';
import {test} from 'node:test';
import {settled, texts, ztb} from './browser.mjs';
import {makeDiet, rowsOf} from './data.mjs';
import {click, heads, saved, seen, shownRows, suite, textOf, view} from './suite.mjs';

suite(makeDiet, 'diet.rxf');

const records = (...words) => rowsOf(ztb(seen.folder, 'show', 'diet.rxf', ...words, '--csv')).slice(1);
// What has room is shown, so the first rows of all.
async function expectRows(expected) {
  const rows = await shownRows();
  assert.ok(rows.length >= Math.min(10, expected.length), `${rows.length} rows`);
  assert.deepEqual(rows, expected.slice(0, rows.length));
}

test('symbols are listed with what the command tells of them', async () => {
  await view('view=symbols', '.list');
  const {symbols} = JSON.parse(ztb(seen.folder, 'info', 'diet.rxf', '--json'));
  const rows = await shownRows('.list');
  assert.deepEqual(rows.map((row) => [row[0], row[1], row[3]]),
    symbols.map((symbol) => [symbol.name, symbol.type, String(symbol.records)]));
  assert.equal(rows[0][4], 'Foods and their units');
});

test('symbols are searched as one types', async () => {
  await seen.page.keyboard.press('/');
  await seen.page.keyboard.type('nutri');
  assert.deepEqual(await texts(seen.page, '#symbol-groups .name'), ['nutrient', 'requirement', 'nutrition']);
  assert.deepEqual((await shownRows('.list')).map((row) => row[0]), ['nutrient', 'requirement', 'nutrition']);
  await seen.page.click('#symbol-search', {count: 3});
  await seen.page.keyboard.press('Backspace');
  assert.equal((await texts(seen.page, '#symbol-groups .name')).length, 5);
});

test('a click on a symbol shows its records', async () => {
  await seen.page.locator('#symbol-groups button ::-p-text(nutrition)').click();
  await seen.page.waitForSelector('.grid tbody td');
  await settled(seen.page);
  assert.deepEqual(await heads(), ['food', 'nutrient', 'value']);
  await expectRows(records('nutrition'));
  assert.match(await seen.page.$eval('#row-total', (total) => total.textContent), /^570 records$/);
});

test('a set shows its texts', async () => {
  await view('view=table&s=food', '.grid tbody td');
  await expectRows(records('food'));
});

test('keys scroll to the end and back', async () => {
  await view('view=table&s=nutrition', '.grid tbody td');
  const all = records('nutrition');
  await seen.page.focus('.scroller');
  await seen.page.keyboard.press('End');
  await settled(seen.page);
  const rows = await shownRows();
  assert.deepEqual(rows, all.slice(-rows.length));
  await seen.page.keyboard.press('PageUp');
  await seen.page.keyboard.press('ArrowDown');
  await settled(seen.page);
  const second = await shownRows();
  assert.deepEqual(second, all.slice(all.length - 2 * rows.length + 2, all.length - rows.length + 2));
  await seen.page.keyboard.press('Home');
  await settled(seen.page);
  await expectRows(all);
});

test('a click on a column sorts by it, down and up', async () => {
  await view('view=table&s=price', '.grid tbody td');
  await click('#sort-1');
  assert.equal(await seen.page.$eval('th[aria-sort]', (head) => head.getAttribute('aria-sort')), 'ascending');
  await expectRows(records('price', '--sort', 'value'));
  await click('#sort-1');
  assert.equal(await seen.page.$eval('th[aria-sort]', (head) => head.getAttribute('aria-sort')), 'descending');
  await expectRows(records('price', '--sort', 'value', '--descending'));
  await click('#sort-1');
  await expectRows(records('price'));
});

test('a pattern filters a position', async () => {
  await view('view=table&s=nutrition', '.grid tbody td');
  await click('#filter-0');
  await seen.page.type('#filter-pattern', '*beans*');
  await seen.page.keyboard.press('Enter');
  await settled(seen.page);
  const expected = records('nutrition', '--slice', '*beans*,*');
  await expectRows(expected);
  assert.equal(await seen.page.$eval('#row-total', (total) => total.textContent), `${expected.length} records of 570`);
});

test('labels with their counts are ticked', async () => {
  await view('view=table&s=nutrition', '.grid tbody td');
  await click('#filter-1');
  await seen.page.waitForSelector('.labels li');
  const listed = await seen.page.$$eval('.labels li', (lines) => lines.map((line) =>
    [line.querySelector('.name').textContent, Number(line.querySelector('.count').textContent)]));
  const counted = rowsOf(ztb(seen.folder, 'aggregate', 'diet.rxf', 'nutrition', '--by', 'nutrient', '--count', '--csv')).slice(1);
  assert.deepEqual(new Map(listed), new Map(counted.map(([label, count]) => [label, Number(count)])));
  await seen.page.locator('.labels ::-p-text(iron_mg)').click();
  await seen.page.keyboard.press('Escape');
  await click('#filter-1');
  await seen.page.waitForSelector('.labels li');
  await seen.page.locator('.labels ::-p-text(iron_mg)').click();
  await seen.page.locator('.labels ::-p-text(protein_g)').click();
  await seen.page.locator('dialog button.main').click();
  await settled(seen.page);
  await expectRows(records('nutrition').filter((row) => ['iron_mg', 'protein_g'].includes(row[1])));
});

test('a condition filters values as ztb where does', async () => {
  await view('view=table&s=nutrition', '.grid tbody td');
  await seen.page.type('#where', "value > 300 and food = 'w*'");
  await seen.page.keyboard.press('Enter');
  await settled(seen.page);
  ztb(seen.folder, 'where', 'diet.rxf', 'some.rxf', '--symbol', 'nutrition', '--where', "value > 300 and food = 'w*'");
  const expected = rowsOf(ztb(seen.folder, 'show', 'some.rxf', 'nutrition', '--csv')).slice(1);
  assert.ok(expected.length > 0);
  await expectRows(expected);
});

test('columns are hidden', async () => {
  await view('view=table&s=nutrition&hide=1', '.grid tbody td');
  assert.deepEqual(await heads(), ['food', 'value']);
  await expectRows(records('nutrition').map((row) => [row[0], row[2]]));
});

test('what is shown is saved as CSV, Excel and RXF', async () => {
  await view('view=table&s=nutrition&p0=*beans*', '.grid tbody td');
  const expected = ztb(seen.folder, 'show', 'diet.rxf', 'nutrition', '--slice', '*beans*,*', '--csv');
  assert.deepEqual(rowsOf((await saved('#export-csv', 'nutrition.csv')).toString()), rowsOf(expected));
  writeFileSync(path.join(seen.folder, 'back.rxf'), await saved('#export-rxf', 'nutrition.rxf'));
  assert.equal(ztb(seen.folder, 'show', 'back.rxf', 'nutrition', '--csv'), expected);
  writeFileSync(path.join(seen.folder, 'back.xlsx'), await saved('#export-xlsx', 'nutrition.xlsx'));
  assert.equal(readFileSync(path.join(seen.folder, 'back.xlsx')).subarray(0, 2).toString(), 'PK');
});

test('a file tells what it cannot keep: RXF has all positions, in its own order', async () => {
  await view('view=table&s=nutrition&p0=*beans*', '.grid tbody td');
  assert.equal(await seen.page.$('#rxf-keeps'), null);
  await view('view=table&s=nutrition&p0=*beans*&hide=1&sort=value', '.grid tbody td');
  assert.equal(await textOf('#rxf-keeps'), 'RXF keeps the filters; it has all positions, in its own order.');
  writeFileSync(path.join(seen.folder, 'back.rxf'), await saved('#export-rxf', 'nutrition.rxf'));
  assert.equal(ztb(seen.folder, 'show', 'back.rxf', 'nutrition', '--csv'),
    ztb(seen.folder, 'show', 'diet.rxf', 'nutrition', '--slice', '*beans*,*', '--csv'));
  assert.match(await textOf('#said'), /saved, with all positions in the order of the file$/);
});

test('Copy takes all rows that are shown, in their columns and order', async () => {
  await seen.browser.browser.defaultBrowserContext().overridePermissions(new URL(seen.link).origin, ['clipboard-read', 'clipboard-write', 'clipboard-sanitized-write']);
  await seen.page.bringToFront();
  await view('view=table&s=nutrition&sort=value&desc=1&hide=1', '.grid tbody td');
  await click('#copy');
  await seen.page.waitForFunction(() => /copied/.test(document.getElementById('said').textContent));
  assert.equal(await textOf('#said'), '570 rows copied');
  const copied = await seen.page.evaluate(() => navigator.clipboard.readText());
  const expected = records('nutrition', '--sort', 'value', '--descending');
  assert.deepEqual(copied.trimEnd().split('\n').map((line) => line.split('\t')),
    [['food', 'value'], ...expected.map((row) => [row[0], row[2]])]);
});

// What is printed when the browser is asked to.
const printed = () => seen.page.evaluate(() => globalThis.printedRows);
const notePrinting = () => seen.page.evaluate(() => {
  globalThis.printedRows = null;
  globalThis.print = () => {
    globalThis.printedRows = [...document.querySelectorAll('.printed tbody tr')].map((row) => [...row.cells].map((cell) => cell.textContent));
  };
});

test('all rows of a table are printed, by the button, by keys, and by the menu of the browser', async () => {
  await view('view=table&s=nutrition&p1=*_mg', '.grid tbody td');
  const expected = records('nutrition', '--slice', '*,*_mg');
  assert.ok(expected.length > 250);
  await notePrinting();
  await click('#print');
  assert.deepEqual(await printed(), expected);
  await notePrinting();
  await seen.page.keyboard.down('Control');
  await seen.page.keyboard.press('p');
  await seen.page.keyboard.up('Control');
  await settled(seen.page);
  assert.deepEqual(await printed(), expected);
  await seen.page.evaluate(() => dispatchEvent(new Event('afterprint')));
  assert.equal(await seen.page.$('.printed tr'), null);
  await seen.page.evaluate(() => dispatchEvent(new Event('beforeprint')));
  assert.deepEqual(await shownRows('.printed'), expected);
  await seen.page.evaluate(() => dispatchEvent(new Event('afterprint')));
});

test('a link holds the view and not the token', async () => {
  await view('view=table&s=nutrition&p0=*beans*&hide=1', '.grid tbody td');
  const rows = await shownRows();
  await click('#copy-link');
  const link = await seen.page.$eval('dialog input', (input) => input.value);
  assert.match(link, /#view=table&s=nutrition&p0=\*beans\*|#view=table&s=nutrition&p0=%2Abeans%2A|p0=/);
  assert.doesNotMatch(link, /token|key/);
  await seen.page.keyboard.press('Escape');
  const token = new URL(seen.link).hash.slice(1);
  const other = await seen.browser.page(`${link}&${token}`);
  await other.waitForSelector('.grid tbody td');
  await settled(other);
  assert.deepEqual(await other.$$eval('.grid tbody tr', (all) => all.map((row) => [...row.cells].map((cell) => cell.textContent))), rows);
  assert.doesNotMatch(other.url(), /token/);
  assert.deepEqual(other.problems, []);
  await other.close();
});

test('a wrong condition is told', async () => {
  await view('view=table&s=price&where=value+%3E', '.problem');
  assert.match(await seen.page.$eval('.problem', (place) => place.textContent), /\S/);
  // The browser notes the status of the answer itself.
  seen.page.problems = seen.page.problems.filter((text) => !/Failed to load resource/.test(text));
});
