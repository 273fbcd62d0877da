// Ten million records: any of them is reached, and filters are counted whole.
import assert from 'node:assert/strict';
import {test} from 'node:test';
import {settled, ztb} from './browser.mjs';
import {bigValue, makeBig, rowsOf} from './data.mjs';
import {seen, shownRows, suite, view} from './suite.mjs';

suite(makeBig, 'big.rxf');

const rowAt = (index) => {
  const [i, j, k] = [Math.floor(index / 10000), Math.floor(index / 100) % 100, index % 100];
  return [`i${i}`, `j${j}`, `k${k}`, String(bigValue(i, j, k))];
};
const total = 1e7;
async function expectFrom(first) {
  await settled(seen.page);
  const rows = await shownRows();
  assert.ok(rows.length >= 10);
  assert.deepEqual(rows, rows.map((_, index) => rowAt(first + index)));
  return rows.length;
}

test('the first and the last records', async () => {
  await view('view=table&s=big', '.grid tbody td');
  assert.equal(await seen.page.$eval('#row-total', (place) => place.textContent), '10,000,000 records');
  await expectFrom(0);
  await seen.page.focus('.scroller');
  await seen.page.keyboard.press('End');
  await settled(seen.page);
  const rows = await shownRows();
  assert.deepEqual(rows, rows.map((_, index) => rowAt(total - rows.length + index)));
});

test('a drag of the scroll bar goes to a share of the whole, the wheel and keys by rows', async () => {
  await view('view=table&s=big', '.grid tbody td');
  await seen.page.$eval('.scroller', (place) => {
    place.scrollTop = (place.scrollHeight - place.clientHeight) / 2;
  });
  await settled(seen.page);
  const middle = Number(await seen.page.$eval('.grid tbody tr', (row) => row.getAttribute('aria-rowindex'))) - 2;
  assert.ok(Math.abs(middle - total / 2) < total / 1000, `${middle}`);
  const shown = await expectFrom(middle);
  await seen.page.focus('.scroller');
  await seen.page.keyboard.press('ArrowDown');
  await expectFrom(middle + 1);
  await seen.page.keyboard.press('PageDown');
  await expectFrom(middle + shown);
  await seen.page.hover('.grid tbody td');
  await seen.page.mouse.wheel({deltaY: 26 * 3});
  await expectFrom(middle + shown + 3);
});

test('a filter is counted whole', async () => {
  await view('view=table&s=big&p2=k7&where=value+%3E+990', '.grid tbody td');
  let expected = 0;
  for (let i = 0; i < 1000; ++i) for (let j = 0; j < 100; ++j) expected += bigValue(i, j, 7) > 990 ? 1 : 0;
  assert.equal(await seen.page.$eval('#row-total', (place) => place.textContent),
    `${expected.toLocaleString('en-US')} records of 10,000,000`);
});

test('a pivot of all is that of ztb aggregate', async () => {
  await view('view=pivot&s=big&rows=1&over=0,2', '.pivot tbody td');
  const expected = rowsOf(ztb(seen.folder, 'aggregate', 'big.rxf', 'big', '--by', 'j', '--sum', '--csv')).slice(1);
  assert.deepEqual(await shownRows('.pivot'), expected);
});
