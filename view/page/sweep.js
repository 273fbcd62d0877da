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
  return h('table', {class: 'grid'}, h('thead', {}, h('tr', {}, h('th', {scope: 'col'}, 'Scenario'), h('th', {scope: 'col'}, 'Ended'))),
    h('tbody', {}, failed.slice(0, listed).map(({label, status}) =>
      h('tr', {}, h('th', {scope: 'row'}, shown(label)), h('td', {}, String(status))))));
}

function differTable(differ) {
  return h('table', {class: 'grid', id: 'differ'}, h('thead', {}, h('tr', {}, ['Input', 'Of', 'Best', 'Worst', 'Share'].map((title, index) =>
    h('th', {scope: 'col', class: index > 1 ? 'number' : ''}, title)))),
  h('tbody', {}, differ.slice(0, listed).map(({symbol, key, best, worst, share}) => h('tr', {},
    h('th', {scope: 'row'}, shown(symbol)), h('td', {}, key.map(shown).join(', ')), h('td', {class: 'number'}, numberText(best)),
    h('td', {class: 'number'}, numberText(worst)), h('td', {class: 'number'}, shortNumber(share))))));
}

async function drawFan(context, out, symbol) {
  try {
    const {x, bands} = await api.get('fan', {f: context.file, s: symbol}, context.signal);
    out.replaceChildren(h('figure', {}, fanOf(x, bands, `Fan of ${shown(symbol)}`),
      valueTable(x, bands.map(({quantile, y}) => ({label: String(quantile), y})), 'label')));
  } catch (error) {
    if (error.name !== 'AbortError') out.replaceChildren(problem(error));
  }
}

export async function sweepPage(main, context) {
  const answer = await api.get('sweep', {f: context.file}, context.signal);
  const {scenarios, failed, objective, reports, histogram, differ} = answer;
  main.replaceChildren(h('h1', {}, 'Sweep'),
    h('p', {class: 'hint', id: 'sweep-total'}, `${counted(scenarios, 'scenario')}, ${counted(failed.length, 'failed one')}`));
  const section = (title, ...children) => main.append(h('section', {}, h('h2', {}, title), ...children));
  const x = objective.map(({label}) => label);
  const series = [{label: 'objective', y: objective.map(({value}) => value)}];
  const lines = h('figure');
  section('Objective', lines);
  if (x.length > 0) interactive(lines, 'line', x, series, 'Objective over scenarios', context.signal);
  lines.append(valueTable(x, series, 'scenario'));
  if (histogram?.counts?.length > 0) {
    const spread = spreadSeries(histogram);
    section('Distribution', spreadFacts({count: x.length, ...histogram}),
      h('figure', {}, chartOf('bar', spread.x, spread.series, 'Distribution of objectives'), valueTable(spread.x, spread.series, 'objective')));
  }
  if (reports.length > 0) {
    const report = reports.includes(state.get('report')) ? state.get('report') : reports[0];
    const out = h('div');
    section('Reports', choice('Symbol', reports.map((name) => [name, shown(name)]), report, (value) => state.set({report: value})), out);
    await drawFan(context, out, report);
  }
  section('Without a solution', failedList(failed));
  section('Best and worst', differ?.length > 0 ? differTable(differ) : h('p', {}, 'No input is known that differs.'));
}
