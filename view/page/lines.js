// Lines and points that can be zoomed into, on a canvas: uPlot, which index.html brings.
import {h, shortNumber, shown} from './dom.js';
import {colour, placesOf} from './draw.js';

// Puts a chart into the element; it goes with the signal. `scatter` has, of points that stand at
// numbers, in ascending order, these and the names of both axes.
export function interactive(place, type, x, series, name, signal, scatter = null) {
  const style = getComputedStyle(document.documentElement);
  const soft = style.getPropertyValue('--soft').trim();
  const line = style.getPropertyValue('--line').trim();
  const places = scatter?.places ?? placesOf(x);
  const isNumeric = scatter !== null || x.some((label, index) => label !== String(index)) && places.some((at, index) => at !== index);
  const labelAt = (at) => isNumeric ? shortNumber(at) : shown(x[Math.round(at)] ?? '');
  const axis = {stroke: soft, grid: {stroke: line, width: 1}, ticks: {stroke: line, width: 1}, font: '11px system-ui'};
  const options = {
    width: Math.max(280, place.clientWidth || 760),
    height: 320,
    legend: {live: true},
    scales: {x: {time: false}},
    axes: [
      {...axis, label: scatter?.names[0], values: (_, ticks) => ticks.map((at) => isNumeric || Number.isInteger(at) ? labelAt(at).slice(0, 14) : ''), space: 90},
      {...axis, size: 70, label: scatter?.names[1], values: (_, ticks) => ticks.map(shortNumber)},
    ],
    series: [
      {label: 'at', value: (_, at, __, index) => at === null ? '' : scatter === null ? labelAt(at) : `${shown(x[index] ?? '')} ${shortNumber(at)}`},
      ...series.map(({label}, index) => ({
        label: label === '' ? 'value' : shown(label),
        stroke: colour(index),
        width: 1.6,
        value: (_, value) => value === null || value === undefined ? '' : shortNumber(value),
        paths: type === 'scatter' ? () => null : undefined,
        points: {show: type === 'scatter' || x.length < 60, size: type === 'scatter' ? 6 : 4, fill: colour(index)},
      })),
    ],
  };
  const number = (value) => typeof value === 'number' ? value : null;
  const frame = h('div', {role: 'img', 'aria-label': name});
  place.append(frame);
  const chart = new globalThis.uPlot(options, [places, ...series.map(({y}) => y.map(number))], frame);
  const watch = new ResizeObserver(() => {
    if (place.clientWidth > 0) chart.setSize({width: place.clientWidth, height: 320});
  });
  watch.observe(place);
  signal.addEventListener('abort', () => {
    watch.disconnect();
    chart.destroy();
  }, {once: true});
}
