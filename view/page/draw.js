// Charts as SVG: what is saved is what is seen, and stands by itself, with its colours in it.
import {save, shortNumber, shown, svg} from './dom.js';

export const colours = 8;
const style = (name) => getComputedStyle(document.documentElement).getPropertyValue(name).trim();
export const colour = (index) => style(`--c${index % colours}`);

// Ticks at multiples of 1, 2 or 5 times a power of ten, from at or below `low` to at or above `high`.
export function ticks(low, high, count = 5) {
  if (low === high) [low, high] = [Math.min(low, 0), low === 0 ? 1 : Math.max(high, 0)];
  const least = Math.max(high / count - low / count, Math.max(Math.abs(low), Math.abs(high)) * 1e-9, 1e-290);
  const power = 10 ** Math.floor(Math.log10(least));
  const step = power * ([1, 2, 5].find((factor) => factor * power >= least * (1 - 1e-12)) ?? 10);
  const first = Math.floor(low / step + 1e-9);
  const last = Math.max(first + 1, Math.ceil(high / step - 1e-9));
  return Array.from({length: last - first + 1}, (_, index) => bounded(Number(((first + index) * step).toPrecision(12))));
}

// Beyond the greatest number there is none.
const bounded = (value) => Math.max(-Number.MAX_VALUE, Math.min(Number.MAX_VALUE, value));
// How far a value is on its way from one to another, which may be as far apart as numbers can be.
const shareOf = (value, from, to) => (value / 2 - from / 2) / (to / 2 - from / 2);

const drawable = (value) => typeof value === 'number' && Number.isFinite(value);

// The least and greatest value; of the piles for an area.
function range(type, series, count) {
  let [low, high] = type === 'line' || type === 'scatter' ? [Infinity, -Infinity] : [0, 0];
  const piles = new Array(count).fill(0);
  for (const {y} of series) {
    y.forEach((value, index) => {
      if (!drawable(value)) return;
      const top = type === 'area' ? (piles[index] = bounded(piles[index] + value)) : value;
      low = Math.min(low, top);
      high = Math.max(high, top);
    });
  }
  return low <= high ? [low, high] : [0, 1];
}

const whole = {width: 760, height: 320, top: 14, bottom: 40, right: 14};
const small = {...whole, width: 420, height: 240};

// Where things stand.
class Field {
  constructor(type, x, places, series, size = whole) {
    this.size = size;
    this.steps = ticks(...range(type, series, x.length));
    this.left = 18 + 6.4 * Math.max(...this.steps.map((tick) => shortNumber(tick).length));
    this.type = type;
    this.places = places;
    this.count = x.length;
  }

  down(value) {
    const [low, high] = [this.steps[0], this.steps.at(-1)];
    const {top, height, bottom} = this.size;
    return top + (1 - shareOf(value, low, high)) * (height - top - bottom);
  }

  get room() {
    return (this.size.width - this.size.right - this.left) / Math.max(1, this.count);
  }

  across(index) {
    if (this.type === 'bar') return this.left + (index + 0.5) * this.room;
    const [first, last] = [this.places[0], this.places.at(-1)];
    const share = first === last ? 0.5 : shareOf(this.places[index], first, last);
    return this.left + 8 + share * (this.size.width - this.size.right - this.left - 16);
  }
}

const text = (x, y, anchor, words) =>
  svg('text', {x: x.toFixed(1), y: y.toFixed(1), 'text-anchor': anchor, 'font-size': 11, fill: style('--soft')}, words);

function axes(field, x) {
  const {size} = field;
  const parts = field.steps.map((tick) => svg('g', {},
    svg('path', {
      d: `M${field.left} ${field.down(tick).toFixed(1)}H${size.width - size.right}`,
      stroke: tick === 0 ? style('--soft') : style('--line'), fill: 'none',
    }), text(field.left - 6, field.down(tick) + 4, 'end', shortNumber(tick))));
  let end = 0;
  x.forEach((label, index) => {
    const name = shown(label);
    const words = name.length > 20 ? `${name.slice(0, 19)}…` : name;
    const half = words.length * 3.2;
    const at = Math.min(Math.max(field.across(index), half + 2), size.width - half - 2);
    if (at - half < end) return;
    parts.push(text(at, size.height - size.bottom + 18, 'middle', words));
    end = at + half + 10;
  });
  return parts;
}

const hint = (label, name, value) => svg('title', {}, `${shown(label)}${name === '' ? '' : `, ${shown(name)}`}: ${value}`);

function bars(field, x, series) {
  const width = field.room * 0.84 / Math.max(1, series.length);
  return series.flatMap(({label, y}, number) => y.map((value, index) => {
    if (!drawable(value)) return null;
    const top = field.down(Math.max(value, 0));
    return svg('rect', {
      x: (field.across(index) - field.room * 0.42 + width * number).toFixed(2), y: top.toFixed(2),
      width: Math.max(0.5, width - 0.5).toFixed(2), height: (value === 0 ? 0 : Math.max(0.5, field.down(Math.min(value, 0)) - top)).toFixed(2),
      fill: colour(number),
    }, hint(x[index], label, value));
  }).filter(Boolean));
}

function areas(field, series, count) {
  const below = new Array(count).fill(0);
  return series.map(({y}, number) => {
    const up = [];
    const back = [];
    for (let index = 0; index < count; ++index) {
      back.unshift(`${field.across(index).toFixed(1)} ${field.down(below[index]).toFixed(1)}`);
      if (drawable(y[index])) below[index] = bounded(below[index] + y[index]);
      up.push(`${field.across(index).toFixed(1)} ${field.down(below[index]).toFixed(1)}`);
    }
    return svg('path', {d: `M${[...up, ...back].join('L')}Z`, fill: colour(number), 'fill-opacity': 0.85});
  });
}

function lines(field, x, series, points) {
  return series.flatMap(({label, y}, number) => {
    let path = '';
    const marks = [];
    y.forEach((value, index) => {
      if (!drawable(value)) return;
      const [at, down] = [field.across(index).toFixed(1), field.down(value).toFixed(1)];
      const begins = !drawable(y[index - 1]);
      path += `${begins ? 'M' : 'L'}${at} ${down}`;
      if (points || (begins && !drawable(y[index + 1]))) {
        marks.push(svg('circle', {cx: at, cy: down, r: 2.5, fill: colour(number)}, hint(x[index], label, value)));
      }
    });
    return [!points && svg('path', {d: path, stroke: colour(number), 'stroke-width': 1.8, fill: 'none', 'stroke-linejoin': 'round'}), ...marks].filter(Boolean);
  });
}

// Numbers where all labels are some, otherwise 0, 1, 2, ...
export function placesOf(x) {
  const numbers = x.map((label) => label.trim() === '' ? NaN : Number(label));
  return x.length > 0 && numbers.every(Number.isFinite) ? numbers : x.map((_, index) => index);
}

// With labels that are numbers in the order of these.
export function inOrder(x, series) {
  const places = placesOf(x);
  const order = x.map((_, index) => index).sort((left, right) => places[left] - places[right]);
  return {
    x: order.map((index) => x[index]),
    series: series.map(({label, y}) => ({label, y: order.map((index) => y[index])})),
  };
}

// A chart of values y of series over labels x; `type` is line, bar, area or scatter.
export function chartOf(type, x, series, name, isSmall = false) {
  const size = isSmall ? small : whole;
  const field = new Field(type, x, placesOf(x), series, size);
  const drawn = {
    bar: () => bars(field, x, series),
    area: () => areas(field, series, x.length),
    line: () => lines(field, x, series, false),
    scatter: () => lines(field, x, series, true),
  }[type]();
  return svg('svg', {
    xmlns: 'http://www.w3.org/2000/svg', viewBox: `0 0 ${size.width} ${size.height}`, class: 'chart', role: 'img',
    'aria-label': name, 'font-family': "system-ui,'DejaVu Sans',sans-serif",
  }, ...axes(field, x), ...drawn);
}

// Points at numbers, with numbers along both axes, each named.
export function pointsOf(series, names, name, isSmall = false) {
  const size = {...(isSmall ? small : whole), bottom: 52};
  const all = series.flatMap(({points}) => points);
  const ends = (key) => [Math.min(...all.map((point) => point[key])), Math.max(...all.map((point) => point[key]))];
  const across = ticks(...ends('x'), isSmall ? 4 : 8);
  const up = ticks(...ends('y'));
  const left = 34 + 6.4 * Math.max(...up.map((tick) => shortNumber(tick).length));
  const share = (value, steps) => shareOf(value, steps[0], steps.at(-1));
  const x = (value) => left + share(value, across) * (size.width - size.right - left - 16) + 8;
  const y = (value) => size.top + (1 - share(value, up)) * (size.height - size.top - size.bottom);
  const foot = size.height - size.bottom;
  const grid = (d) => svg('path', {d, stroke: style('--line'), fill: 'none'});
  const axisName = (words, properties) => svg('text', {...properties, 'text-anchor': 'middle', 'font-size': 11, fill: style('--ink')}, words);
  const middle = size.top + (foot - size.top) / 2;
  return svg('svg', {
    xmlns: 'http://www.w3.org/2000/svg', viewBox: `0 0 ${size.width} ${size.height}`, class: 'chart', role: 'img',
    'aria-label': name, 'font-family': "system-ui,'DejaVu Sans',sans-serif",
  },
  ...up.flatMap((tick) => [grid(`M${left} ${y(tick).toFixed(1)}H${size.width - size.right}`), text(left - 6, y(tick) + 4, 'end', shortNumber(tick))]),
  ...across.flatMap((tick) => [grid(`M${x(tick).toFixed(1)} ${size.top}V${foot}`), text(x(tick), foot + 16, 'middle', shortNumber(tick))]),
  axisName(names[0], {x: ((left + size.width - size.right) / 2).toFixed(1), y: size.height - 12}),
  axisName(names[1], {x: 12, y: middle.toFixed(1), transform: `rotate(-90 12 ${middle.toFixed(1)})`}),
  ...series.flatMap(({label, points}, number) => points.map((point) => svg('circle', {cx: x(point.x).toFixed(1), cy: y(point.y).toFixed(1), r: 3, fill: colour(number)},
    hint(point.label, label, `${point.x}, ${point.y}`)))));
}

// Bands between quantiles, the middle one as a line.
export function fanOf(x, bands, name) {
  const size = whole;
  const field = new Field('line', x, placesOf(x), bands.map(({y}) => ({y})));
  const point = (y, index) => `${field.across(index).toFixed(1)} ${field.down(y[index]).toFixed(1)}`;
  const parts = [];
  for (let number = 0; number < Math.floor(bands.length / 2); ++number) {
    const [low, high] = [bands[number].y, bands[bands.length - 1 - number].y];
    const path = [...low.map((_, index) => point(low, index)), ...high.map((_, index) => point(high, index)).reverse()];
    parts.push(svg('path', {d: `M${path.join('L')}Z`, fill: colour(0), 'fill-opacity': 0.25},
      svg('title', {}, `${bands[number].quantile} to ${bands[bands.length - 1 - number].quantile}`)));
  }
  if (bands.length % 2 === 1) {
    const {y} = bands[(bands.length - 1) / 2];
    parts.push(svg('path', {d: `M${y.map((_, index) => point(y, index)).join('L')}`, stroke: colour(0), 'stroke-width': 2, fill: 'none'}));
  }
  return svg('svg', {
    xmlns: 'http://www.w3.org/2000/svg', viewBox: `0 0 ${size.width} ${size.height}`, class: 'chart', role: 'img', 'aria-label': name,
    'font-family': "system-ui,'DejaVu Sans',sans-serif",
  }, ...axes(field, x), ...parts);
}

// One picture of several charts, each with its title and all with one legend.
export function together(charts, titles, names) {
  const width = charts[0].viewBox.baseVal.width;
  const height = charts[0].viewBox.baseVal.height;
  const room = height + 26;
  const foot = names.length > 1 ? 30 : 0;
  const picture = svg('svg', {
    xmlns: 'http://www.w3.org/2000/svg', viewBox: `0 0 ${width} ${charts.length * room + foot}`,
    width, height: charts.length * room + foot, 'font-family': "system-ui,'DejaVu Sans',sans-serif",
  }, svg('rect', {width, height: charts.length * room + foot, fill: style('--ground')}));
  charts.forEach((chart, index) => {
    picture.append(svg('text', {x: 16, y: index * room + 18, 'font-size': 14, fill: style('--ink')}, titles[index]));
    const copy = chart.cloneNode(true);
    copy.setAttribute('y', index * room + 24);
    copy.setAttribute('width', width);
    copy.setAttribute('height', height);
    picture.append(copy);
  });
  if (names.length < 2) return picture;
  let x = 16;
  names.forEach((name, index) => {
    const y = charts.length * room + 18;
    picture.append(svg('rect', {x, y: y - 10, width: 11, height: 11, fill: colour(index)}), text(x + 16, y, 'start', name));
    x += 34 + name.length * 6.4;
  });
  return picture;
}

export function saveSvg(picture, name) {
  save(new Blob([new XMLSerializer().serializeToString(picture)], {type: 'image/svg+xml'}), `${name}.svg`);
}

export async function savePng(picture, name) {
  const image = new Image();
  const url = URL.createObjectURL(new Blob([new XMLSerializer().serializeToString(picture)], {type: 'image/svg+xml'}));
  try {
    image.src = url;
    await image.decode();
    const canvas = document.createElement('canvas');
    canvas.width = 2 * image.width;
    canvas.height = 2 * image.height;
    canvas.getContext('2d').drawImage(image, 0, 0, canvas.width, canvas.height);
    save(await new Promise((done) => canvas.toBlob(done, 'image/png')), `${name}.png`);
  } finally {
    URL.revokeObjectURL(url);
  }
}
