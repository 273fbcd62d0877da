// What a model consists of, and what a solve leaves.
import * as api from './api.js';
import {choice, counted, h, numberText, problem, shortNumber, shown, svg} from './dom.js';
import * as state from './state.js';
import {Windowed} from './windowed.js';

const listed = 500;
// The solution of file 0 is shown as file 2, that of 1 as 3.
export const firstSolution = 2;
const solvers = [['auto', 'the one that suits'], ['clp', 'clp'], ['cbc', 'cbc'], ['glpk', 'glpk'], ['ipopt', 'ipopt'], ['bonmin', 'bonmin']];

const percent = (share) => share > 0 && share < 0.001 ? '< 0.1 %' : `${Number((100 * share).toPrecision(3))} %`;

// A table in a box of its own, which scrolls.
function boxed(label, heads, rows, more = null) {
  return h('div', {class: 'scroll-x', tabIndex: 0, role: 'region', 'aria-label': `${label}, scrolls`},
    h('table', {class: 'grid', 'aria-label': label},
      h('thead', {}, h('tr', {}, heads.map(([title, isNumber]) => h('th', {scope: 'col', class: isNumber ? 'number' : ''}, title)))),
      h('tbody', {}, rows.slice(0, listed).map((row) => h('tr', {}, row.map((cell, index) => h(index === 0 ? 'th' : 'td',
        {class: heads[index][1] ? 'number' : '', scope: index === 0 ? 'row' : undefined}, cell)))))),
    rows.length > listed && h('p', {class: 'hint'}, `${counted(rows.length - listed, 'more row')}; ztb model --all prints them.`), more);
}

function familyTable(families) {
  const range = (least, greatest) => least === null ? '' : least === greatest ? numberText(least) : `${numberText(least)} to ${numberText(greatest)}`;
  return boxed('Families', [['Family'], ['Of'], ['Positions', true], ['Number', true], ['Kind'], ['Entries', true], ['Coefficients'], ['Bounds, sides']],
    families.map((one) => [shown(one.name), one.of, numberText(one.dimension), one.count.toLocaleString('en-US'), one.kind,
      one.entries.toLocaleString('en-US'), range(one.min, one.max), range(one.side_min, one.side_max)]));
}

// Where the families of one side begin and end, as shares of the whole.
function spans(families, whole) {
  let from = 0;
  return families.map(({name, count}) => {
    const span = {name, count, from: from / whole, to: (from + count) / whole};
    from += count;
    return span;
  });
}

const frame = {left: 110, top: 24, width: 620, height: 400};

// Lines between blocks, names of families along both sides, and what each block has as a hint.
function blockParts({rows, cols, row_families: down, col_families: across, blocks}) {
  const right = spans(across, cols);
  const below = spans(down, rows);
  const x = (share) => frame.left + share * frame.width;
  const y = (share) => frame.top + share * frame.height;
  const line = (d) => svg('path', {d, stroke: 'var(--soft)', 'stroke-width': 0.7, fill: 'none'});
  const label = (name, at, place, room) => room < 11 ? null : svg('text', place, name.length * 6.2 > at ? `${name.slice(0, Math.max(1, Math.floor(at / 6.2) - 1))}…` : name);
  return [
    ...right.slice(1).map(({from}) => line(`M${x(from)} ${frame.top}V${frame.top + frame.height}`)),
    ...below.slice(1).map(({from}) => line(`M${frame.left} ${y(from)}H${frame.left + frame.width}`)),
    ...right.map(({name, from, to}) => label(shown(name), (to - from) * frame.width,
      {x: x((from + to) / 2), y: frame.top - 8, 'text-anchor': 'middle', 'font-size': 11}, (to - from) * frame.width)),
    ...below.map(({name, from, to}) => label(shown(name), frame.left - 12,
      {x: frame.left - 6, y: y((from + to) / 2) + 4, 'text-anchor': 'end', 'font-size': 11}, (to - from) * frame.height)),
    ...blocks.map(([row, column, entries]) => svg('rect', {
      x: x(right[column].from), y: y(below[row].from), class: 'block',
      width: (right[column].to - right[column].from) * frame.width, height: (below[row].to - below[row].from) * frame.height,
      fill: 'transparent',
    }, svg('title', {}, `${shown(down[row].name)} by ${shown(across[column].name)}: ${counted(entries, 'entry').replace(/ys$/, 'ies')}`))),
  ].filter(Boolean);
}

// The matrix from above: the more entries, the darker.
function picture(matrix) {
  const {rows, cols, density} = matrix;
  const most = Math.max(1, ...density.map((line) => Math.max(0, ...line)));
  const height = density.length;
  const width = density[0]?.length ?? 0;
  const dots = density.flatMap((line, row) => line.map((count, column) => count === 0 ? null : svg('rect', {
    x: column, y: row, width: 1, height: 1, fill: 'var(--accent)', 'fill-opacity': (0.25 + 0.75 * count / most).toFixed(3),
  })).filter(Boolean));
  return svg('svg', {
    class: 'matrix-frame', viewBox: `0 0 ${frame.left + frame.width + 6} ${frame.top + frame.height + 6}`, role: 'img',
    'aria-label': `Matrix of ${counted(rows, 'row')} and ${counted(cols, 'column')}, by families`,
  },
  svg('svg', {class: 'matrix', x: frame.left, y: frame.top, width: frame.width, height: frame.height, viewBox: `0 0 ${width} ${height}`, preserveAspectRatio: 'none'}, ...dots),
  svg('rect', {x: frame.left, y: frame.top, width: frame.width, height: frame.height, fill: 'none', stroke: 'var(--soft)'}),
  ...(matrix.blocks ? blockParts(matrix) : []));
}

function blockTable({row_families: down, col_families: across, blocks}) {
  return h('details', {class: 'values'}, h('summary', {}, 'Blocks as a table'),
    boxed('Blocks', [['Rows'], ['Columns'], ['Size'], ['Entries', true], ['Filled', true]], blocks.map(([row, column, entries]) => {
      const [height, width] = [down[row].count, across[column].count];
      return [shown(down[row].name), shown(across[column].name), `${height.toLocaleString('en-US')} × ${width.toLocaleString('en-US')}`,
        entries.toLocaleString('en-US'), percent(entries / height / width)];
    })));
}

// What is asked of the solver, as the address says; null before a solve.
const asked = () => state.get('solve') === '' ? null
  : {solver: state.get('solve') === 'auto' ? '' : state.get('solve'), seconds: state.get('seconds')};

// Solves as the address says, or gives what that solve has left, and has its solution stand among the
// files.
export async function solution(found, file, signal) {
  const answer = await api.get('solve', {f: file, ...(asked() ?? {})}, signal);
  const key = `${state.get('solve')} ${state.get('seconds')}`;
  const number = firstSolution + file;
  if (!answer.solved) delete found.files[number];
  else found.files[number] = answer.file;
  if (found.solved[file] !== key) delete found.symbols[number];
  found.solved[file] = key;
  return answer;
}

function facts(answer) {
  const pairs = [['Status', answer.status], ['Ended by', answer.ended],
    answer.solved && ['Objective', numberText(answer.objective)],
    typeof answer.bound === 'number' && answer.bound !== answer.objective && ['Bound', numberText(answer.bound)],
    ['Solver', answer.solver], ['Seconds', shortNumber(answer.seconds)], ['Iterations', shortNumber(answer.iterations)]].filter(Boolean);
  return h('dl', {class: 'numbers', id: 'solve-facts'}, pairs.map(([name, value]) => h('div', {}, h('dt', {}, name), h('dd', {}, value))));
}

const fields = ['level', 'marginal', 'lower', 'upper'];

// The records of one variable or equation, with what is left to the nearer bound.
async function recordTable(context, out, symbol) {
  const {found, file, signal} = context;
  const number = firstSolution + file;
  found.symbols[number] ??= await api.get('symbols', {f: number}, signal);
  const {keys, name} = found.symbols[number].find((one) => one.name === symbol);
  const [sort, isDown] = [state.get('sort'), state.get('desc') === '1'];
  const titles = [...keys, ...fields, 'slack'];
  const table = new Windowed({
    label: `Solution of ${shown(name)}`,
    columns: titles.map((title, index) => ({
      title: shown(title), number: index >= keys.length, id: `solution-sort-${index}`,
      order: sort === title ? (isDown ? 'desc' : 'asc') : '',
      sort: () => state.set(sort === title && isDown ? {sort: '', desc: ''} : {sort: title, desc: sort === title}),
    })),
    fetch: (from, count) => api.get('rows', {f: number, s: name, slack: 1, sort, desc: sort === '' ? '' : state.get('desc'), from, count}, signal),
    cells: (row) => [...row.slice(0, keys.length).map(shown), ...row.slice(keys.length, keys.length + fields.length).map(numberText),
      numberText(row.at(-1))],
  });
  table.element.classList.add('in-page');
  out.replaceChildren(table.element);
  await table.open();
}

function symbolTable(context, symbols, chosen) {
  const {file} = context;
  const open = (name, view) => state.openSymbol(name, {view, f: firstSolution + file});
  return boxed('Solution by symbol', [['Symbol'], ['Type'], ['Records', true], ['Level not 0', true], ['Marginal not 0', true], ['At a bound', true],
    ['Least level', true], ['Greatest level', true], ['Shown as']],
  symbols.map((one) => [
    h('button', {type: 'button', class: 'link', id: `solution-${one.name}`, 'aria-pressed': one.name === chosen ? 'true' : 'false', onclick: () => state.set({of: one.name, sort: '', desc: ''})}, shown(one.name)),
    one.type, ...[one.records, one.levels, one.marginals, one.bound].map((count) => count.toLocaleString('en-US')),
    shortNumber(one.least), shortNumber(one.greatest),
    h('span', {class: 'links'}, ['table', 'pivot', 'chart'].map((view) => h('button', {
      type: 'button', class: 'link', 'aria-label': `${shown(one.name)} as ${view}`, onclick: () => open(one.name, view),
    }, view)))]));
}

async function drawSolution(context, out) {
  out.replaceChildren(h('p', {class: 'hint'}, 'Solving…'));
  const answer = await solution(context.found, context.file, context.signal);
  context.redrawSymbols();
  out.replaceChildren(facts(answer));
  if (!answer.solved) {
    out.append(h('p', {}, 'There is no solution to show.'));
    return;
  }
  const chosen = answer.symbols.some(({name}) => name === state.get('of')) ? state.get('of') : answer.symbols[0]?.name;
  const records = h('div');
  out.append(symbolTable(context, answer.symbols, chosen));
  if (chosen === undefined) return;
  out.append(h('h3', {}, shown(chosen)), h('p', {class: 'hint'}, 'Slack is the way from the level to the nearer bound.'), records);
  await recordTable(context, records, chosen);
}

function solveForm() {
  let solver = state.get('solve') || 'auto';
  const seconds = h('input', {type: 'text', id: 'solve-seconds', inputmode: 'numeric', value: state.get('seconds'), placeholder: 'any', size: 6});
  return h('form', {class: 'row', id: 'solve', 'aria-label': 'Solve', onsubmit: (event) => {
    event.preventDefault();
    state.set({solve: solver, seconds: seconds.value.trim(), sort: '', desc: ''});
  }}, choice('Solver', solvers, solver, (value) => { solver = value; }),
  h('label', {class: 'choice'}, h('span', {}, 'Seconds at most'), seconds), h('button', {class: 'main'}, 'Solve'));
}

export async function modelPage(main, context) {
  const answer = await api.get('model', {f: context.file}, context.signal);
  const {matrix} = answer;
  const solved = h('div', {id: 'solution'});
  main.replaceChildren(h('h1', {}, 'Model'),
    h('p', {class: 'hint', id: 'model-total'}, `${counted(matrix.rows, 'row')}, ${counted(matrix.cols, 'column')}, ${answer.sense}`),
    h('section', {}, h('h2', {}, 'Solution'), solveForm(), solved),
    h('section', {}, h('h2', {}, 'Families'), familyTable(answer.families)),
    h('section', {}, h('h2', {}, 'Matrix'),
      h('p', {class: 'hint'}, 'Rows and columns stand by their families, the objective first.'),
      picture(matrix), matrix.blocks ? blockTable(matrix) : h('p', {class: 'hint'}, 'There are too many families to tell their blocks.')));
  if (asked() === null) return;
  try {
    await drawSolution(context, solved);
  } catch (error) {
    if (error.name === 'AbortError') throw error;
    solved.replaceChildren(problem(error));
  }
}
