// Prints tables of which only a window is drawn: all their rows, up to a limit.
import {counted, h, say} from './dom.js';

const mostRows = 20000;
// So few rows are there beforehand, for those who print by the menu of the browser.
export const readyRows = 1000;

const tables = new Set();
const connected = () => [...tables].filter((table) => {
  if (!table.element.isConnected) tables.delete(table);
  return table.element.isConnected;
});

// The rows that are printed in the place of those that are drawn.
function fill(table, rows, from, isAll) {
  const head = h('tr', {}, table.columns.map((column) => h('th', {scope: 'col', class: column.number ? 'number' : ''}, column.title)));
  const body = rows.map((row, index) => h('tr', {}, table.cells(row, from + index).map((cell, column) =>
    h('td', {class: table.columns[column].number ? 'number' : ''}, cell))));
  const end = (from + rows.length).toLocaleString('en-US');
  table.printed.replaceChildren(h('table', {class: 'grid'}, h('thead', {}, head), h('tbody', {}, body)),
    isAll ? '' : h('p', {class: 'cut'}, `Rows ${(from + 1).toLocaleString('en-US')} to ${end} of ${table.total.toLocaleString('en-US')}. ` +
      `Print on the page takes the first ${mostRows.toLocaleString('en-US')}, a file has all.`));
}

// The first rows without a gap that are there, or those that are seen.
function fillWithWhatIsThere(table) {
  const rows = [];
  for (let row = table.row(0); row !== undefined && rows.length < table.total; row = table.row(rows.length)) rows.push(row);
  if (rows.length === table.total) return fill(table, rows, 0, true);
  const seen = [];
  for (let row = table.row(table.first); row !== undefined && seen.length < table.fitting; row = table.row(table.first + seen.length)) seen.push(row);
  return fill(table, seen, table.first, false);
}

let isReady = false;

// Prints the page with all rows of its tables, up to the limit of each.
export async function printAll() {
  const shown = connected();
  if (shown.length === 0) return globalThis.print();
  try {
    for (const table of shown) {
      const count = Math.min(table.total, mostRows);
      const {rows} = count === 0 ? {rows: []} : await table.fetch(0, count);
      fill(table, rows, 0, count === table.total);
    }
  } catch (error) {
    if (error.name !== 'AbortError') say(error.message);
    return undefined;
  }
  isReady = true;
  say(shown.some(({total}) => total > mostRows) ? `The first ${counted(mostRows, 'row')} are printed.` : '');
  return globalThis.print();
}

export function makePrintable(table) {
  table.printed = h('div', {class: 'printed'});
  tables.add(table);
}

addEventListener('beforeprint', () => {
  if (!isReady) connected().forEach(fillWithWhatIsThere);
});
addEventListener('afterprint', () => {
  isReady = false;
  for (const table of tables) table.printed.replaceChildren();
});
addEventListener('keydown', (event) => {
  if (event.key !== 'p' || !(event.ctrlKey || event.metaKey) || event.shiftKey || event.altKey || connected().length === 0) return;
  event.preventDefault();
  printAll();
});
