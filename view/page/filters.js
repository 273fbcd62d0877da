// The filters of a symbol: a pattern or a list of labels for each position, and a condition.
import * as api from './api.js';
import {counted, dialog, h, problem, shown} from './dom.js';
import * as state from './state.js';

const used = (position) => state.get(`p${position}`) !== '' || state.all(`in${position}`).length > 0;

function summary(position) {
  const labels = state.all(`in${position}`);
  if (labels.length === 1) return shown(labels[0]);
  if (labels.length > 1) return counted(labels.length, 'label');
  return shown(state.get(`p${position}`));
}

// The labels of a position with their counts, to be ticked.
async function listLabels(place, context, position, like, chosen) {
  const parameters = {...state.filters(), f: context.file, s: context.symbol.name, pos: position, like, limit: 200};
  delete parameters[`p${position}`];
  delete parameters[`in${position}`];
  const {labels, more} = await api.get('counts', parameters, context.signal);
  const ticked = [...chosen].filter((label) => !labels.some((one) => one.label === label));
  const line = (label, count) => {
    const box = h('input', {type: 'checkbox', checked: chosen.has(label), onchange: () => {
      if (box.checked) chosen.add(label); else chosen.delete(label);
    }});
    return h('li', {}, h('label', {}, box, h('span', {class: 'name'}, shown(label)),
      h('span', {class: 'count'}, count === null ? '' : count.toLocaleString('en-US'))));
  };
  place.replaceChildren(
    h('ul', {}, ticked.map((label) => line(label, null)), labels.map((one) => line(one.label, one.count))),
    more ? h('p', {class: 'hint'}, 'There are more; search for them.') : '');
}

export function openFilter(context, position) {
  const name = context.symbol.keys[position];
  const chosen = new Set(state.all(`in${position}`));
  const pattern = h('input', {type: 'text', value: state.get(`p${position}`), placeholder: 'wheat*', id: 'filter-pattern'});
  const place = h('div', {class: 'labels', tabIndex: 0, role: 'group', 'aria-label': `Labels of ${shown(name)}`});
  const list = async (like) => {
    try {
      await listLabels(place, context, position, like, chosen);
    } catch (error) {
      if (error.name !== 'AbortError') place.replaceChildren(problem(error));
    }
  };
  let timer = 0;
  const search = h('input', {type: 'search', placeholder: 'Search labels', 'aria-label': 'Search labels', oninput: () => {
    clearTimeout(timer);
    timer = setTimeout(() => list(search.value), 200);
  }});
  const apply = (values) => {
    box.close();
    state.set({...values, from: ''});
  };
  const form = h('form', {onsubmit: (event) => {
    event.preventDefault();
    apply({[`p${position}`]: pattern.value, [`in${position}`]: [...chosen]});
  }},
  h('label', {class: 'choice'}, h('span', {}, 'Pattern'), pattern),
  h('p', {class: 'hint'}, 'A star stands for any characters.'),
  search, place,
  h('div', {class: 'row'}, h('button', {class: 'main'}, 'Apply'),
    h('button', {type: 'button', onclick: () => apply({[`p${position}`]: '', [`in${position}`]: ''})}, 'No filter'),
    h('button', {type: 'button', onclick: () => box.close()}, 'Cancel')));
  const box = dialog(`Filter ${shown(name)}`, form);
  pattern.focus();
  list('');
}

// A button for each position and a field for the condition.
export function filterBar(context) {
  const {symbol} = context;
  const where = h('input', {
    type: 'text', id: 'where', value: state.get('where'), placeholder: 'value > 20', 'aria-label': 'Condition on records',
    title: 'as in ztb where: value > 20 and not value in (na, undef)',
  });
  const any = state.get('where') !== '' || symbol.keys.some((_, position) => used(position));
  return h('form', {class: 'filters', role: 'search', 'aria-label': 'Filters', onsubmit: (event) => {
    event.preventDefault();
    state.set({where: where.value.trim(), from: ''});
  }}, h('span', {class: 'hint'}, 'Filter'),
  symbol.keys.map((name, position) => h('button', {
    type: 'button',
    id: `filter-${position}`,
    class: used(position) ? 'chip used' : 'chip',
    onclick: () => openFilter(context, position),
  }, used(position) ? `${shown(name)}: ${summary(position)}` : shown(name))),
  where, h('button', {}, 'Apply'),
  any && h('button', {type: 'button', id: 'no-filters', onclick: () => {
    const none = {where: '', from: ''};
    symbol.keys.forEach((_, position) => {
      none[`p${position}`] = '';
      none[`in${position}`] = '';
    });
    state.set(none);
  }}, 'No filters'));
}

// The part of a request that says what of which symbol.
export const asked = ({file, symbol}) => ({...state.filters(), f: file, s: symbol.name});
