// The records of a symbol.
import * as api from './api.js';
import {counted, dialog, h, numberText, problem, save, say, shown, tick, toClipboard} from './dom.js';
import {asked, filterBar} from './filters.js';
import {printAll} from './print.js';
import * as state from './state.js';
import {askForSymbol, heading} from './symbols.js';
import {Windowed} from './windowed.js';

// A clipboard takes so many cells.
const mostCopied = 8e6;

// The column that the rows are sorted by, where the symbol has it, and which way.
function order({symbol}) {
  const sort = [...symbol.keys, ...symbol.values].includes(state.get('sort')) ? state.get('sort') : '';
  return {sort, desc: sort !== '' && state.get('desc') === '1' ? '1' : ''};
}

function toggleSort(column) {
  const isSame = state.get('sort') === column;
  const isDescending = state.get('desc') === '1';
  state.set(isSame && isDescending ? {sort: '', desc: '', from: ''}
    : {sort: column, desc: isSame ? '1' : '', from: ''});
}

// The columns that are hidden, and those that are shown, by their numbers; one is shown at least.
function hiddenColumns(symbol) {
  const count = symbol.keys.length + symbol.values.length;
  const hidden = [...new Set(state.numbers('hide'))].filter((index) => index < count).sort((left, right) => left - right);
  return hidden.length < count ? hidden : [];
}
function shownColumns(symbol) {
  const hidden = hiddenColumns(symbol);
  return [...symbol.keys, ...symbol.values].map((_, index) => index).filter((index) => !hidden.includes(index));
}

const isNumber = (symbol, index) => index >= symbol.keys.length && symbol.values[0] !== 'text';
const cellText = (symbol, index, value) =>
  isNumber(symbol, index) ? numberText(value) : value === '' && index >= symbol.keys.length ? '' : shown(value);

function chooseColumns(symbol) {
  const names = [...symbol.keys, ...symbol.values];
  const hidden = new Set(hiddenColumns(symbol));
  const box = dialog('Columns', h('fieldset', {}, h('legend', {}, 'Shown'),
    names.map((name, index) => tick(shown(name), !hidden.has(index), (isShown) => {
      if (isShown) hidden.delete(index); else hidden.add(index);
    }))),
  h('div', {class: 'row'}, h('button', {type: 'button', class: 'main', onclick: () => {
    box.close();
    if (hidden.size === names.length) return say('a column has to stay');
    state.set({hide: [...hidden].sort((left, right) => left - right).join(',')});
  }}, 'Apply'), h('button', {type: 'button', onclick: () => box.close()}, 'Cancel')));
}

// What is shown as text with tabs, as far as it fits.
async function copyRows(context, total) {
  const rows = Math.floor(mostCopied / shownColumns(context.symbol).length);
  const blob = await api.get('export', {...asked(context), ...order(context), hide: hiddenColumns(context.symbol).join(), format: 'tsv', most: rows}, context.signal);
  await toClipboard(await blob.text(), total <= rows ? counted(total, 'row')
    : `the first ${rows.toLocaleString('en-US')} of ${counted(total, 'row')} (a file has all)`);
}

// What a file of each kind keeps of what is shown.
const keepsAll = (context, format) => format !== 'rxf' || (hiddenColumns(context.symbol).length === 0 && order(context).sort === '');

async function exportAs(context, format) {
  const blob = await api.get('export',
    {...asked(context), ...order(context), hide: hiddenColumns(context.symbol).join(), format}, context.signal);
  save(blob, `${context.symbol.name.replace(/[^\w.-]/g, '_')}.${format}`);
  say(`${counted(blob.size, 'byte')} saved${keepsAll(context, format) ? '' : ', with all positions in the order of the file'}`);
}

export async function tablePage(main, context) {
  const {symbol} = context;
  if (symbol === null) return askForSymbol(main, 'Table');
  const columns = shownColumns(symbol);
  const names = [...symbol.keys, ...symbol.values];
  const total = h('span', {role: 'status', id: 'row-total'});
  let rowCount = 0;
  const table = new Windowed({
    label: `Records of ${shown(symbol.name)}`,
    first: Number(state.get('from')) || 0,
    columns: columns.map((index) => ({
      title: shown(names[index]),
      id: `sort-${index}`,
      number: isNumber(symbol, index),
      order: order(context).sort === names[index] ? (state.get('desc') === '1' ? 'desc' : 'asc') : '',
      sort: () => toggleSort(names[index]),
    })),
    fetch: (from, count) => api.get('rows', {...asked(context), ...order(context), from, count}, context.signal),
    cells: (row) => columns.map((index) => cellText(symbol, index, row[index])),
    moved: (first) => {
      if (!context.signal.aborted) state.set({from: first === 0 ? '' : first}, {quietly: true});
    },
    counted: (count) => {
      rowCount = count;
      total.textContent = count === symbol.records ? counted(count, 'record')
        : `${counted(count, 'record')} of ${symbol.records.toLocaleString('en-US')}`;
    },
  });
  const act = (work) => async () => {
    try {
      await work();
    } catch (error) {
      if (error.name !== 'AbortError') say(error.message);
    }
  };
  main.replaceChildren(heading(symbol), filterBar(context),
    h('div', {class: 'row'}, total,
      h('button', {type: 'button', id: 'columns', onclick: () => chooseColumns(symbol)}, 'Columns'),
      h('button', {type: 'button', id: 'copy', onclick: act(() => copyRows(context, rowCount))}, 'Copy'),
      h('button', {type: 'button', id: 'print', onclick: act(printAll)}, 'Print'),
      ['csv', 'xlsx', 'rxf'].map((format) => h('button', {
        type: 'button', id: `export-${format}`, onclick: act(() => exportAs(context, format)),
      }, {csv: 'Save CSV', xlsx: 'Save Excel', rxf: 'Save RXF'}[format])),
      !keepsAll(context, 'rxf') && h('span', {class: 'hint', id: 'rxf-keeps'}, 'RXF keeps the filters; it has all positions, in its own order.')),
    table.element);
  try {
    await table.open();
  } catch (error) {
    if (error.name === 'AbortError') throw error;
    table.element.replaceWith(problem(error));
  }
}
