// The page Model, held against ztb model.
import assert from 'node:assert/strict';
import {test} from 'node:test';
import {texts, ztb} from './browser.mjs';
import {makeDiet} from './data.mjs';
import {heads, seen, shownRows, suite, view} from './suite.mjs';

suite(makeDiet, 'diet.lp');

test('a model has one page, with the families of ztb model', async () => {
  await view('', '#model-total');
  assert.deepEqual(await texts(seen.page, '#pages button'), ['Model']);
  const names = await heads();
  const number = names.indexOf('Number');
  const found = (await shownRows()).map((row) => [row[names.indexOf('Family')], Number(row[number])]);
  const said = ztb(seen.folder, 'model', 'diet.lp');
  assert.ok(found.length >= 5);
  for (const [name, count] of found) assert.match(said, new RegExp(`^${name}\\S* .*\\b${count}\\b`, 'm'), name);
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
