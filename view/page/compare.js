// Two symbols side by side: what is new, gone and changed.
import * as api from './api.js';
import {choice, counted, h, numberText, problem, shown} from './dom.js';
import {fieldOf} from './pivot.js';
import * as state from './state.js';
import {askForSymbol, heading} from './symbols.js';
import {Windowed} from './windowed.js';

const kinds = {new: 'new', gone: 'gone', changed: 'changed'};

export async function comparePage(main, context) {
  const {symbol, found, file} = context;
  if (symbol === null) return askForSymbol(main, 'Compare');
  const comparable = Object.entries(found.files).filter(([, one]) => one.kind !== 'model').map(([number]) => Number(number));
  const usual = file ^ 1;
  const wanted = state.get('f2') === '' ? usual : Number(state.get('f2'));
  const other = comparable.includes(wanted) ? wanted : file;
  if (found.symbols[other] === undefined) {
    found.symbols[other] = await api.get('symbols', {f: other}, context.signal);
  }
  const fitting = found.symbols[other].filter((one) => one.dim === symbol.dim && one.values.join() === symbol.values.join() &&
    (other !== file || one.name !== symbol.name));
  const same = fitting.find((one) => one.name.toLowerCase() === symbol.name.toLowerCase());
  const second = fitting.find((one) => one.name === state.get('s2')) ?? same ?? fitting[0];
  const counts = h('dl', {class: 'numbers', id: 'compare-counts'});
  const order = state.get('order') === 'key' ? 'key' : 'change';
  const rest = h('p', {class: 'hint', id: 'compare-rest'});
  const choices = h('div', {class: 'row'},
    comparable.length > 1 && choice('With the file', comparable.map((number) => [String(number), shown(found.files[number].name)]), String(other),
      (value) => state.set({f2: value, s2: ''})),
    second && choice('With the symbol', fitting.map((one) => [one.name, shown(one.name)]), second.name, (value) => state.set({s2: value})),
    symbol.values.length > 1 && choice('Field', symbol.values.map((name) => [name, name]), fieldOf(symbol),
      (value) => state.set({field: value})),
    choice('Order', [['change', 'greatest change first'], ['key', 'labels']], order, (value) => state.set({order: value})));
  main.replaceChildren(heading(symbol), choices, counts, rest);
  if (second === undefined) {
    main.append(h('p', {}, 'There is no other symbol with as many positions and the same values.'));
    return;
  }
  const parameters = {
    f: file, s: symbol.name, f2: other, s2: second.name, sort: order,
    field: fieldOf(symbol),
  };
  const table = new Windowed({
    label: `${shown(symbol.name)} compared`,
    columns: [...symbol.keys.map((name) => ({title: shown(name)})), {title: 'record'},
      {title: 'first', number: true}, {title: 'second', number: true}, {title: 'change', number: true}],
    fetch: async (from, count) => {
      const answer = await api.get('compare', {...parameters, from, count}, context.signal);
      counts.replaceChildren(...['new', 'gone', 'changed', 'same'].map((word) =>
        h('div', {}, h('dt', {}, word), h('dd', {id: `count-${word}`}, answer[word].toLocaleString('en-US')))));
      rest.textContent = answer.differ > answer.total
        ? `Of ${counted(answer.differ, 'difference')} the ${answer.total.toLocaleString('en-US')} greatest are shown.` : '';
      return answer;
    },
    cells: (row) => [...row.keys.map(shown), h('span', {class: row.kind}, kinds[row.kind]),
      numberText(row.a), numberText(row.b), numberText(row.change)],
  });
  main.append(table.element);
  try {
    await table.open();
  } catch (error) {
    if (error.name === 'AbortError') throw error;
    table.element.replaceWith(problem(error));
  }
}
