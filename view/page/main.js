// Starts the page, and draws what the address says.
import * as api from './api.js';
import {dialog, h, problem, say, shown, toClipboard} from './dom.js';
import * as state from './state.js';
import {drawSymbolList, symbolsPage} from './symbols.js';
import {tablePage} from './table.js';
import {pivotPage} from './pivot.js';
import {chartPage} from './chart.js';
import {comparePage} from './compare.js';
import {sweepPage} from './sweep.js';
import {firstSolution, modelPage, solution} from './model.js';

const pages = [
  ['symbols', 'Symbols', symbolsPage],
  ['table', 'Table', tablePage],
  ['pivot', 'Pivot', pivotPage],
  ['chart', 'Chart', chartPage],
  ['compare', 'Compare', comparePage],
  ['sweep', 'Sweep', sweepPage],
  ['model', 'Model', modelPage],
];
const found = {files: [], symbols: [], solved: []};
let running = null;

// The number of the file that is shown: one that was opened, or the solution of a model.
function file() {
  const number = Number(state.get('f')) || 0;
  if (found.files[number] !== undefined) return number;
  return found.files[number - firstSolution]?.kind === 'model' ? number : 0;
}

function offered() {
  const {kind} = found.files[file()];
  return pages.filter(([name]) => {
    if (kind === 'model' || name === 'model') return kind === name;
    return name !== 'sweep' || kind === 'sweep';
  });
}

function currentPage() {
  const names = offered().map(([name]) => name);
  const kind = found.files[file()].kind;
  const first = kind === 'data' ? 'symbols' : kind;
  return names.includes(state.get('view')) ? state.get('view') : first;
}

function drawPages(current) {
  document.getElementById('pages').replaceChildren(h('ul', {}, offered().map(([name, title]) =>
    h('li', {}, h('button', {
      type: 'button',
      id: `page-${name}`,
      'aria-current': name === current ? 'page' : undefined,
      onclick: () => state.set({view: name}),
    }, title)))));
}

async function draw() {
  running?.abort();
  running = new AbortController();
  const {signal} = running;
  const main = document.getElementById('main');
  const focused = document.activeElement?.id;
  try {
    const number = file();
    if (number >= firstSolution) {
      const {solved, status} = await solution(found, number - firstSolution, signal);
      if (!solved) throw new Error(`The model has no solution: ${status}.`);
    }
    found.symbols[number] ??= await api.get('symbols', {f: number}, signal);
    const name = currentPage();
    drawPages(name);
    const shownFile = found.files[number];
    document.getElementById('file-name').textContent = shown(shownFile.name);
    document.title = `${shown(state.get('s') || shownFile.name)} - ztb view`;
    const redrawSymbols = () => drawSymbolList(document.getElementById('symbols'), found, number);
    redrawSymbols();
    const symbols = found.symbols[number];
    const symbol = symbols.find((one) => one.name === state.get('s')) ?? null;
    const page = pages.find(([other]) => other === name)[2];
    const keepFocus = () => {
      if (focused && document.activeElement === document.body) document.getElementById(focused)?.focus();
    };
    // Controls are drawn at once, answers when they have come.
    const drawn = page(main, {found, file: number, symbols, symbol, signal, redrawSymbols});
    keepFocus();
    await drawn;
    keepFocus();
  } catch (error) {
    if (error.name === 'AbortError') return;
    if (signal.aborted) return;
    main.replaceChildren(problem(error));
  }
}

function theme(next) {
  const root = document.documentElement;
  const names = ['auto', 'light', 'dark'];
  if (names.includes(next)) localStorage.setItem('theme', next);
  const now = localStorage.getItem('theme') ?? 'auto';
  if (now === 'auto') root.removeAttribute('data-theme'); else root.setAttribute('data-theme', now);
  const button = document.getElementById('theme');
  button.textContent = {auto: 'Theme: system', light: 'Theme: light', dark: 'Theme: dark'}[now];
  button.onclick = () => {
    theme(names[(names.indexOf(now) + 1) % names.length]);
    draw();
  };
}

async function about(version) {
  const licence = h('pre', {class: 'licence', tabIndex: 0}, 'loading');
  const box = dialog('About',
    h('p', {}, `ztb ${version}. All that you see comes from the command on this machine; nothing leaves it.`),
    h('p', {}, 'Charts are drawn by uPlot, under this licence:'), licence,
    h('h3', {}, 'Keys'),
    h('dl', {class: 'keys'},
      h('dt', {}, '/'), h('dd', {}, 'search for a symbol'),
      h('dt', {}, '1 to 7'), h('dd', {}, 'the pages, from the left'),
      h('dt', {}, 'arrows, Page Up, Page Down, Home, End'), h('dd', {}, 'scroll a table that has the focus'),
      h('dt', {}, 'Ctrl-P'), h('dd', {}, 'print all rows of a table, up to 20,000'),
      h('dt', {}, 'arrows on a position of a pivot'), h('dd', {}, 'move it to another place'),
      h('dt', {}, 'Escape'), h('dd', {}, 'close a window like this one')),
    h('button', {type: 'button', onclick: () => box.close()}, 'Close'));
  const answer = await fetch('/page/uplot_licence.txt');
  licence.textContent = await answer.text();
}

function listenToKeys() {
  addEventListener('keydown', (event) => {
    const inField = event.target.closest?.('input, textarea, select, dialog');
    if (inField || event.ctrlKey || event.metaKey || event.altKey) return;
    if (event.key === '/') {
      event.preventDefault();
      document.getElementById('symbol-search')?.focus();
    }
    const page = offered()[Number(event.key) - 1];
    if (/^[1-7]$/.test(event.key) && page) state.set({view: page[0]});
  });
}

// Goes where a link says that a colleague has sent.
function askForLink() {
  const input = h('input', {type: 'text', 'aria-label': 'Link', placeholder: 'http://127.0.0.1:…/#view=…'});
  return h('form', {class: 'row', onsubmit: (event) => {
    event.preventDefault();
    const at = input.value.indexOf('#');
    if (at < 0) return say('a link has a # in it');
    const next = new URLSearchParams(input.value.slice(at + 1));
    next.delete('token');
    location.hash = next.toString();
  }}, input, h('button', {}, 'Go'));
}

async function start() {
  theme();
  const token = state.begin();
  const main = document.getElementById('main');
  document.getElementById('skip').onclick = (event) => {
    event.preventDefault();
    main.focus();
  };
  try {
    if (token !== null) await api.openSession(token);
    if (!api.hasKey()) throw new Error('This window has no session.');
    const {files, version} = await api.get('files');
    found.files = files;
    document.getElementById('about').onclick = () => about(version);
  } catch (error) {
    main.replaceChildren(h('h1', {}, 'Not opened'), problem(error),
      h('p', {}, 'Open the link that ztb view prints; a link from someone else shows the same view ' +
        'once it stands behind the # of yours.'));
    return;
  }
  document.getElementById('copy-link').onclick = () => {
    const box = dialog('A link to this view',
      h('p', {}, 'For someone who has opened the same file. Your key is not in it.'),
      h('input', {type: 'text', readOnly: true, value: state.link(), 'aria-label': 'Link to this view'}),
      h('div', {class: 'row'},
        h('button', {type: 'button', onclick: () => toClipboard(state.link(), 'link')}, 'Copy'),
        h('button', {type: 'button', onclick: () => box.close()}, 'Close')),
      h('h3', {}, 'Go to the view of a link'), askForLink());
    box.addEventListener('submit', () => box.close());
  };
  listenToKeys();
  matchMedia('(prefers-color-scheme: dark)').addEventListener('change', draw);
  state.listen(draw);
  addEventListener('redraw', draw);
  await draw();
}

start();
