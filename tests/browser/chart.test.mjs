// The page Chart: its values are those of the command, and its pictures are saved.
import assert from 'node:assert/strict';
import {test} from 'node:test';
import {ztb} from './browser.mjs';
import {makeDiet, rowsOf} from './data.mjs';
import {saved, seen, shownRows, suite, textOf, view} from './suite.mjs';

suite(makeDiet, 'diet.rxf');

const csv = (...words) => rowsOf(ztb(seen.folder, ...words, '--csv')).slice(1);

test('bars have the values of the records', async () => {
  await view('view=chart&s=price&type=bar', '.chart');
  const expected = csv('show', 'diet.rxf', 'price');
  assert.deepEqual(await shownRows('.values'), expected);
  assert.deepEqual(await seen.page.$$eval('.chart rect title', (titles) => titles.map((title) => title.textContent)),
    expected.map(([label, value]) => `${label}: ${value}`));
  const heights = await seen.page.$$eval('.chart rect', (bars) => bars.map((bar) => Number(bar.getAttribute('height'))));
  const greatest = Math.max(...expected.map(([, value]) => Number(value)));
  const tallest = Math.max(...heights);
  expected.forEach(([label, value], index) =>
    assert.ok(Math.abs(heights[index] - tallest * value / greatest) < 0.6, `${label}: ${heights[index]}`));
});

for (const type of ['line', 'area', 'scatter']) {
  test(`${type}: series over a position are those of ztb pivot`, async () => {
    await view(`view=chart&s=nutrition&x=1&by=0&type=${type}&p0=*beans*`, '.values');
    const [head, ...rows] = rowsOf(ztb(seen.folder, 'pivot', 'diet.rxf', 'nutrition', '--rows', 'nutrient', '--columns', 'food',
      '--slice', '*beans*,*', '--csv'));
    assert.deepEqual(await shownRows('.values'), rows);
    assert.deepEqual(await seen.page.$$eval('.values thead th', (all) => all.map((one) => one.textContent)), head);
    assert.equal(await seen.page.$$eval('.uplot canvas', (all) => all.length), type === 'area' ? 0 : 1);
  });
}

test('small multiples are one for each label', async () => {
  await view('view=chart&s=nutrition&x=1&each=0&type=bar&p0=*beans*', '.chart');
  const expected = new Set(csv('show', 'diet.rxf', 'nutrition', '--slice', '*beans*,*').map(([food]) => food));
  assert.deepEqual(new Set(await seen.page.$$eval('figcaption', (all) => all.map((one) => one.textContent))), expected);
});

test('a distribution counts every value once', async () => {
  await view('view=chart&s=nutrition&type=spread', '.chart');
  const rows = await shownRows('.values');
  const values = csv('show', 'diet.rxf', 'nutrition').map((row) => Number(row[2]));
  assert.equal(rows.reduce((sum, [, count]) => sum + Number(count), 0), values.length);
  const facts = Object.fromEntries(await seen.page.$$eval('.numbers div', (all) => all.map((one) =>
    [one.querySelector('dt').textContent, Number(one.querySelector('dd').textContent.replace(/,/g, ''))])));
  assert.equal(facts.Values, values.length);
  assert.equal(facts.Least, Math.min(...values));
  assert.equal(facts.Greatest, Math.max(...values));
  assert.ok(Math.abs(facts.Mean - values.reduce((sum, value) => sum + value, 0) / values.length) < 1e-3);
});

test('points of two labels are those of ztb pivot', async () => {
  await view('view=chart&s=nutrition&type=scatter&x=0&vs=p1&lx=protein_g&ly=iron_mg', '.values');
  const [head, ...foods] = rowsOf(ztb(seen.folder, 'pivot', 'diet.rxf', 'nutrition', '--rows', 'food', '--columns', 'nutrient', '--csv'));
  const [x, y] = [head.indexOf('protein_g'), head.indexOf('iron_mg')];
  const both = foods.filter((row) => row[x] !== '' && row[y] !== '').map((row) => [row[0], row[x], row[y]]);
  assert.deepEqual(await shownRows('.values'), both);
  assert.match(await textOf('#point-total'), new RegExp(`^${both.length} points`));
  assert.equal(await seen.page.$$eval('.uplot canvas', (all) => all.length), 1);
  const svg = (await saved('#save-svg', 'nutrition.svg')).toString();
  assert.equal(svg.match(/<circle /g).length, both.length);
  for (const name of ['protein_g', 'iron_mg']) assert.ok(svg.includes(`>${name}</text>`), name);
});

test('points of two symbols over the same set', async () => {
  await view('view=chart&s=nutrition&type=scatter&x=0&by=1&vs=sprice', '.values');
  const prices = new Map(csv('show', 'diet.rxf', 'price'));
  const expected = csv('show', 'diet.rxf', 'nutrition').map(([food, nutrient, value]) => [food, nutrient, value, prices.get(food)]);
  const rows = await shownRows('.values');
  assert.equal(rows.length, 500);
  assert.match(await textOf('#point-total'), /^570 points$/);
  const known = new Set(expected.map((row) => row.join()));
  for (const row of rows) assert.ok(known.has(row.join()), row.join());
  await view('view=chart&s=price&type=scatter&vs=snutrition&p0=*beans*', '.values');
  const sums = new Map(csv('aggregate', 'diet.rxf', 'nutrition', '--by', 'food', '--sum').map(([food, sum]) => [food, Number(sum)]));
  const beans = csv('show', 'diet.rxf', 'price', '--slice', '*beans*').filter(([food]) => sums.has(food));
  assert.deepEqual((await shownRows('.values')).map(([food, price, sum]) => [food, price, Number(sum)]),
    beans.map(([food, price]) => [food, price, sums.get(food)]));
});

test('what stands against a symbol is chosen by keys, and forgotten where it does not fit', async () => {
  await view('view=chart&s=nutrition&type=scatter', '.values');
  const labels = await seen.page.$$eval('.choice span', (all) => all.map((one) => one.textContent));
  assert.deepEqual(labels.slice(0, 6), ['Chart', 'Across', 'Series', 'One for each', 'Value', 'Against']);
  await seen.page.locator('.choice ::-p-text(Against)').click();
  const select = (await seen.page.$$('.choice select'))[5];
  await select.focus();
  await seen.page.keyboard.press('ArrowDown');
  await seen.page.waitForSelector('#point-total');
  assert.match(await seen.page.evaluate(() => location.hash), /vs=p1/);
  // The focus stays where it was, so that keys go on.
  await seen.page.waitForFunction(() => document.activeElement.id === 'choice-against');
  await seen.page.keyboard.press('ArrowDown');
  await seen.page.waitForFunction(() => location.hash.includes('vs=sprice'));
  await view('view=chart&s=nutrition&type=scatter&x=0&by=1&vs=p1', '.values');
  assert.equal(await seen.page.$('#point-total'), null);
});

test('a chart is saved as SVG and PNG', async () => {
  await view('view=chart&s=nutrition&x=1&by=0&type=line&p0=*beans*', '.values');
  const svg = (await saved('#save-svg', 'nutrition.svg')).toString();
  assert.match(svg, /^<svg xmlns="http:\/\/www.w3.org\/2000\/svg"/);
  const foods = new Set(csv('show', 'diet.rxf', 'nutrition', '--slice', '*beans*,*').map(([food]) => food));
  for (const food of foods) assert.ok(svg.includes(`>${food}</text>`), food);
  assert.equal(svg.match(/<path [^>]*stroke-width="1.8"/g).length, foods.size);
  const png = await saved('#save-png', 'nutrition.png');
  assert.equal(png.subarray(1, 4).toString(), 'PNG');
  assert.equal(png.readUInt32BE(16), 1520);
});
