// Whatever a label or text holds is shown as text.
import assert from 'node:assert/strict';
import {test} from 'node:test';
import {hostile, makeHostile} from './data.mjs';
import {click, seen, shownRows, suite, view} from './suite.mjs';

suite(makeHostile, 'hostile.rxf');

const spelled = hostile.map((label) => label.replace(/\u202E/g, '<U+202E>').replace(/\u202C/g, '<U+202C>'));

async function expectNoMarkup() {
  const found = await seen.page.evaluate(() => ({
    scripts: [...document.scripts].map((script) => script.getAttribute('src')),
    foreign: document.querySelectorAll('img, iframe, object, embed, b, [onerror], [onload]').length,
    turns: /[\u202a-\u202e\u2066-\u2069]/.test(document.body.textContent),
  }));
  assert.deepEqual(found, {scripts: ['/page/uplot.js', '/page/main.js'], foreign: 0, turns: false});
}

test('in the list of symbols', async () => {
  await view('view=symbols', '.list');
  const rows = await shownRows('.list');
  assert.equal(rows[0][4], '<b>bold</b> <script>alert(2)</script>');
  assert.equal(rows.find((row) => row[0] === 'evil')[4], '<U+202E><img src=x onerror=alert(3)>');
  await expectNoMarkup();
});

test('in a table', async () => {
  await view('view=table&s=evil', '.grid tbody td');
  assert.deepEqual(await shownRows(), spelled.map((label, index) => [label, spelled[(index + 1) % spelled.length], String(index)]));
  await expectNoMarkup();
});

test('in a list of labels, from which they are chosen', async () => {
  await view('view=table&s=evil', '.grid tbody td');
  await click('#filter-0');
  await seen.page.waitForSelector('.labels li');
  assert.deepEqual(new Set(await seen.page.$$eval('.labels .name', (all) => all.map((one) => one.textContent))), new Set(spelled));
  const boxes = await seen.page.$$('.labels li');
  for (const box of boxes) {
    const name = await box.$eval('.name', (one) => one.textContent);
    if (name === spelled[0] || name === spelled[4]) await (await box.$('input')).click();
  }
  await click('dialog button.main');
  assert.deepEqual((await shownRows()).map((row) => row[0]), [spelled[0], spelled[4]]);
  await expectNoMarkup();
});

test('in a pivot', async () => {
  await view('view=pivot&s=evil', '.pivot tbody td');
  assert.deepEqual((await shownRows('.pivot')).map((row) => row[0]), spelled);
  await expectNoMarkup();
});

for (const type of ['bar', 'line', 'area', 'scatter']) {
  test(`in a chart: ${type}`, async () => {
    await view(`view=chart&s=evil&x=0&by=1&type=${type}`, '.values');
    assert.deepEqual((await shownRows('.values')).map((row) => row[0]), spelled);
    await expectNoMarkup();
  });
}

test('in the address', async () => {
  await view(`view=table&s=${encodeURIComponent('<img src=x onerror=alert(1)>')}`, 'h1');
  await view(`view=${encodeURIComponent('<script>alert(1)</script>')}&s=evil&hide=%3Cb%3E&from=%3Cb%3E`, 'h1');
  await expectNoMarkup();
});
