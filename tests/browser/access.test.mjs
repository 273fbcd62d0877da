// What screen readers get, and contrasts, in light and dark.
import assert from 'node:assert/strict';
import {test} from 'node:test';
import {makeDiet, makeSweep} from './data.mjs';
import {click, found, seen, suite, view} from './suite.mjs';

suite((folder) => {
  makeDiet(folder);
  makeSweep(folder, 30);
}, 'sweep.rxf', 'diet.rxf');

const views = [
  'view=sweep', 'view=symbols&f=1', 'view=table&f=1', 'view=table&f=1&s=nutrition&sort=value&p0=*beans*', 'view=pivot&f=1&s=nutrition&heat=1',
  'view=chart&f=1&s=price&type=bar', 'view=chart&f=1&s=nutrition&x=1&by=0&type=line&p0=*beans*', 'view=chart&f=1&s=nutrition&type=area&x=1&each=0&p0=*beans*',
  'view=chart&f=1&s=price&type=spread', 'view=chart&f=1&s=nutrition&type=scatter&x=0&by=1&vs=sprice', 'view=chart&f=1&s=nutrition&type=scatter&vs=p1', 'view=compare&f=1&s=food&f2=1&s2=nutrient', 'view=table&f=1&s=nutrition&where=value+%3E',
];

for (const scheme of ['light', 'dark']) {
  test(`axe finds nothing, ${scheme}`, async () => {
    await seen.page.emulateMediaFeatures([{name: 'prefers-color-scheme', value: scheme}]);
    const all = [];
    for (const fragment of views) {
      await view(fragment, 'h1');
      all.push(...await found(fragment));
    }
    await view('view=table&f=1&s=nutrition', '.grid tbody td');
    for (const button of ['#filter-1', '#columns', '#copy-link', '#about']) {
      await click(button);
      all.push(...await found(button));
      await seen.page.keyboard.press('Escape');
    }
    assert.deepEqual(all, []);
    seen.page.problems = seen.page.problems.filter((text) => !/Failed to load resource.*400/.test(text));
  });
}

test('the switch of the theme wins over the system', async () => {
  await seen.page.emulateMediaFeatures([{name: 'prefers-color-scheme', value: 'light'}]);
  await view('view=symbols&f=1', 'h1');
  const ground = () => seen.page.evaluate(() => getComputedStyle(document.body).backgroundColor);
  assert.equal(await ground(), 'rgb(255, 255, 255)');
  await click('#theme');
  assert.equal(await ground(), 'rgb(255, 255, 255)');
  await click('#theme');
  assert.equal(await ground(), 'rgb(20, 24, 31)');
  await click('#theme');
  assert.equal(await ground(), 'rgb(255, 255, 255)');
});

test('every page is reached by keys alone', async () => {
  await view('view=symbols&f=1', 'h1');
  const current = () => seen.page.$eval('#pages [aria-current]', (button) => button.textContent);
  for (const [key, name] of [['2', 'Table'], ['3', 'Pivot'], ['4', 'Chart'], ['5', 'Compare'], ['1', 'Symbols']]) {
    await seen.page.keyboard.press(key);
    await seen.page.waitForFunction((wanted) => document.querySelector('#pages [aria-current]').textContent === wanted, {}, name);
    assert.equal(await current(), name);
  }
  await seen.page.keyboard.press('/');
  await seen.page.keyboard.type('price');
  await seen.page.keyboard.press('Tab');
  await seen.page.keyboard.press('Tab');
  await seen.page.keyboard.press('Enter');
  await seen.page.waitForSelector('.grid tbody td');
  assert.equal(await seen.page.$eval('h1', (place) => place.textContent), 'price(food)');
  // Whatever is drawn anew keeps the focus.
  await seen.page.waitForFunction(() => document.activeElement.id === 'symbol-of-price');
  await seen.page.focus('#page-pivot');
  await seen.page.keyboard.press('Enter');
  await seen.page.waitForSelector('.pivot');
  await seen.page.waitForFunction(() => document.activeElement.id === 'page-pivot');
});

test('a table prints without what is around it', async () => {
  await view('view=table&f=1&s=price', '.grid tbody td');
  await seen.page.evaluate(() => dispatchEvent(new Event('beforeprint')));
  await seen.page.emulateMediaType('print');
  const shown = await seen.page.evaluate(() => ['.top', '.side', '.filters', '.row button', '.scroller', '.printed', '.printed tbody tr:last-child'].map((name) =>
    document.querySelector(name).checkVisibility()));
  await seen.page.emulateMediaType(null);
  await seen.page.evaluate(() => dispatchEvent(new Event('afterprint')));
  assert.deepEqual(shown, [false, false, false, false, false, true, true]);
});
