// The files that the tests look at, made by the command.
import {execFileSync} from 'node:child_process';
import {copyFileSync, createWriteStream, existsSync, mkdtempSync, readdirSync, rmSync, writeFileSync} from 'node:fs';
import {once} from 'node:events';
import {tmpdir} from 'node:os';
import path from 'node:path';
import {project, ztb, ztbFails} from './browser.mjs';

export const routes = path.join(project, '../shared/data/air-routes');
export const hasRoutes = existsSync(path.join(routes, 'routes.csv'));

export function newFolder() {
  const folder = mkdtempSync(path.join(tmpdir(), 'ztb-view-data-'));
  process.on('exit', () => rmSync(folder, {recursive: true, force: true}));
  return folder;
}

// diet.rxf, and changed.rxf with other prices: one gone, one new, two changed.
export function makeDiet(folder) {
  const examples = path.join(project, 'examples/diet');
  for (const name of readdirSync(examples)) {
    if (/\.(csv|lp)$/.test(name)) copyFileSync(path.join(examples, name), path.join(folder, name));
  }
  ztb(folder, 'import', 'diet.rxf', '--from', 'foods.csv', '--set', 'food : unit "Foods and their units"',
    '--parameter', 'price(food) = price_cents_1939', '--from', 'requirements.csv', '--set', 'nutrient',
    '--parameter', 'requirement(nutrient) = daily_allowance', '--from', 'nutrition.csv',
    '--parameter', 'nutrition(food, nutrient) = per_dollar');
  ztb(folder, 'export', 'diet.rxf', 'price', '--to', 'price.csv');
  const rows = ztb(folder, 'show', 'diet.rxf', 'price', '--csv').trim().split('\n').slice(1)
    .filter((line) => !line.startsWith('Milk,'))
    .map((line) => line.replace(/^Lard,.*/, 'Lard,1').replace(/^Sugar,.*/, 'Sugar,100'));
  writeFileSync(path.join(folder, 'changed.csv'), `food,price\n${rows.join('\n')}\nTofu,7\n`);
  ztb(folder, 'import', 'changed.rxf', '--from', 'changed.csv', '--parameter', 'price(food)');
}

// sweep.rxf, a thousand price scenarios, with scenarios.rxf beside it.
export function makeSweep(folder, count = 1000) {
  execFileSync(path.join(project, 'examples/diet/make_scenarios.py'), [String(count)], {cwd: folder});
  ztb(folder, 'import', 'scenarios.rxf', '--from', 'scenarios.csv', '--set', 'scenario', '--from', 'foods.csv', '--set', 'food',
    '--from', 'prices.csv', '--parameter', 'price(scenario, food) = index "Price beside that of 1939"');
  ztb(folder, 'sweep', 'diet.lp', '--scenarios', 'scenarios.rxf', '--over', 'scenario', '--report', 'buy', '--out', 'sweep.rxf');
}

// some.rxf: of thirty scenarios those that need more than twenty have no solution.
export function makeFailing(folder) {
  writeFileSync(path.join(folder, 'room.lp'), 'Minimize\n cost: x\nSubject To\n meet: x - need_var >= 0\n' +
    " split['a','u']: y['a','u'] - x = 0\n split['a','v']: y['a','v'] - 2 x = 0\n split['b','u']: y['b','u'] - 4 x = 0\nBounds\n x <= 20\n need_var = 1\nEnd\n");
  const rows = Array.from({length: 30}, (_, index) => `need ${index + 1},${index + 1}`);
  writeFileSync(path.join(folder, 'needs.csv'), `case,need\n${rows.join('\n')}\n`);
  ztb(folder, 'import', 'needs.rxf', '--from', 'needs.csv', '--set', 'case', '--parameter', 'need(case)');
  return ztbFails(folder, 'sweep', 'room.lp', '--scenarios', 'needs.rxf', '--over', 'case', '--report', 'y', '--out', 'some.rxf');
}

export function makeRoutes(folder) {
  ztb(folder, 'import', 'routes.rxf', '--from', path.join(routes, 'airports.csv'), '--set', 'airport : name',
    '--from', path.join(routes, 'routes.csv'), '--distinct-set', 'airline',
    '--parameter', 'types(airline, from in airport, to in airport) = aircraft_types');
}

// big.rxf: 1000 x 100 x 100 records, whose value tells where they stand.
export const bigValue = (i, j, k) => (i * 7 + j * 3 + k) % 1000;
export async function makeBig(folder) {
  const file = path.join(folder, 'big.csv');
  const out = createWriteStream(file);
  out.write('i,j,k,big\n');
  for (let i = 0; i < 1000; ++i) {
    let text = '';
    for (let j = 0; j < 100; ++j) for (let k = 0; k < 100; ++k) text += `i${i},j${j},k${k},${bigValue(i, j, k)}\n`;
    if (!out.write(text)) await once(out, 'drain');
  }
  out.end();
  await once(out, 'finish');
  ztb(folder, 'import', 'big.rxf', '--from', 'big.csv', '--parameter', 'big(i, j, k)');
  rmSync(file);
}

// Labels that would do harm if they were taken for anything but text.
export const hostile = [
  '<script>alert(1)</script>',
  '<img src=x onerror=alert(1)>',
  '"><svg onload=alert(1)>',
  "';alert(1)//",
  '\u202Eright to left\u202C',
  '{{constructor}} ${alert(1)} %3Cscript%3E',
  '&lt;b&gt; &amp; &#x41;',
  'x'.repeat(63),
];
export function makeHostile(folder) {
  const quoted = (text) => `"${text.replace(/"/g, '""')}"`;
  writeFileSync(path.join(folder, 'hostile.csv'), `label,other,evil\n${hostile.map((label, index) =>
    `${quoted(label)},${quoted(hostile[(index + 1) % hostile.length])},${index}`).join('\n')}\n`);
  ztb(folder, 'import', 'hostile.rxf', '--from', 'hostile.csv', '--set', 'all(label) : other "<b>bold</b> <script>alert(2)</script>"',
    '--parameter', 'evil(label in all, other in all) "\u202E<img src=x onerror=alert(3)>"');
}

// endless.lp: items whose weights of several kinds are to come to half of all, a search without end.
export function makeEndless(folder) {
  const items = 50;
  let state = 7;
  const rows = [];
  for (let kind = 1; kind <= 6; ++kind) {
    const weights = Array.from({length: items}, () => {
      state = (Math.imul(state, 1664525) + 1013904223) >>> 0;
      return (state >>> 16) % 100;
    });
    const all = weights.reduce((sum, weight) => sum + weight, 0);
    rows.push(` exactly(${kind}):${weights.map((weight, item) => ` + ${weight} item(${item + 1})\n`).join('')} = ${Math.floor(all / 2)}\n`);
  }
  const names = Array.from({length: items}, (_, item) => ` item(${item + 1})\n`).join('');
  writeFileSync(path.join(folder, 'endless.lp'), `Minimize\n first: item(1)\nSubject To\n${rows.join('')}Binaries\n${names}End\n`);
}

// odd.rxf and other.rxf: symbols without records, of 20 positions and of none, an alias, special values, numbers as far apart as
// they can be, labels that addresses and CSV take for something else.
export const strange = ['#&=+%20', 'a,b', '日本語ラベル', '\\\\\\x41', 'x'.repeat(63), 'a;b|c', '="1"'.replace(/"/g, "'"), '-inf'];
export function makeOdd(folder) {
  const write = (name, symbols) => {
    const labels = new Set();
    const lines = [];
    for (const {symbol, domains, type = 'parameter', alias_of, records = []} of symbols) {
      lines.push({symbol, type, domains, user_info: type === 'variable' ? 5 : 0, ...(alias_of ? {alias_of} : {records: records.length}), text: ''});
    }
    const rows = symbols.flatMap(({symbol, records = []}) => records.map(([keys, content]) => {
      keys.forEach((key) => labels.add(key));
      return {of: symbol, keys, ...(typeof content === 'object' ? content : {value: content})};
    }));
    const all = [{symbols: symbols.length, labels: labels.size}, ...lines, ...[...labels].map((label) => ({label})), ...rows];
    writeFileSync(path.join(folder, `${name}.jsonl`), all.map((line) => `${JSON.stringify(line)}\n`).join(''));
    ztb(folder, 'import', `${name}.rxf`, '--from', `${name}.jsonl`);
  };
  const any = (count) => Array.from({length: count}, () => '*');
  const of = (labels, values) => labels.map((label, index) => [[label], values[index]]);
  const deep = (sign) => Array.from({length: 20}, (_, index) => `${sign}${index}`);
  write('odd', [
    {symbol: 's', type: 'set', domains: ['*'], records: ['a', 'b', 'c'].map((label) => [[label], {text: ''}])},
    {symbol: 'other_s', type: 'alias', domains: ['*'], alias_of: 's'},
    {symbol: 'empty', type: 'set', domains: ['*']},
    {symbol: 'nothing', domains: ['s', '*']},
    {symbol: 'scalar', domains: [], records: [[[], 3.5]]},
    {symbol: 'no_scalar', domains: []},
    {symbol: 'deep', domains: any(20), records: [[deep('k'), 1], [deep('j'), -2]]},
    {symbol: 'special', domains: ['s', '*'], records: [[['a', 'x'], 'na'], [['a', 'y'], 'inf'], [['b', 'x'], '-inf'], [['b', 'y'], 'eps'], [['c', 'x'], 'undef'], [['c', 'y'], 4]]},
    {symbol: 'huge', domains: ['s'], records: of(['a', 'b', 'c'], [1.7e308, -1.7e308, 1e-308])},
    {symbol: 'same', domains: ['s'], records: of(['a', 'b', 'c'], [7, 7, 7])},
    {symbol: 'years', domains: ['*'], records: of(['2001', '1999', '2000'], [1, 2, 3])},
    {symbol: 'v', type: 'variable', domains: ['s'], records: [[['a'], {level: 2, marginal: 0, lower: '-inf', upper: 'inf', scale: 1}]]},
    {symbol: 'no_v', type: 'variable', domains: ['s']},
    {symbol: 'q', type: 'equation', domains: ['s'], records: [[['b'], {level: 3, marginal: 1, lower: 1, upper: 3, scale: 1}]]},
    {symbol: 'pairs', type: 'set', domains: ['s', 's'], records: [[['a', 'b'], {text: ''}]]},
    {symbol: 'strange', domains: any(2), records: strange.map((label, index) => [[label, label], index])},
  ]);
  write('other', [
    {symbol: 't', type: 'set', domains: ['*'], records: ['b', 'c', 'd'].map((label) => [[label], {text: ''}])},
    {symbol: 'same', domains: ['t'], records: of(['b', 'c', 'd'], [8, 7, 9])},
    {symbol: 'special', domains: any(2), records: [[['a', 'x'], 'na'], [['b', 'y'], 1], [['c', 'y'], 4]]},
    {symbol: 'deep', domains: any(3)},
    {symbol: 'scalar', domains: [], records: [[[], 4]]},
  ]);
}

// The records of CSV as the command prints it, without quotes within fields.
export const rowsOf = (csv) => csv.trim().split('\n').map((line) => {
  const fields = [];
  for (const [, quoted, plain] of line.matchAll(/(?:^|,)(?:"((?:[^"]|"")*)"|([^,]*))/g)) {
    fields.push(quoted === undefined ? plain : quoted.replace(/""/g, '"'));
  }
  return fields;
});
