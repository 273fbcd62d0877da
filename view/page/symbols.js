// The list of symbols beside every page, and the page that tells more about them.
import {choice, counted, h, shown} from './dom.js';
import * as state from './state.js';

const types = [['set', 'Sets'], ['alias', 'Aliases'], ['parameter', 'Parameters'],
  ['variable', 'Variables'], ['equation', 'Equations']];
const mostRows = 2000;
let wanted = '';
let drawn = null;

export const signature = (symbol) =>
  symbol.dim === 0 ? symbol.name : `${symbol.name}(${symbol.domains.join(', ')})`;

const fits = (symbol) => {
  const text = `${signature(symbol)} ${symbol.text}`.toLowerCase();
  return wanted.toLowerCase().split(/\s+/).every((word) => text.includes(word));
};

function open(symbol) {
  const view = ['table', 'pivot', 'chart', 'compare'].includes(state.get('view'))
    ? state.get('view') : 'table';
  state.openSymbol(symbol.name, {view});
}

function item(symbol) {
  return h('li', {}, h('button', {
    type: 'button',
    class: 'symbol',
    id: `symbol-of-${symbol.name}`,
    title: shown(symbol.text || signature(symbol)),
    'aria-current': symbol.name === state.get('s') ? 'true' : undefined,
    onclick: () => open(symbol),
  }, h('span', {class: 'name'}, shown(symbol.name)),
  h('span', {class: 'count'}, symbol.records.toLocaleString('en-US'))));
}

// A group that opens and closes for each type.
function group([type, title], symbols) {
  const own = symbols.filter((symbol) => symbol.type === type);
  if (own.length === 0) return null;
  const most = 500;
  return h('details', {open: true}, h('summary', {}, title, ' ', h('span', {class: 'count'}, own.length)),
    h('ul', {}, own.slice(0, most).map(item)),
    own.length > most && h('p', {class: 'hint'}, `${counted(own.length - most, 'more symbol')}; search for them`));
}

export function drawSymbolList(place, found, file) {
  const files = Object.entries(found.files).map(([number, one]) => [number, shown(one.name)]);
  const key = `${file} ${files.join()}`;
  if (drawn !== key) {
    drawn = key;
    const search = h('input', {
      type: 'search', id: 'symbol-search', placeholder: 'Search symbols', 'aria-label': 'Search symbols', value: wanted,
      oninput: () => {
        wanted = search.value;
        drawGroups(found.symbols[file]);
        if (state.get('view') === 'symbols') drawRows(found.symbols[file]);
      },
    });
    const choose = files.length > 1 && choice('File', files, String(file),
      (value) => state.set({f: value === '0' ? '' : value}));
    place.replaceChildren(...[choose, search, h('div', {id: 'symbol-groups'})].filter(Boolean));
  }
  drawGroups(found.symbols[file]);
}

function drawGroups(symbols) {
  const fitting = symbols.filter(fits);
  const place = document.getElementById('symbol-groups');
  const top = place.scrollTop;
  place.replaceChildren(...types.map((type) => group(type, fitting)).filter(Boolean),
    ...(fitting.length === 0 ? [h('p', {class: 'hint'}, symbols.length === 0 ? 'No symbols.' : 'No symbol fits.')] : []));
  place.scrollTop = top;
}

function row(symbol) {
  return h('tr', {},
    h('th', {scope: 'row'}, h('button', {type: 'button', class: 'link', onclick: () => open(symbol)},
      shown(symbol.name))),
    h('td', {}, symbol.alias_of ? `alias of ${shown(symbol.alias_of)}` : symbol.type),
    h('td', {}, symbol.domains.map(shown).join(', ')),
    h('td', {class: 'number'}, symbol.records.toLocaleString('en-US')),
    h('td', {class: 'text'}, shown(symbol.text || ' ')));
}

function drawRows(symbols) {
  const body = document.getElementById('symbol-rows');
  if (body === null) return;
  const fitting = symbols.filter(fits);
  body.replaceChildren(...fitting.slice(0, mostRows).map(row));
  document.getElementById('symbol-total').textContent =
    `${counted(fitting.length, 'symbol')}, ${counted(fitting.reduce((sum, one) => sum + one.records, 0), 'record')}` +
    (fitting.length > mostRows ? `; the first ${mostRows.toLocaleString('en-US')} are shown, search for the others` : '');
}

export async function symbolsPage(main, {found, file, symbols}) {
  const {name, bytes, labels} = found.files[file];
  main.replaceChildren(
    h('h1', {}, shown(name)),
    h('p', {class: 'hint'}, `${counted(bytes, 'byte')}, ${counted(labels, 'label')}; `,
      h('span', {id: 'symbol-total', role: 'status'})),
    h('table', {class: 'list'},
      h('thead', {}, h('tr', {}, ['Symbol', 'Type', 'Domains', 'Records', 'Text'].map((title, index) =>
        h('th', {scope: 'col', class: index === 3 ? 'number' : ''}, title)))),
      h('tbody', {id: 'symbol-rows'})));
  drawRows(symbols);
}

// What a page says that needs a symbol where none is chosen.
export function askForSymbol(main, title) {
  main.replaceChildren(h('h1', {}, title), h('p', {}, 'Choose a symbol on the left.'));
}

export function heading(symbol) {
  return h('div', {class: 'heading'}, h('h1', {}, shown(signature(symbol))),
    h('p', {class: 'hint'}, `${symbol.type}, ${counted(symbol.records, 'record')}`,
      symbol.text ? `: ${shown(symbol.text)}` : ''));
}
