// Sixty seconds of clicks, keys and words that nobody has thought of break nothing.
import assert from 'node:assert/strict';
import {test} from 'node:test';
import {makeDiet, makeHostile, makeSweep} from './data.mjs';
import {seen, suite, view} from './suite.mjs';

suite((folder) => {
  makeDiet(folder);
  makeSweep(folder, 30);
  makeHostile(folder);
}, 'sweep.rxf', 'hostile.rxf');

const lasting = 60000;
const words = ['*', 'a', '<b>', 'value > 1', '"', "'", '\\', '9'.repeat(40), '*beans*', '-1', '%00', '\u202E'];
const keys = ['Tab', 'Tab', 'Enter', 'Escape', 'ArrowDown', 'ArrowRight', 'PageDown', 'End', 'Home', ' ', '1', '2', '3', '4', '5', '6', '/'];

// A generator with a seed, so that what breaks breaks again.
function generator(seed) {
  let state = seed;
  return (count) => {
    state = (Math.imul(state, 1664525) + 1013904223) >>> 0;
    return Math.floor(state / 2 ** 32 * count);
  };
}

// Clicks, types and turns the wheel for a time; what was done.
async function wander(page, seed, lasting) {
  const next = generator(seed);
  const done = [];
  const end = Date.now() + lasting;
  while (Date.now() < end) {
    const turn = next(10);
    if (turn < 6) {
      const places = await page.$$('button, a[href], select, input, summary, .labels label, .grid tbody td');
      const place = places[next(places.length)];
      const box = await place.boundingBox().catch(() => null);
      if (box === null) continue;
      done.push(`click ${Math.round(box.x)} ${Math.round(box.y)}`);
      await page.mouse.click(box.x + box.width / 2, box.y + box.height / 2, {clickCount: 1 + next(2)});
    } else if (turn < 8) {
      const key = keys[next(keys.length)];
      done.push(key);
      await page.keyboard.press(key);
    } else if (turn === 8) {
      const word = words[next(words.length)];
      done.push(word);
      await page.keyboard.type(word);
    } else {
      done.push('wheel');
      await page.mouse.wheel({deltaY: next(2000) - 1000});
    }
  }
  return done;
}

const seed = Number(process.env.ZTB_BROWSER_SEED ?? 17);

function expectNothingBroken(page, done, least) {
  // Answers that refuse are told on the page, and noted by the browser too.
  page.problems = page.problems.filter((text) => !/Failed to load resource.*\b(400|404|413|499)\b/.test(text));
  assert.ok(done.length > least, `${done.length} turns`);
  assert.deepEqual(page.problems, [], `seed ${seed}, last: ${done.slice(-12).join('; ')}`);
}

test('random clicking', async () => {
  const {page} = seen;
  expectNothingBroken(page, await wander(page, seed, lasting), 100);
  await page.evaluate(() => document.querySelectorAll('dialog').forEach((dialog) => dialog.close()));
  // A page that is loaded anew has its session still, and nothing in its search.
  await page.reload();
  await view('view=symbols&f=1', '.list tbody tr');
  assert.equal(await page.$$eval('.list tbody tr', (rows) => rows.length), 4);
}, {timeout: 3 * lasting});

test('random clicking on a model', async () => {
  const page = await seen.browser.page(await seen.browser.view(seen.folder, 'diet.lp', 'diet.rxf'));
  expectNothingBroken(page, await wander(page, seed + 1, lasting / 4), 10);
  await page.close();
}, {timeout: 3 * lasting});
