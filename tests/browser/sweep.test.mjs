// The page Sweep, on a thousand scenarios.
import assert from 'node:assert/strict';
import {test} from 'node:test';
import {ztb} from './browser.mjs';
import {makeDiet, makeFailing, makeSweep, rowsOf} from './data.mjs';
import {found, heads, seen, shownRows, suite, textOf, view} from './suite.mjs';

suite((folder) => {
  makeDiet(folder);
  makeSweep(folder);
}, 'sweep.rxf', 'scenarios.rxf');

test('the objectives are those of the result', async () => {
  await view('view=sweep', '#sweep-total');
  assert.equal(await seen.page.$eval('#sweep-total', (place) => place.textContent), '1,000 scenarios, 0 without a solution');
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

test('the inputs that differ most are those of the scenario file', async () => {
  await view('view=sweep', '#differ');
  const objectives = rowsOf(ztb(seen.folder, 'show', 'sweep.rxf', 'sweep_objective', '--csv')).slice(1)
    .sort((left, right) => Number(left[1]) - Number(right[1]));
  const [low, high] = [objectives[0], objectives.at(-1)];
  assert.match(await textOf('#extremes'), new RegExp(`^Lowest objective: ${low[0]} with ${low[1]}; highest: ${high[0]} with ${high[1]}\\.`));
  const pricesOf = ([scenario]) => new Map(rowsOf(ztb(seen.folder, 'show', 'scenarios.rxf', 'price', '--slice', `${scenario},*`, '--csv')).slice(1)
    .map(([, food, price]) => [food, Number(price)]));
  const [lows, highs] = [pricesOf(low), pricesOf(high)];
  const differences = [...lows].filter(([food, price]) => price !== highs.get(food))
    .map(([food, price]) => [food, price, highs.get(food), Math.abs(price - highs.get(food)) / Math.max(price, highs.get(food))])
    .sort((left, right) => right[3] - left[3]);
  const rows = await shownRows('#differ');
  assert.ok(rows.length > 50);
  assert.equal(rows.length, differences.length);
  rows.forEach(([symbol, food, first, second, share], index) => {
    assert.deepEqual([symbol, food, Number(first), Number(second)], ['price', ...differences[index].slice(0, 3)]);
    assert.ok(Math.abs(Number.parseFloat(share) - 100 * differences[index][3]) < 0.5, share);
  });
});

for (const scheme of ['light', 'dark']) {
  test(`axe finds nothing, ${scheme}`, async () => {
    await seen.page.emulateMediaFeatures([{name: 'prefers-color-scheme', value: scheme}]);
    await view('view=sweep', '#differ');
    assert.deepEqual(await found('sweep'), []);
  });
}

test('its symbols are listed as ztb info lists them', async () => {
  await view('view=symbols', '.list');
  const {symbols} = JSON.parse(ztb(seen.folder, 'info', 'sweep.rxf', '--json'));
  assert.ok(symbols.length > 5);
  assert.deepEqual(
    (await shownRows('.list')).map((row) => [row[0], Number(row[3].replace(/,/g, ''))]),
    symbols.map(({name, records}) => [name, records]));
});

test('its symbols are on the other pages what the command says of them', async () => {
  await view('view=table&s=buy_level&where=value+%3E+0', '.grid tbody td');
  ztb(seen.folder, 'where', 'sweep.rxf', 'bought.rxf', '--symbol', 'buy_level', '--where', 'value > 0');
  const bought = rowsOf(ztb(seen.folder, 'show', 'bought.rxf', 'buy_level', '--csv')).slice(1);
  const rows = await shownRows();
  assert.deepEqual(rows, bought.slice(0, rows.length));
  assert.equal(await textOf('#row-total'), `${bought.length.toLocaleString('en-US')} records of 77,000`);
  await view('view=pivot&s=buy_level&rows=1&over=0&how=mean', '.pivot tbody td');
  const numbers = (all) => new Map(all.map(([label, number]) => [label, Number(number)]));
  assert.deepEqual(numbers(await shownRows('.pivot')), numbers(rowsOf(ztb(seen.folder, 'aggregate', 'sweep.rxf', 'buy_level', '--by', '2', '--mean', '--csv')).slice(1)));
  assert.equal((await heads('.pivot')).length, 2);
  await view('view=chart&s=sweep_objective&type=line', '.values');
  assert.deepEqual(await shownRows('.values'), rowsOf(ztb(seen.folder, 'show', 'sweep.rxf', 'sweep_objective', '--csv')).slice(1, 501));
  await view('view=compare&s=buy_level&f2=0&s2=buy_marginal', '.grid tbody td');
  const counts = await Promise.all(['new', 'gone', 'changed', 'same'].map(async (word) => Number((await textOf(`#count-${word}`)).replace(/,/g, ''))));
  assert.equal(counts.reduce((sum, count) => sum + count, 0), 77000);
});

test('scenarios without a solution are told by name, as ztb sweep tells them', async () => {
  const {said} = makeFailing(seen.folder);
  const page = await seen.browser.page(await seen.browser.view(seen.folder, 'some.rxf'));
  await page.waitForSelector('#failed');
  const rows = await page.$$eval('#failed tbody tr', (all) => all.map((row) => [...row.cells].map((cell) => cell.textContent)));
  assert.deepEqual(rows.map(([name, ended]) => [name, ended]),
    Array.from({length: 10}, (_, index) => [`need ${index + 21}`, 'infeasible']));
  for (const [name] of rows) assert.ok(said.includes(name), name);
  assert.equal(await page.$eval('#sweep-total', (place) => place.textContent), '30 scenarios, 10 without a solution');
  // y(a, u), y(a, v) and y(b, u) are 1, 2 and 4 times the need, of which the median is 10.5.
  const middles = async () => page.$$eval('section:nth-of-type(3) .values tbody tr', (all) => all.map((row) => [row.cells[0].textContent, Number(row.cells[3].textContent)]));
  await page.evaluate(() => { location.hash = 'view=sweep&report=y_level'; });
  await page.waitForNetworkIdle({idleTime: 150});
  assert.deepEqual(await middles(), [['a', 31.5], ['b', 42]]);
  await page.evaluate(() => { location.hash = 'view=sweep&report=y_level&fx=2'; });
  await page.waitForNetworkIdle({idleTime: 150});
  assert.deepEqual(await middles(), [['u', 52.5], ['v', 21]]);
  assert.match(await page.$eval('#inputs', (place) => place.textContent), /ztb view RESULT SCENARIOS/);
  assert.deepEqual(page.problems, []);
  await page.close();
});
