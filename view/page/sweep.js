// The result of a sweep.
import * as api from './api.js';
import {choice, counted, h, numberText, problem, shortNumber, shown} from './dom.js';
import {spreadFacts, spreadSeries, valueTable} from './chart.js';
import {chartOf, fanOf} from './draw.js';
import {interactive} from './lines.js';
import * as state from './state.js';

const listed = 200;

function failedList(failed) {
  if (failed.length === 0) return h('p', {}, 'Every scenario has a solution.');
  return h('div', {class: 'scroll-x', tabIndex: 0, role: 'region', 'aria-label': 'Without a solution, scrolls'},
    h('table', {class: 'grid', id: 'failed'}, h('thead', {}, h('tr', {}, ['Scenario', 'Ended', 'Reason'].map((title) => h('th', {scope: 'col'}, title)))),
      h('tbody', {}, failed.map(({label, status, reason}) =>
        h('tr', {}, h('th', {scope: 'row'}, shown(label)), h('td', {}, String(status)), h('td', {}, reason === '' ? '' : shown(reason)))))));
}

function differTable({low, high, inputs, total}) {
  return [
    h('p', {class: 'hint', id: 'extremes'}, 'Lowest objective: ', h('b', {}, shown(low.label)), ` with ${numberText(low.objective)}; highest: `,
      h('b', {}, shown(high.label)), ` with ${numberText(high.objective)}. ${counted(total, 'input')} ${total === 1 ? 'differs' : 'differ'}.`),
    total > 0 && h('div', {class: 'scroll-x', tabIndex: 0, role: 'region', 'aria-label': 'Inputs that differ, scrolls'},
      h('table', {class: 'grid', id: 'differ'}, h('thead', {}, h('tr', {}, ['Input', 'Of', 'At the lowest', 'At the highest', 'Difference'].map((title, index) =>
        h('th', {scope: 'col', class: index > 1 ? 'number' : ''}, title)))),
      h('tbody', {}, inputs.slice(0, listed).map((one) => h('tr', {},
        h('th', {scope: 'row'}, shown(one.symbol)), h('td', {}, one.key.map(shown).join(', ')),
        h('td', {class: 'number'}, one.low === null ? 'as in the model' : numberText(one.low)),
        h('td', {class: 'number'}, one.high === null ? 'as in the model' : numberText(one.high)),
        h('td', {class: 'number'}, one.share === null ? '' : `${Number((100 * one.share).toPrecision(3))} %`)))))),
    total > listed && h('p', {class: 'hint'}, `The ${listed} greatest differences.`),
  ].filter(Boolean);
}

// The inputs that differ most between the extremes, which the scenario file has.
async function drawInputs(context, out) {
  try {
    const answer = await api.get('inputs', {f: context.file}, context.signal);
    out.replaceChildren(...answer.known ? differTable(answer) : [h('p', {}, answer.why)]);
  } catch (error) {
    if (error.name !== 'AbortError') out.replaceChildren(problem(error));
  }
}

// The positions of a report behind that of its scenarios, over which a fan may be drawn.
const fanPositions = (context, name) => (context.symbols.find((one) => one.name === name)?.keys ?? [])
  .map((key, position) => [String(position), shown(key)]).slice(1);
const fanPosition = (positions) => positions.some(([position]) => position === state.get('fx')) ? state.get('fx') : positions[0]?.[0] ?? '';

async function drawFan(context, out, symbol) {
  try {
    const {x, bands} = await api.get('fan', {f: context.file, s: symbol, x: fanPosition(fanPositions(context, symbol))}, context.signal);
    out.replaceChildren(h('figure', {}, fanOf(x, bands, `Fan of ${shown(symbol)}`),
      valueTable(x, bands.map(({quantile, y}) => ({label: String(quantile), y})), 'label', `the fan of ${shown(symbol)}`)));
  } catch (error) {
    if (error.name !== 'AbortError') out.replaceChildren(problem(error));
  }
}

export async function sweepPage(main, context) {
  const answer = await api.get('sweep', {f: context.file}, context.signal);
  const {scenarios, failed, objective, reports, histogram} = answer;
  main.replaceChildren(h('h1', {}, 'Sweep'),
    h('p', {class: 'hint', id: 'sweep-total'}, `${counted(scenarios, 'scenario')}, ${failed.length.toLocaleString('en-US')} without a solution`));
  const section = (title, ...children) => main.append(h('section', {}, h('h2', {}, title), ...children));
  const x = objective.map(({label}) => label);
  const series = [{label: 'objective', y: objective.map(({value}) => value)}];
  const lines = h('figure');
  section('Objective', lines);
  if (x.length > 0) interactive(lines, 'line', x, series, 'Objective over scenarios', context.signal);
  lines.append(valueTable(x, series, 'scenario', 'objectives'));
  if (histogram?.counts?.length > 0) {
    const spread = spreadSeries(histogram);
    section('Distribution', spreadFacts({count: x.length, ...histogram}),
      h('figure', {}, chartOf('bar', spread.x, spread.series, 'Distribution of objectives'), valueTable(spread.x, spread.series, 'objective', 'their distribution')));
  }
  if (reports.length > 0) {
    const report = reports.includes(state.get('report')) ? state.get('report') : reports[0];
    const out = h('div');
    const positions = fanPositions(context, report);
    section('Reports', h('div', {class: 'row'}, choice('Symbol', reports.map((name) => [name, shown(name)]), report, (value) => state.set({report: value, fx: ''})),
      positions.length > 1 && choice('Across', positions, fanPosition(positions), (value) => state.set({fx: value}))), out);
    await drawFan(context, out, report);
  }
  section('Without a solution', failedList(failed));
  const inputs = h('div', {id: 'inputs'});
  section('Best and worst', inputs);
  await drawInputs(context, inputs);
}
