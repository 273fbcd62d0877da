// A symbol as a two-way table, whose positions are put in their places by mouse or keyboard.
import * as api from './api.js';
import {choice, counted, h, numberText, problem, say, shown, tick} from './dom.js';
import {asked, filterBar} from './filters.js';
import * as state from './state.js';
import {askForSymbol, heading} from './symbols.js';

const zones = [['rows', 'Rows'], ['cols', 'Columns'], ['over', 'Over']];
const atOnce = 300;
const widest = 200;
const mostPrinted = 20000;
const ways = [['sum', 'Sum'], ['mean', 'Mean'], ['count', 'Count'], ['min', 'Least'], ['max', 'Greatest']];

// How values come together, and of which field: what the address says, where it fits the symbol.
export const waysOf = (symbol) => symbol.values[0] === 'text' ? ways.filter(([word]) => word === 'count') : ways;
export const howOf = (symbol) => waysOf(symbol).some(([word]) => word === state.get('how')) ? state.get('how') : waysOf(symbol)[0][0];
export const fieldOf = (symbol) => symbol.values.length === 1 ? '' : symbol.values.includes(state.get('field')) ? state.get('field') : 'level';

// The positions in their zones; at first the last goes across, and the others down.
function layout(symbol) {
  const inRows = state.numbers('rows').filter((position) => position < symbol.dim);
  const inCols = state.numbers('cols').filter((position) => position < symbol.dim && !inRows.includes(position));
  if (state.get('rows') === '' && state.get('cols') === '' && state.get('over') === '') {
    const over = symbol.keys.map((_, position) => position);
    return {rows: over.splice(0, 1), cols: over.splice(0, 1), over};
  }
  const over = symbol.keys.map((_, position) => position)
    .filter((position) => !inRows.includes(position) && !inCols.includes(position));
  return {rows: inRows, cols: inCols, over};
}

function place(layoutNow, position, zone, before = null) {
  const next = Object.fromEntries(zones.map(([name]) =>
    [name, layoutNow[name].filter((other) => other !== position)]));
  const at = before === null ? next[zone].length : next[zone].indexOf(before);
  next[zone].splice(at < 0 ? next[zone].length : at, 0, position);
  state.set({rows: next.rows.join(','), cols: next.cols.join(','), over: next.over.join(',')});
}

function moveByKey(event, layoutNow, symbol, position, zone) {
  const names = zones.map(([name]) => name);
  const at = names.indexOf(zone);
  const list = layoutNow[zone];
  const index = list.indexOf(position);
  let target = null;
  if (event.key === 'ArrowRight' && at < 2) target = [names[at + 1], null];
  if (event.key === 'ArrowLeft' && at > 0) target = [names[at - 1], null];
  if (event.key === 'ArrowUp' && index > 0) target = [zone, list[index - 1]];
  if (event.key === 'ArrowDown' && index < list.length - 1) target = [zone, list[index + 2] ?? null];
  if (target === null) return;
  event.preventDefault();
  place(layoutNow, position, ...target);
  say(`${shown(symbol.keys[position])}: ${zones.find(([name]) => name === target[0])[1]}`);
}

function zoneElement(symbol, layoutNow, [zone, title]) {
  const drop = (event, before) => {
    event.preventDefault();
    event.stopPropagation();
    const position = Number(event.dataTransfer.getData('text/plain'));
    if (Number.isInteger(position) && position < symbol.dim && position !== before) {
      place(layoutNow, position, zone, before);
    }
  };
  return h('div', {
    class: 'zone',
    role: 'group',
    'aria-label': title,
    id: `zone-${zone}`,
    ondragover: (event) => event.preventDefault(),
    ondrop: (event) => drop(event, null),
  }, h('span', {class: 'zone-title'}, title), layoutNow[zone].map((position) => h('button', {
    type: 'button',
    class: 'chip',
    id: `position-${position}`,
    draggable: true,
    title: 'drag it, or move it with the arrow keys',
    ondragstart: (event) => event.dataTransfer.setData('text/plain', String(position)),
    ondrop: (event) => drop(event, position),
    onkeydown: (event) => moveByKey(event, layoutNow, symbol, position, zone),
    onclick: () => place(layoutNow, position, {rows: 'cols', cols: 'over', over: 'rows'}[zone]),
  }, shown(symbol.keys[position]))));
}

// From white to blue, or to orange below zero.
function heat(value, most) {
  if (typeof value !== 'number' || most === 0) return {};
  const share = Math.min(1, Math.abs(value) / most);
  return {'--heat': `${Math.round(share * 70)}%`, '--hue': value < 0 ? 'var(--heat-below)' : 'var(--heat-above)'};
}

function drawTable(symbol, layoutNow, answer, shownRows) {
  const {rows, cols, cells} = answer;
  const across = Math.min(cols.length, widest);
  const values = new Map();
  let most = 0;
  for (const [row, column, value] of cells) {
    values.set(row * cols.length + column, value);
    if (typeof value === 'number') most = Math.max(most, Math.abs(value));
  }
  const hot = state.get('heat') === '1';
  const leading = Math.max(1, layoutNow.rows.length);
  const title = (index) => layoutNow.rows.length === 0 ? '' : shown(symbol.keys[layoutNow.rows[index]]);
  const heads = Array.from({length: leading}, (_, index) => h('th', {scope: 'col'}, title(index) || ' '));
  const columnName = (labels) => labels.length === 0 ? 'value' : labels.map(shown).join(' · ');
  return h('table', {class: hot ? 'grid pivot hot' : 'grid pivot', 'aria-label': `Pivot of ${shown(symbol.name)}`},
    h('thead', {}, h('tr', {}, heads, cols.slice(0, across).map((labels) =>
      h('th', {scope: 'col', class: 'number'}, columnName(labels))))),
    h('tbody', {}, rows.slice(0, shownRows).map((labels, row) => h('tr', {},
      (labels.length === 0 ? ['all'] : labels.map(shown)).map((label) => h('th', {scope: 'row'}, label)),
      Array.from({length: across}, (_, column) => {
        const value = values.get(row * cols.length + column);
        return h('td', {class: 'number', style: hot ? heat(value, most) : {}}, numberText(value));
      })))));
}

export async function pivotPage(main, context) {
  const {symbol} = context;
  if (symbol === null) return askForSymbol(main, 'Pivot');
  const layoutNow = layout(symbol);
  const how = howOf(symbol);
  const out = h('div', {class: 'out', tabIndex: 0, role: 'region', 'aria-label': 'Pivot, scrolls'});
  const total = h('span', {role: 'status', id: 'pivot-total'});
  main.replaceChildren(heading(symbol), filterBar(context),
    h('div', {class: 'zones'}, zones.map((zone) => zoneElement(symbol, layoutNow, zone))),
    h('div', {class: 'row'},
      choice('Value', waysOf(symbol), how,
        (value) => state.set({how: value})),
      symbol.values.length > 1 && choice('Field', symbol.values.map((name) => [name, name]),
        fieldOf(symbol), (value) => state.set({field: value})),
      tick('Heat map', state.get('heat') === '1', (value) => state.set({heat: value}), 'heat'), total),
    out);
  let answer = null;
  try {
    answer = await api.get('pivot', {
      ...asked(context), rows: layoutNow.rows.join(','), cols: layoutNow.cols.join(','), how,
      field: fieldOf(symbol),
    }, context.signal);
  } catch (error) {
    if (error.name === 'AbortError') throw error;
    out.replaceChildren(problem(error));
    return;
  }
  total.textContent = `${counted(answer.rows.length, 'row')} × ${counted(answer.cols.length, 'column')}, ${counted(answer.cells.length, 'cell')}`;
  const cut = answer.cols.length > widest &&
    h('p', {class: 'hint'}, `${counted(answer.cols.length - widest, 'column')} more; filter, or put the position in the rows.`);
  let shownRows = atOnce;
  const show = (count) => {
    const isCut = answer.rows.length > count;
    const more = isCut && h('button', {type: 'button', onclick: () => show(shownRows += atOnce)}, `Show more of ${counted(answer.rows.length, 'row')}`);
    const rest = isCut && h('p', {class: 'cut'}, `The first ${count.toLocaleString('en-US')} of ${counted(answer.rows.length, 'row')}.`);
    out.replaceChildren(...[drawTable(symbol, layoutNow, answer, count), more, rest, cut].filter(Boolean));
  };
  show(shownRows);
  addEventListener('beforeprint', () => show(Math.max(shownRows, mostPrinted)), {signal: context.signal});
  addEventListener('afterprint', () => show(shownRows), {signal: context.signal});
}
