// Points with one value across and another up: of two labels of a position, or of two symbols.
import * as api from './api.js';
import {choice, counted, h, numberText, shown} from './dom.js';
import {pointsOf, together} from './draw.js';
import {asked} from './filters.js';
import {interactive} from './lines.js';
import {fieldOf} from './pivot.js';
import * as state from './state.js';

const mostLabels = 1000;
const mostSeries = 24;
const mostPanels = 24;
const mostListed = 500;
const mostSaved = 20000;

const isNumber = (value) => typeof value === 'number' && Number.isFinite(value);

// Where a position of a symbol stands in another: by the set that both are over, or by its name.
function positionIn(other, symbol, position) {
  if (position === '') return -1;
  const set = symbol.domains[position];
  const bySet = set === '*' ? -1 : other.domains.indexOf(set);
  return bySet >= 0 ? bySet : other.keys.findIndex((key) => key.toLowerCase() === symbol.keys[position].toLowerCase());
}

// What can be put against a symbol: labels of another position, and symbols over the same labels.
function rivals(symbols, symbol, {x, by, over}) {
  return [
    ...symbol.keys.map((name, position) => [`p${position}`, `other label of ${shown(name)}`]).filter((_, position) => ![x, by, over].includes(String(position))),
    ...symbols.filter((one) => one.values[0] !== 'text' && one.dim > 0 && positionIn(one, symbol, x) >= 0 &&
      (one.name !== symbol.name || one.values.length > 1)).map((one) => [`s${one.name}`, shown(one.name)]),
  ];
}

export function against(symbols, symbol, chosen) {
  const wanted = state.get('vs');
  return rivals(symbols, symbol, chosen).some(([word]) => word === wanted) ? wanted : '';
}

// The control that chooses what stands against the symbol.
export function rivalChoice(symbols, symbol, chosen) {
  return choice('Against', [['', '–'], ...rivals(symbols, symbol, chosen)], against(symbols, symbol, chosen),
    (value) => state.set({vs: value, lx: '', ly: '', fy: ''}));
}

// Values by panel, series and label across.
function table(answer) {
  const values = new Map();
  for (const {label: panel, series} of answer.panels) {
    for (const {label: name, y} of series) {
      y.forEach((value, index) => {
        if (isNumber(value)) values.set(JSON.stringify([panel, name, answer.x[index]]), value);
      });
    }
  }
  return (...names) => values.get(JSON.stringify(names));
}

// Both values of each point; `other` may do without the positions of series and panels.
function joined(first, second, hasBy, hasOver) {
  const find = table(second);
  let alone = 0;
  const panels = first.panels.map(({label: panel, series}) => ({
    label: panel,
    series: series.map(({label: name, y}) => ({label: name, points: y.flatMap((value, index) => {
      if (value === null) return [];
      const other = find(hasOver ? panel : '', hasBy ? name : '', first.x[index]);
      if (!isNumber(value) || other === undefined) {
        ++alone;
        return [];
      }
      return [{label: first.x[index], x: value, y: other}];
    })})).filter(({points}) => points.length > 0),
  })).filter(({series}) => series.length > 0);
  return {panels, alone};
}

// The labels of a position, to be chosen from.
async function labelChoices(context, position) {
  const {labels, more} = await api.get('counts', {...asked(context), pos: position, limit: mostLabels}, context.signal);
  const names = labels.map(({label}) => label);
  const fitting = (name, otherwise) => names.includes(state.get(name)) ? state.get(name) : otherwise ?? '';
  const chosen = {lx: fitting('lx', names[0]), ly: fitting('ly', names[1] ?? names[0])};
  const options = names.map((label) => [label, shown(label)]);
  return {chosen, controls: [choice('x', options, chosen.lx, (value) => state.set({lx: value})),
    choice('y', options, chosen.ly, (value) => state.set({ly: value})),
    more && h('span', {class: 'hint'}, `The ${counted(mostLabels, 'label')} with most records; filter the position for others.`)].filter(Boolean)};
}

// What is asked for both sides, how the axes are called, and more controls.
async function sides(context, chosen, how) {
  const {symbol, symbols} = context;
  const field = fieldOf(symbol);
  const first = {...asked(context), ...chosen, how, field};
  const wanted = against(symbols, symbol, chosen);
  if (wanted.startsWith('p')) {
    const position = Number(wanted.slice(1));
    const {chosen: labels, controls} = await labelChoices(context, position);
    const only = (label) => ({...first, [`in${position}`]: [label]});
    return {first: only(labels.lx), second: only(labels.ly), names: [labels.lx, labels.ly], controls, hasBy: true, hasOver: true};
  }
  const other = symbols.find(({name}) => name === wanted.slice(1));
  const place = (position) => {
    const found = other.name === symbol.name ? Number(position) : positionIn(other, symbol, position);
    return position === '' || found < 0 ? '' : found;
  };
  const usual = other.name === symbol.name && field === 'level' ? 'marginal' : 'level';
  const otherField = other.values.length === 1 ? '' : other.values.includes(state.get('fy')) ? state.get('fy') : usual;
  const [by, over] = [place(chosen.by), place(chosen.over)];
  const filters = other.name === symbol.name ? asked(context) : {f: context.file, s: other.name};
  return {
    first, second: {...filters, x: place(chosen.x), by, over, how, field: otherField},
    names: [field === '' ? symbol.name : `${symbol.name} ${field}`, otherField === '' ? other.name : `${other.name} ${otherField}`],
    controls: [other.values.length > 1 && choice('Field of y', other.values.map((name) => [name, name]), otherField, (value) => state.set({fy: value}))].filter(Boolean),
    hasBy: by !== '', hasOver: over !== '',
  };
}

function pointTable(panel, names, xName, title) {
  const rows = panel.series.flatMap(({label, points}) => points.map((point) => ({...point, series: label})));
  const hasSeries = panel.series.some(({label}) => label !== '');
  return h('details', {class: 'values'}, h('summary', {}, 'Values as a table'),
    h('div', {class: 'scroll-x', tabIndex: 0, role: 'region', 'aria-label': `Values of ${title}, scrolls`}, h('table', {class: 'grid'},
      h('thead', {}, h('tr', {}, h('th', {scope: 'col'}, xName), hasSeries && h('th', {scope: 'col'}, 'series'),
        names.map((name) => h('th', {scope: 'col', class: 'number'}, shown(name))))),
      h('tbody', {}, rows.slice(0, mostListed).map(({label, series, x, y}) => h('tr', {}, h('th', {scope: 'row'}, shown(label)),
        hasSeries && h('td', {}, shown(series)), [x, y].map((value) => h('td', {class: 'number'}, numberText(value)))))))),
    rows.length > mostListed && h('p', {class: 'hint'}, `${counted(rows.length - mostListed, 'row')} more`));
}

// One chart on a canvas: a place on its axis for each point, in which all other series have none.
function drawPanel(figure, panel, names, title, signal) {
  const all = panel.series.flatMap(({points}, number) => points.map((point) => ({...point, number}))).sort((left, right) => left.x - right.x);
  const series = panel.series.map(({label}, number) => ({label, y: all.map((point) => point.number === number ? point.y : null)}));
  interactive(figure, 'scatter', all.map(({label}) => label), series, title, signal, {places: all.map(({x}) => x), names: names.map(shown)});
}

// Draws it, and gives what makes the picture that is saved; null where there is nothing to draw.
export async function scatterOf(context, out, controls, chosen, how) {
  const {symbol, signal} = context;
  const sidesNow = await sides(context, chosen, how);
  controls.replaceChildren(...sidesNow.controls);
  const [first, second] = [await api.get('series', sidesNow.first, signal), await api.get('series', sidesNow.second, signal)];
  const {panels, alone} = joined(first, second, sidesNow.hasBy, sidesNow.hasOver);
  const drawn = panels.slice(0, mostPanels).map((panel) => ({...panel, series: panel.series.slice(0, mostSeries)}));
  const points = drawn.reduce((sum, {series}) => sum + series.reduce((count, one) => count + one.points.length, 0), 0);
  if (points === 0) {
    out.replaceChildren(h('p', {}, 'No point has both values.'));
    return null;
  }
  const {names} = sidesNow;
  const title = `${shown(names[1])} over ${shown(names[0])}`;
  const titleOf = ({label}) => label === '' ? title : `${title}, ${shown(label)}`;
  const place = h('div', {class: drawn.length === 1 ? 'panels one' : 'panels'});
  const notes = [
    alone > 0 && `${counted(alone, 'point')} without both values`,
    panels.length > mostPanels && counted(panels.length - mostPanels, 'more panel'),
    panels.some(({series}) => series.length > mostSeries) && `series beyond the first ${mostSeries}`,
  ].filter(Boolean);
  out.replaceChildren(h('p', {class: 'hint', id: 'point-total', role: 'status'}, counted(points, 'point'), notes.length > 0 && `; not drawn: ${notes.join(', ')}`), place);
  for (const panel of drawn) {
    const figure = h('figure', {}, panel.label === '' ? '' : h('figcaption', {}, shown(panel.label)));
    place.append(figure);
    drawPanel(figure, panel, names, titleOf(panel), signal);
    figure.append(pointTable(panel, names, shown(symbol.keys[chosen.x]), titleOf(panel)));
  }
  return () => {
    if (points > mostSaved) throw new Error(`A picture has ${mostSaved.toLocaleString('en-US')} points at most: filter first.`);
    return together(drawn.map((panel) => pointsOf(panel.series, names.map(shown), titleOf(panel), drawn.length > 1)),
      drawn.map(titleOf), (drawn[0]?.series.length ?? 0) > 1 ? drawn[0].series.map(({label}) => shown(label)) : []);
  };
}
