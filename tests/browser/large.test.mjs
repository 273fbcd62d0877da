// Ten million records: any of them is reached, and filters are counted whole.
import assert from 'node:assert/strict';
import {test} from 'node:test';
import {settled, ztb, ztbFails} from './browser.mjs';
import {bigValue, makeBig, rowsOf} from './data.mjs';
import {cancel, seen, shownRows, suite, textOf, view} from './suite.mjs';

suite(async (folder) => {
  await makeBig(folder);
  ztb(folder, 'where', 'big.rxf', 'fewer.rxf', '--symbol', 'big', '--where', 'value < 995');
}, 'big.rxf', 'fewer.rxf');

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

test('an order that takes long is cancelled, and asked for again', async () => {
  // Until one takes long enough for the button: how long an order takes is nobody's to say.
  let caught = null;
  for (let round = 0; round < 50 && caught === null; ++round) {
    const fragment = `view=table&s=big&sort=value&desc=${round % 2}&where=${encodeURIComponent(`value >= ${Math.floor(round / 2)}`)}`;
    await seen.page.evaluate((next) => { location.hash = next; }, fragment);
    const isBusy = await Promise.race([
      seen.page.waitForSelector('#busy:not([hidden])').then(() => true),
      settled(seen.page).then(() => false)]);
    if (!isBusy) continue;
    assert.match(await textOf('#busy-text'), /records read|^$/);
    await cancel().catch(() => {});
    await settled(seen.page);
    if (await seen.page.$('main .problem') !== null) caught = round;
  }
  assert.notEqual(caught, null);
  assert.match(await textOf('main .problem'), /^Cancelled\./);
  assert.equal(await seen.page.$eval('#busy', (place) => place.hidden), true);
  await seen.page.click('#again');
  await seen.page.waitForSelector('.grid tbody td:not(.coming)');
  await settled(seen.page);
  const least = Math.floor(caught / 2);
  const wanted = caught % 2 === 1 ? 999 : least;
  const rows = await shownRows();
  assert.ok(rows.length >= 10);
  const expected = [];
  for (let index = 0; expected.length < rows.length; ++index) {
    const row = rowAt(index);
    if (Number(row[3]) === wanted) expected.push(row);
  }
  assert.deepEqual(rows, expected);
});

test('what is printed and copied of so many records says where it ends', async () => {
  await view('view=table&s=big', '.grid tbody td');
  await seen.page.evaluate(() => {
    globalThis.print = () => {
      const rows = document.querySelectorAll('.printed tbody tr');
      globalThis.printed = [rows.length, rows[rows.length - 1].textContent, document.querySelector('.printed .cut').textContent];
    };
  });
  await seen.page.click('#print');
  await seen.page.waitForFunction(() => globalThis.printed !== undefined);
  assert.deepEqual(await seen.page.evaluate(() => globalThis.printed), [20000, rowAt(19999).join(''),
    'Rows 1 to 20,000 of 10,000,000. Print on the page takes the first 20,000, a file has all.']);
  await seen.page.evaluate(() => {
    dispatchEvent(new Event('afterprint'));
    navigator.clipboard.writeText = async (text) => { globalThis.copied = text; };
  });
  await seen.page.click('#copy');
  await seen.page.waitForFunction(() => globalThis.copied !== undefined);
  const [lines, last] = await seen.page.evaluate(() => {
    const all = globalThis.copied.trimEnd().split('\n');
    return [all.length, all.at(-1)];
  });
  assert.deepEqual([lines, last], [2000001, rowAt(1999999).join('\t')]);
  assert.equal(await textOf('#said'), 'the first 2,000,000 of 10,000,000 rows (a file has all) copied');
});

test('labels at a position and a distribution count every record', async () => {
  await view('view=chart&s=big&type=spread', '.values');
  const counts = (await shownRows('.values')).map(([, count]) => Number(count));
  assert.equal(counts.reduce((sum, count) => sum + count, 0), total);
  await view('view=chart&s=big&x=2&type=line&how=count', '.values');
  const expected = rowsOf(ztb(seen.folder, 'aggregate', 'big.rxf', 'big', '--by', 'k', '--count', '--csv')).slice(1);
  const numbers = (rows) => new Map(rows.map(([label, count]) => [label, Number(count)]));
  assert.deepEqual(numbers(await shownRows('.values')), numbers(expected));
});

test('ten million records are compared, and listed among the symbols', async () => {
  await view('view=symbols', '.list');
  assert.deepEqual((await shownRows('.list')).map((row) => [row[0], row[3]]), [['big', '10,000,000']]);
  await view('view=compare&s=big&f2=1', '.grid tbody td');
  let gone = 0;
  for (let i = 0; i < 1000; ++i) for (let j = 0; j < 100; ++j) for (let k = 0; k < 100; ++k) gone += bigValue(i, j, k) >= 995 ? 1 : 0;
  const counts = await Promise.all(['new', 'gone', 'changed', 'same'].map((word) => textOf(`#count-${word}`)));
  assert.deepEqual(counts, ['0', gone.toLocaleString('en-US'), '0', (total - gone).toLocaleString('en-US')]);
  assert.match(ztbFails(seen.folder, 'diff', 'big.rxf', 'fewer.rxf').output, new RegExp(`${gone} gone`));
  assert.deepEqual((await shownRows())[0].slice(3), ['gone', '999', '', '-999']);
});
