// The air routes of the world.
import assert from 'node:assert/strict';
import {test} from 'node:test';
import {ztb} from './browser.mjs';
import {hasRoutes, makeRoutes, rowsOf} from './data.mjs';
import {seen, shownRows, suite, view} from './suite.mjs';

// They are used where they lie beside the project.
if (hasRoutes) {
  suite(makeRoutes, 'routes.rxf');
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
