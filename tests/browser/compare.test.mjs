// The page Compare, held against ztb diff.
import assert from 'node:assert/strict';
import {test} from 'node:test';
import {makeDiet} from './data.mjs';
import {seen, shownRows, suite, view} from './suite.mjs';
import {spawnSync} from 'node:child_process';
import path from 'node:path';
import {project} from './browser.mjs';

suite(makeDiet, 'diet.rxf', 'changed.rxf');

test('what is new, gone and changed is that of ztb diff, the greatest change first', async () => {
  await view('view=compare&s=price', '.grid tbody td');
  const programs = process.env.ZTB_BIN ?? path.join(project, 'build/release/bin');
  const said = spawnSync(path.join(programs, 'ztb'), ['diff', 'diet.rxf', 'changed.rxf'], {cwd: seen.folder, encoding: 'utf8'}).stdout;
  assert.match(said, /~ parameter price\(food\)[^]*records: 1 gone, 1 added, 2 changed/);
  const counts = await Promise.all(['new', 'gone', 'changed', 'same'].map((word) =>
    seen.page.$eval(`#count-${word}`, (place) => place.textContent)));
  assert.deepEqual(counts, ['1', '1', '2', '74']);
  const rows = await shownRows();
  assert.equal(rows.length, 4);
  const of = (label) => rows.find((row) => row[0] === label);
  for (const label of ['Lard', 'Sugar']) {
    const [, before, after] = said.match(new RegExp(`~ \\("${label}"\\) (\\S+) -> (\\S+)`));
    assert.deepEqual(of(label).slice(1, 4), ['changed', before, after]);
    assert.ok(Math.abs(Number(of(label)[4]) - (after - before)) < 1e-9);
  }
  assert.deepEqual(of('Milk').slice(1, 4), ['gone', '11', '']);
  assert.deepEqual(of('Tofu').slice(1, 4), ['new', '', '7']);
  const changes = rows.filter((row) => row[1] === 'changed').map((row) => Math.abs(Number(row[4])));
  assert.deepEqual(changes, [...changes].sort((left, right) => right - left));
});
