// What a model consists of.
import * as api from './api.js';
import {counted, h, numberText, shown, svg} from './dom.js';

// The matrix from above: the more entries, the darker.
function picture({rows, cols, density}) {
  const most = Math.max(1, ...density.flat());
  const height = density.length;
  const width = density[0]?.length ?? 0;
  const dots = density.flatMap((line, row) => line.map((count, column) => count === 0 ? null : svg('rect', {
    x: column, y: row, width: 1, height: 1, fill: 'var(--accent)', 'fill-opacity': (0.25 + 0.75 * count / most).toFixed(3),
  })).filter(Boolean));
  return svg('svg', {
    class: 'matrix', viewBox: `0 0 ${width} ${height}`, role: 'img', preserveAspectRatio: 'none',
    'aria-label': `Matrix of ${counted(rows, 'row')} and ${counted(cols, 'column')}`,
  }, ...dots);
}

const titles = {name: 'Family', kind: 'Kind', count: 'Number', min: 'Least coefficient', max: 'Greatest coefficient'};

export async function modelPage(main, context) {
  const answer = await api.get('model', {f: context.file}, context.signal);
  const families = answer.families ?? [];
  const columns = families.length === 0 ? [] : Object.keys(families[0]);
  const isNumber = (name) => families.some((family) => typeof family[name] === 'number');
  main.replaceChildren(h('h1', {}, 'Model'),
    h('p', {class: 'hint', id: 'model-total'}, `${counted(answer.matrix.rows, 'row')}, ${counted(answer.matrix.cols, 'column')}`,
      answer.solved ? ', solved' : ', not solved'),
    h('section', {}, h('h2', {}, 'Families'), h('div', {class: 'scroll-x', tabIndex: 0, role: 'region', 'aria-label': 'Families, scrolls'},
      h('table', {class: 'grid'},
        h('thead', {}, h('tr', {}, columns.map((name) => h('th', {scope: 'col', class: isNumber(name) ? 'number' : ''}, titles[name] ?? name)))),
        h('tbody', {}, families.map((family) => h('tr', {}, columns.map((name) =>
          h('td', {class: isNumber(name) ? 'number' : ''}, typeof family[name] === 'number' ? numberText(family[name]) : shown(String(family[name] ?? ' ')))))))))),
    h('section', {}, h('h2', {}, 'Matrix'), picture(answer.matrix)));
}
