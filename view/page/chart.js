// A symbol as a chart, over one or two positions, with small multiples over a third.
import * as api from './api.js';
import {choice, counted, h, numberText, problem, say, shortNumber, shown} from './dom.js';
import {chartOf, colour, inOrder, savePng, saveSvg, together} from './draw.js';
import {asked, filterBar} from './filters.js';
import {interactive} from './lines.js';
import {fieldOf, howOf, waysOf} from './pivot.js';
import {against, rivalChoice, scatterOf} from './scatter.js';
import * as state from './state.js';
import {askForSymbol, heading} from './symbols.js';

const types = [['line', 'Lines'], ['bar', 'Bars'], ['area', 'Stacked areas'], ['scatter', 'Scatter'], ['spread', 'Distribution']];
const mostSeries = 24;
const mostPanels = 24;
const mostRows = 500;

export function legend(names) {
  return names.length < 2 ? null : h('ul', {class: 'legend'}, names.map((name, index) =>
    h('li', {}, h('span', {class: 'swatch', style: {background: colour(index)}}), shown(name))));
}

// The values as a table, for those who would rather read them.
export function valueTable(x, series, xName, title) {
  return h('details', {class: 'values'}, h('summary', {}, 'Values as a table'),
    h('div', {class: 'scroll-x', tabIndex: 0, role: 'region', 'aria-label': `Values of ${title}, scrolls`}, h('table', {class: 'grid'},
      h('thead', {}, h('tr', {}, h('th', {scope: 'col'}, xName), series.map(({label}) =>
        h('th', {scope: 'col', class: 'number'}, label === '' ? 'value' : shown(label))))),
      h('tbody', {}, x.slice(0, mostRows).map((label, index) => h('tr', {}, h('th', {scope: 'row'}, shown(label)),
        series.map(({y}) => h('td', {class: 'number'}, numberText(y[index])))))))),
    x.length > mostRows && h('p', {class: 'hint'}, `${counted(x.length - mostRows, 'row')} more`));
}

export function spreadFacts({min, max, mean, count, special}) {
  const facts = [['Values', count.toLocaleString('en-US')], ['Least', shortNumber(min)], ['Greatest', shortNumber(max)], ['Mean', shortNumber(mean)],
    ...Object.entries(special ?? {}).map(([word, number]) => [word, number.toLocaleString('en-US')])];
  return h('dl', {class: 'numbers'}, facts.map(([name, value]) => h('div', {}, h('dt', {}, name), h('dd', {}, value))));
}

export function spreadSeries({edges, counts}) {
  return {x: counts.map((_, bin) => `${shortNumber(edges[bin])} – ${shortNumber(edges[bin + 1])}`), series: [{label: '', y: counts}]};
}

// Draws panels and gives the SVG that stands for all.
function drawPanels(out, type, panels, name, signal, xName) {
  const charts = panels.map((panel) => chartOf(type, panel.x, panel.series, `${name} ${shown(panel.label)}`, panels.length > 1));
  const names = panels[0]?.series.map(({label}) => label) ?? [];
  const place = h('div', {class: panels.length === 1 ? 'panels one' : 'panels'});
  out.replaceChildren(...[legend(type === 'line' || type === 'scatter' ? [] : names), place].filter(Boolean));
  panels.forEach((panel, index) => {
    const figure = h('figure', {}, panel.label !== '' && h('figcaption', {}, shown(panel.label)));
    place.append(figure);
    if (type === 'line' || type === 'scatter') {
      interactive(figure, type, panel.x, panel.series, `${name} ${shown(panel.label)}`, signal);
    } else {
      figure.append(charts[index]);
    }
    figure.append(valueTable(panel.x, panel.series, xName, panel.label === '' ? name : `${name} ${shown(panel.label)}`));
  });
  return () => together(charts, panels.map((panel) => panel.label === '' ? name : shown(panel.label)), names.map(shown));
}

async function distribution(context, out) {
  const field = fieldOf(context.symbol);
  const answer = await api.get('histogram', {...asked(context), field, bins: 40}, context.signal);
  const {x, series} = spreadSeries(answer);
  const name = `Distribution of ${shown(context.symbol.name)}`;
  const chart = chartOf('bar', x, series, name);
  out.replaceChildren(spreadFacts(answer), h('figure', {}, chart, valueTable(x, series, 'values', name)));
  return () => together([chart], [name], []);
}

async function seriesOver(context, out, type, chosen, how) {
  const {symbol} = context;
  const answer = await api.get('series', {
    ...asked(context), ...chosen, how, field: fieldOf(symbol),
  }, context.signal);
  const panels = answer.panels.slice(0, mostPanels).map(({label, series}) => ({
    label: label ?? '', ...inOrder(answer.x, series.slice(0, mostSeries).map((one) => ({...one, label: one.label ?? ''}))),
  }));
  if (panels.length === 0 || answer.x.length === 0) {
    out.replaceChildren(h('p', {}, 'No record to draw.'));
    return null;
  }
  const left = [
    answer.panels.length > mostPanels && counted(answer.panels.length - mostPanels, 'more panel'),
    answer.panels.some(({series}) => series.length > mostSeries) && `series beyond the first ${mostSeries}`,
  ].filter(Boolean);
  const make = drawPanels(out, type, panels, shown(symbol.name), context.signal, shown(symbol.keys[chosen.x]));
  if (left.length > 0) out.append(h('p', {class: 'hint'}, `Not drawn: ${left.join(', ')}; filter to see them.`));
  return make;
}

export async function chartPage(main, context) {
  const {symbol} = context;
  if (symbol === null) return askForSymbol(main, 'Chart');
  const isSet = symbol.values[0] === 'text';
  const offered = types.filter(([word]) => !isSet || word !== 'spread');
  const type = symbol.dim === 0 ? 'spread' : offered.some(([word]) => word === state.get('type')) ? state.get('type') : 'bar';
  // A position of the symbol, or none.
  const position = (name) => /^\d+$/.test(state.get(name)) && Number(state.get(name)) < symbol.dim ? String(Number(state.get(name))) : '';
  const chosen = {x: position('x') || '0', by: position('by'), over: position('each')};
  if (chosen.by === chosen.x) chosen.by = '';
  if (chosen.over === chosen.x || chosen.over === chosen.by) chosen.over = '';
  const how = howOf(symbol);
  const positions = symbol.keys.map((name, position) => [String(position), shown(name)]);
  const none = [['', '–']];
  const rest = (...taken) => none.concat(positions.filter(([position]) => !taken.includes(position)));
  const out = h('div', {class: 'drawn'});
  const controls = h('div', {class: 'row'});
  const isScatter = type === 'scatter' && !isSet;
  let make = null;
  const saving = (work) => async () => {
    if (make === null) return say('nothing to save');
    try {
      await work(make(), symbol.name.replace(/[^\w.-]/g, '_'));
    } catch (error) {
      say(error.message);
    }
  };
  main.replaceChildren(heading(symbol), filterBar(context),
    h('div', {class: 'row'},
      choice('Chart', offered, type, (value) => state.set({type: value})),
      type !== 'spread' && [
        choice(isScatter && against(context.symbols, symbol, chosen) !== '' ? 'Points' : 'Across', positions, chosen.x, (value) => state.set({x: value})),
        choice('Series', rest(chosen.x), chosen.by, (value) => state.set({by: value})),
        choice('One for each', rest(chosen.x, chosen.by), chosen.over, (value) => state.set({each: value})),
        choice('Value', waysOf(symbol), how, (value) => state.set({how: value})),
      ],
      isScatter && rivalChoice(context.symbols, symbol, chosen),
      symbol.values.length > 1 && choice('Field', symbol.values.map((name) => [name, name]),
        fieldOf(symbol), (value) => state.set({field: value})),
      h('button', {type: 'button', id: 'save-svg', onclick: saving(saveSvg)}, 'Save SVG'),
      h('button', {type: 'button', id: 'save-png', onclick: saving(savePng)}, 'Save PNG')),
    controls, out);
  try {
    if (type === 'spread') make = await distribution(context, out);
    else if (isScatter && against(context.symbols, symbol, chosen) !== '') make = await scatterOf(context, out, controls, chosen, how);
    else make = await seriesOver(context, out, type, chosen, how);
  } catch (error) {
    if (error.name === 'AbortError') throw error;
    out.replaceChildren(problem(error));
  }
}
