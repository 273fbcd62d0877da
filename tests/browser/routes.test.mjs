// The air routes of the world.
import assert from 'node:assert/strict';
import {test} from 'node:test';
import {ztb, ztbFails} from './browser.mjs';
import {hasRoutes, makeRoutes, rowsOf} from './data.mjs';
import {seen, shownRows, suite, textOf, view} from './suite.mjs';

// They are used where they lie beside the project.
if (hasRoutes) {
  suite((folder) => {
    makeRoutes(folder);
    ztb(folder, 'where', 'routes.rxf', 'fewer.rxf', '--symbol', 'types', '--where', "airline <> 'LH'");
  }, 'routes.rxf', 'fewer.rxf');
  const csv = (...words) => rowsOf(ztb(seen.folder, ...words, '--csv')).slice(1);

  test('a filter shows the routes that ztb show does', async () => {
    await view('view=table&s=types&p0=LH&p1=FRA', '.grid tbody td');
    const expected = csv('show', 'routes.rxf', 'types', '--slice', 'LH,FRA,*');
    const rows = await shownRows();
    assert.deepEqual(rows, expected.slice(0, rows.length));
    assert.equal(await seen.page.$eval('#row-total', (place) => place.textContent), `${expected.length} records of 66,934`);
  });

  test('a pivot counts routes as ztb aggregate does', async () => {
    await view('view=pivot&s=types&rows=0&over=1,2&how=count', '.pivot tbody td');
    const expected = csv('aggregate', 'routes.rxf', 'types', '--by', 'airline', '--count');
    const rows = await shownRows('.pivot');
    assert.equal(rows.length, 300);
    assert.deepEqual(rows, expected.slice(0, 300));
  });

  test('symbols are those of ztb info', async () => {
    await view('view=symbols', '.list');
    const {symbols} = JSON.parse(ztb(seen.folder, 'info', 'routes.rxf', '--json'));
    assert.deepEqual((await shownRows('.list')).map((row) => [row[0], Number(row[3].replace(/,/g, ''))]), symbols.map(({name, records, alias_of: set}) => [name, records ?? symbols.find((one) => one.name === set).records]));
  });

  test('a chart of airlines from an airport is that of ztb aggregate', async () => {
    await view('view=chart&s=types&type=bar&x=0&how=count&p1=FRA', '.chart');
    ztb(seen.folder, 'where', 'routes.rxf', 'fra.rxf', '--symbol', 'types', '--where', "from = 'FRA'");
    const expected = csv('aggregate', 'fra.rxf', 'types', '--by', 'airline', '--count');
    assert.ok(expected.length > 50);
    assert.deepEqual(await shownRows('.values'), expected);
    assert.equal(await seen.page.$$eval('.chart rect', (all) => all.length), expected.length);
  });

  test('what is gone is what ztb diff says', async () => {
    await view('view=compare&s=types&f2=1', '.grid tbody td');
    const said = ztbFails(seen.folder, 'diff', 'routes.rxf', 'fewer.rxf');
    const gone = csv('show', 'routes.rxf', 'types', '--slice', 'LH,*,*').length;
    assert.match(said.output, new RegExp(`${gone} gone`));
    assert.equal(await textOf('#count-gone'), gone.toLocaleString('en-US'));
    assert.equal(await textOf('#count-same'), (66934 - gone).toLocaleString('en-US'));
    const rows = await shownRows();
    assert.ok(rows.length > 5 && rows.every((row) => row[0] === 'LH' && row[3] === 'gone'));
  });

  test('a pivot beyond the limit says so', async () => {
    await view('view=pivot&s=types&rows=0,1&cols=2', '.pivot tbody td, .problem');
    const counted = csv('aggregate', 'routes.rxf', 'types', '--by', 'airline,from', '--count').length;
    const total = await seen.page.$eval('#pivot-total', (place) => place.textContent);
    const refused = await seen.page.$$eval('.problem', (all) => all.map((one) => one.textContent));
    if (refused.length > 0) assert.match(refused[0], /\d/);
    else assert.ok(total.startsWith(`${counted.toLocaleString('en-US')} rows`), total);
    seen.page.problems = seen.page.problems.filter((text) => !/Failed to load resource.*413/.test(text));
  });
} else {
  test('air routes are not here', () => {});
}
