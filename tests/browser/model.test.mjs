// The page Model, held against ztb model and ztb solve.
import assert from 'node:assert/strict';
import {test} from 'node:test';
import {settled, texts, ztb} from './browser.mjs';
import {makeDiet, makeEndless, rowsOf} from './data.mjs';
import {cancel, click, found, heads, seen, shownRows, suite, textOf, view} from './suite.mjs';

suite((folder) => {
  makeDiet(folder);
  makeEndless(folder);
}, 'diet.lp', 'endless.lp');

test('a model has one page, with the families of ztb model', async () => {
  await view('', '#model-total');
  assert.deepEqual(await texts(seen.page, '#pages button'), ['Model']);
  const {families} = JSON.parse(ztb(seen.folder, 'model', 'diet.lp', '--json'));
  const range = (pair) => pair === null ? '' : pair[0] === pair[1] ? String(pair[0]) : pair.join(' to ');
  assert.deepEqual(await shownRows('[aria-label="Families"]'), families.map((one) => [one.name, one.of, String(one.dimension),
    String(one.count), one.kind, String(one.entries), range(one.coefficients), range(one.sides)]));
});

test('the picture has a dot for each place with an entry, and none elsewhere', async () => {
  await view('', '#model-total');
  const [rows, columns] = (await seen.page.$eval('#model-total', (place) => place.textContent)).match(/\d+/g).map(Number);
  assert.deepEqual([rows, columns], [10, 163]);
  const dots = await seen.page.$$eval('.matrix rect', (all) => all.map((dot) => [Number(dot.getAttribute('x')), Number(dot.getAttribute('y'))]));
  // What ztb model counts: 77 prices, 647 of the foods that are bought, 9 allowances.
  assert.equal(dots.length, 77 + 647 + 9);
  // The allowances are a diagonal: one entry in each of the last nine columns.
  assert.equal(new Set(dots.map(([x, y]) => `${x} ${y}`)).size, dots.length);
  const [, , width, height] = (await seen.page.$eval('.matrix', (picture) => picture.getAttribute('viewBox'))).split(' ').map(Number);
  for (const [x, y] of dots) assert.ok(x < width && y < height);
  const last = dots.filter(([x]) => x >= width - 9).map(([, y]) => y);
  assert.deepEqual(last.sort((left, right) => left - right), [1, 2, 3, 4, 5, 6, 7, 8, 9]);
});

test('blocks of the matrix are those of its families', async () => {
  await view('', '#model-total');
  assert.deepEqual((await shownRows('[aria-label="Blocks"]')).map((row) => row.slice(0, 4)), [
    ['cost', 'price_var', '1 × 77', '77'], ['cost', 'buy', '1 × 77', '77'], ['enough', 'buy', '9 × 77', '570'], ['enough', 'allowance_var', '9 × 9', '9']]);
  assert.deepEqual(await texts(seen.page, '.block title'), ['cost by price_var: 77 entries', 'cost by buy: 77 entries',
    'enough by buy: 570 entries', 'enough by allowance_var: 9 entries']);
});

// Of each record what ztb solve shows.
const solvedRecords = (symbol) => rowsOf(ztb(seen.folder, 'solve', 'diet.lp', '--show', symbol, '--csv')).slice(1);

test('Solve shows levels and marginals of ztb solve, and the way to the nearer bound', async () => {
  await view('', '#model-total');
  await click('#solve button.main');
  await seen.page.waitForSelector('#solve-facts');
  const {objective, status} = JSON.parse(ztb(seen.folder, 'solve', 'diet.lp', '--json'));
  const facts = Object.fromEntries(await seen.page.$$eval('#solve-facts div', (all) => all.map((one) => [...one.children].map((part) => part.textContent))));
  assert.equal(facts.Status, status);
  assert.equal(Number(facts.Objective), objective);
  await click('#solution-enough');
  const expected = solvedRecords('enough');
  const rows = await shownRows('[aria-label="Solution of enough"]');
  assert.deepEqual(rows.map((row) => row.slice(0, 5)), expected.map((row) => row.slice(0, 5)));
  // Each allowance is a side from below.
  rows.forEach((row) => assert.equal(Number(row[5]), Number(row[1]) - Number(row[3]), row[0]));
  const names = await heads('[aria-label="Solution of enough"]');
  assert.deepEqual(names, ['label', 'level', 'marginal', 'lower', 'upper', 'slack']);
  await click('#solution-sort-5');
  const slacks = (await shownRows('[aria-label="Solution of enough"]')).map((row) => Number(row[5]));
  assert.deepEqual(slacks, [...slacks].sort((left, right) => left - right));
  const counts = (await shownRows('[aria-label="Solution by symbol"]')).find(([name]) => name === 'buy');
  const bought = solvedRecords('buy');
  assert.deepEqual(counts.slice(2, 5).map(Number), [bought.length, bought.filter((row) => Number(row[1]) !== 0).length, bought.filter((row) => Number(row[2]) !== 0).length]);
});

test('a solution is a file like any other, and its link solves', async () => {
  await view('view=table&f=2&s=buy&solve=auto&sort=level&desc=1', '.grid tbody td');
  assert.deepEqual(await texts(seen.page, '#pages button'), ['Symbols', 'Table', 'Pivot', 'Chart', 'Compare']);
  const best = solvedRecords('buy').sort((left, right) => Number(right[1]) - Number(left[1])).slice(0, 5);
  assert.deepEqual((await shownRows()).slice(0, 5), best);
  const link = `${new URL(seen.link).origin}/#view=table&f=2&s=buy&solve=glpk`;
  const other = await seen.browser.page(`${link}&${new URL(seen.link).hash.slice(1)}`);
  await other.waitForSelector('.grid tbody td');
  assert.match(await other.$eval('#row-total', (place) => place.textContent), /^77 records/);
  assert.deepEqual(other.problems, []);
  await other.close();
});

test('a solve without end is cancelled', async () => {
  await view('f=1', '#model-total');
  await seen.page.click('#solve button.main');
  await cancel();
  await seen.page.waitForSelector('#solution .problem');
  assert.match(await textOf('#solution .problem'), /^Cancelled\./);
  await view('f=0&solve=auto', '#solve-facts');
  assert.match(await textOf('#solve-facts'), /optimal/);
});

test('what cannot be solved so is told', async () => {
  await view('f=1&solve=clp&seconds=x', '#solution .problem');
  assert.match(await textOf('#solution .problem'), /^seconds: 'x' is no whole number/);
  await view('f=1&solve=abacus', '#solution .problem');
  assert.match(await textOf('#solution .problem'), /endless\.lp: .*abacus|endless\.lp: .*clp/);
  await settled(seen.page);
  seen.page.problems = seen.page.problems.filter((text) => !/Failed to load resource.*400/.test(text));
});

for (const scheme of ['light', 'dark']) {
  test(`axe finds nothing, ${scheme}`, async () => {
    await seen.page.emulateMediaFeatures([{name: 'prefers-color-scheme', value: scheme}]);
    await view('f=0', '#model-total');
    const all = await found('not solved');
    await view('f=0&solve=auto&of=enough', '[aria-label="Solution of enough"] td');
    all.push(...await found('solved'));
    assert.deepEqual(all, []);
  });
}

test('a model is solved and its records sorted by keys alone', async () => {
  await view('f=0', '#model-total');
  await seen.page.focus('#solve select');
  await seen.page.keyboard.type('glpk');
  await seen.page.keyboard.press('Tab');
  await seen.page.keyboard.type('60');
  await seen.page.keyboard.press('Enter');
  await seen.page.waitForSelector('#solve-facts');
  assert.match(await textOf('#solve-facts'), /optimal.*glpk/);
  await seen.page.waitForSelector('#solution-sort-1');
  await settled(seen.page);
  await seen.page.focus('#solution-sort-1');
  await seen.page.keyboard.press('Enter');
  await settled(seen.page);
  assert.equal(await seen.page.$eval('[aria-label^="Solution of"] th[aria-sort]', (head) => head.textContent), 'level ↑');
  assert.match(await seen.page.evaluate(() => location.hash), /solve=glpk.*seconds=60|seconds=60.*solve=glpk/);
});
