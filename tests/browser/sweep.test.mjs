// The page Sweep, on a thousand scenarios.
import assert from 'node:assert/strict';
import {test} from 'node:test';
import {ztb} from './browser.mjs';
import {makeDiet, makeSweep, rowsOf} from './data.mjs';
import {seen, suite, view} from './suite.mjs';

suite((folder) => {
  makeDiet(folder);
  makeSweep(folder);
}, 'sweep.rxf');

test('the objectives are those of the result', async () => {
  await view('view=sweep', '#sweep-total');
  assert.equal(await seen.page.$eval('#sweep-total', (place) => place.textContent), '1,000 scenarios, 0 failed ones');
  const expected = rowsOf(ztb(seen.folder, 'show', 'sweep.rxf', 'sweep_objective', '--csv')).slice(1);
  const rows = await seen.page.$$eval('section:nth-of-type(1) .values tbody tr', (all) => all.map((row) => [...row.cells].map((cell) => cell.textContent)));
  assert.ok(rows.length >= 500);
  assert.deepEqual(rows, expected.slice(0, rows.length));
});

test('the distribution counts every scenario', async () => {
  await view('view=sweep', '#sweep-total');
  const counts = await seen.page.$$eval('section:nth-of-type(2) .values tbody tr', (all) => all.map((row) => Number(row.cells[1].textContent)));
  assert.equal(counts.reduce((sum, count) => sum + count, 0), 1000);
});

test('a fan lies within the extremes of its symbol, its middle at their median', async () => {
  await view('view=sweep&report=buy_level', '#sweep-total');
  const [head, ...rows] = await seen.page.$$eval('section:nth-of-type(3) .values tr', (all) => all.map((row) => [...row.cells].map((cell) => cell.textContent)));
  const values = new Map();
  for (const row of rowsOf(ztb(seen.folder, 'show', 'sweep.rxf', 'buy_level', '--csv')).slice(1)) {
    values.set(row[1], [...(values.get(row[1]) ?? []), Number(row[2])]);
  }
  const middle = head.indexOf('0.5');
  assert.ok(middle > 0, head.join());
  for (const row of rows) {
    const own = values.get(row[0]).sort((left, right) => left - right);
    const bands = row.slice(1).map(Number);
    assert.deepEqual(bands, [...bands].sort((left, right) => left - right));
    assert.ok(bands[0] >= own[0] && bands.at(-1) <= own.at(-1), row[0]);
    assert.ok(Number(row[middle]) >= own[Math.floor((own.length - 1) / 2)] - 1e-12 && Number(row[middle]) <= own[Math.ceil((own.length - 1) / 2)] + 1e-12, row[0]);
  }
});
