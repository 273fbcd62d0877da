// Files that nobody thinks of: nothing in them, 20 positions, special values, an alias, odd labels, other domains.
import assert from 'node:assert/strict';
import {test} from 'node:test';
import {texts, ztb} from './browser.mjs';
import {makeOdd, rowsOf, strange} from './data.mjs';
import {saved, seen, shownRows, suite, textOf, view} from './suite.mjs';

suite(makeOdd, 'odd.rxf', 'other.rxf');

const csv = (...words) => rowsOf(ztb(seen.folder, ...words, '--csv')).slice(1);

test('no page of any symbol has a problem, whatever its address says', async () => {
  const {symbols} = JSON.parse(ztb(seen.folder, 'info', 'odd.rxf', '--json'));
  const ways = ['table&sort=value&desc=1', 'table&hide=0,7,7', 'pivot&how=mean&heat=1', 'pivot&rows=7,0&cols=0&over=1', 'compare', 'compare&f2=0&order=key',
    ...['line', 'bar', 'area', 'scatter', 'spread'].map((type) => `chart&type=${type}&x=0&by=1&each=2&field=x`), 'chart&type=scatter&vs=p1', 'chart&type=scatter&vs=ssame'];
  const found = [];
  for (const {name} of symbols) {
    for (const way of ways) {
      await view(`view=${way}&s=${name}`, 'h1');
      const wrong = await seen.page.evaluate(() => [
        ...[...document.querySelectorAll('.problem')].map((one) => one.textContent),
        ...[...document.querySelectorAll('main svg *')].filter((part) => [...part.attributes].some(({value}) => /NaN|Infinity|undefined/.test(value))).map((part) => part.outerHTML.slice(0, 80)),
        ...document.querySelector('main').innerText.match(/NaN|undefined|\[object/g) ?? []]);
      found.push(...[...wrong, ...seen.page.problems.splice(0)].map((text) => `${name}, ${way}: ${text}`));
    }
  }
  // Beside the word of a value.
  assert.deepEqual(found.filter((text) => !/^special, .*: undefined$/.test(text)), []);
});

test('twenty positions are shown, put into a pivot and drawn', async () => {
  await view('view=table&s=deep', '.grid tbody td');
  assert.deepEqual(await shownRows(), csv('show', 'odd.rxf', 'deep'));
  await view('view=pivot&s=deep&rows=0,19&cols=7&over=1', '.pivot tbody td');
  assert.deepEqual(await shownRows('.pivot'), [['k0', 'k19', '1', ''], ['j0', 'j19', '', '-2']]);
  assert.equal((await seen.page.$$('#zone-over .chip')).length, 17);
  await view('view=chart&s=deep&type=bar&x=19&by=3', '.values');
  assert.deepEqual(await shownRows('.values'), [['k19', '1', ''], ['j19', '', '-2']]);
});

test('special values keep their words, and are left out of pictures', async () => {
  await view('view=table&s=special', '.grid tbody td');
  assert.deepEqual((await shownRows()).map((row) => row[2]), ['na', 'inf', '-inf', 'eps', 'undef', '4']);
  await view('view=pivot&s=special&heat=1', '.pivot tbody td');
  assert.deepEqual(await shownRows('.pivot'), csv('pivot', 'odd.rxf', 'special', '--rows', 's', '--columns', '2'));
  await view('view=chart&s=special&type=spread', '.numbers');
  const facts = Object.fromEntries(await seen.page.$$eval('.numbers div', (all) => all.map((one) => [...one.children].map((part) => part.textContent))));
  assert.deepEqual([facts.Values, facts.na, facts.inf, facts['-inf'], facts.eps, facts.undef], ['1', '1', '1', '1', '1', '1']);
  await view('view=chart&s=special&type=bar&x=0&by=1', '.chart');
  assert.deepEqual(await texts(seen.page, '.chart rect title'), ['c, y: 4']);
});

test('numbers as far apart as they can be have places in a chart', async () => {
  await view('view=chart&s=huge&type=bar', '.chart');
  const heights = await seen.page.$$eval('.chart rect', (bars) => bars.map((bar) => Number(bar.getAttribute('height'))));
  assert.equal(heights.length, 3);
  assert.ok(heights[0] > 60 && Math.abs(heights[0] - heights[1]) < 1 && heights[2] < 1, heights.join());
});

test('labels that are numbers are in their order', async () => {
  await view('view=chart&s=years&type=line', '.values');
  assert.deepEqual(await shownRows('.values'), [['1999', '2'], ['2000', '3'], ['2001', '1']]);
});

test('an alias shows its set', async () => {
  await view('view=symbols', '.list');
  const row = (await shownRows('.list')).find(([name]) => name === 'other_s');
  assert.deepEqual([row[1], row[3]], ['alias of s', '3']);
  await view('view=table&s=other_s', '.grid tbody td');
  assert.deepEqual((await shownRows()).map(([label]) => label), ['a', 'b', 'c']);
});

test('labels of every kind come back from the list, the address and the file', async () => {
  for (const label of strange) {
    await view(`view=table&s=strange&in0=${encodeURIComponent(label)}`, '.grid tbody td');
    const [first, ...more] = await shownRows();
    assert.deepEqual([more.length, first[2]], [0, String(strange.indexOf(label))], label);
  }
  await view('view=table&s=strange', '.grid tbody td');
  assert.deepEqual(rowsOf((await saved('#export-csv', 'strange.csv')).toString()), rowsOf(ztb(seen.folder, 'show', 'odd.rxf', 'strange', '--csv')));
});

test('symbols over other sets are compared by their labels', async () => {
  await view('view=compare&s=same&f2=1&order=key', '.grid tbody td');
  assert.deepEqual(await shownRows(), [['a', 'gone', '7', '', '-7'], ['b', 'changed', '7', '8', '1'], ['d', 'new', '', '9', '9']]);
  assert.equal(await textOf('#count-same'), '1');
  await view('view=compare&s=special&f2=1', '.grid tbody td');
  const counts = await Promise.all(['new', 'gone', 'changed', 'same'].map((word) => textOf(`#count-${word}`)));
  assert.deepEqual(counts, ['0', '3', '1', '2']);
  const rows = await shownRows();
  assert.deepEqual(rows.find(([label, other]) => label === 'b' && other === 'y').slice(2), ['changed', 'eps', '1', '']);
  await view('view=compare&s=deep&f2=1', 'main p');
  assert.match(await textOf('main'), /There is no other symbol with as many positions/);
});
