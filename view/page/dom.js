// Makes elements. Whatever comes from a file gets in as text: nothing here reads markup.

const SVG = 'http://www.w3.org/2000/svg';

function fill(element, properties, children) {
  for (const [name, value] of Object.entries(properties)) {
    if (value === undefined || value === null || value === false) continue;
    if (name.startsWith('on')) {
      element.addEventListener(name.slice(2), value);
    } else if (name === 'style') {
      for (const [key, text] of Object.entries(value)) element.style.setProperty(key, text);
    } else if (name in element && typeof value !== 'string' && !(element instanceof SVGElement)) {
      element[name] = value;
    } else {
      element.setAttribute(name, value === true ? '' : String(value));
    }
  }
  for (const child of children.flat()) {
    if (child !== undefined && child !== null && child !== false && child !== '') element.append(child);
  }
  return element;
}

// An element with attributes, listeners (`onclick`), properties that are no strings, and children;
// a string among these is text.
export function h(name, properties = {}, ...children) {
  return fill(document.createElement(name), properties, children);
}

export function svg(name, properties = {}, ...children) {
  return fill(document.createElementNS(SVG, name), properties, children);
}

// A label as it is shown: what would turn the direction of writing or cannot be seen is spelled.
export function shown(label) {
  if (label === '') return '(empty)';
  return String(label).replace(
    /[\u0000-\u001f\u007f-\u009f\u061c\u200b-\u200f\u2028-\u202e\u2060-\u2069\ufeff\ufff9-\ufffb]/g,
    (sign) => `<U+${sign.codePointAt(0).toString(16).toUpperCase().padStart(4, '0')}>`);
}

export function say(text) {
  const place = document.getElementById('said');
  place.textContent = text;
  place.classList.toggle('shown', text !== '');
  clearTimeout(say.timer);
  if (text !== '') say.timer = setTimeout(() => place.classList.remove('shown'), 5000);
}

// What went wrong; what the user has ended can be asked for again.
export function problem(error) {
  return h('p', {class: 'problem', role: 'alert'}, error.message, ' ', error.name === 'Cancelled' &&
    h('button', {type: 'button', id: 'again', onclick: () => dispatchEvent(new Event('redraw'))}, 'Try again'));
}

// A select with a label before it, by which its focus is found again when the page is drawn anew.
export function choice(label, options, value, change) {
  const select = h('select', {id: `choice-${label.toLowerCase().replace(/\W+/g, '-')}`, onchange: () => change(select.value)},
    options.map(([key, text]) => h('option', {value: key, selected: key === value}, text)));
  return h('label', {class: 'choice'}, h('span', {}, label), select);
}

export function tick(label, value, change, id = undefined) {
  const box = h('input', {type: 'checkbox', id, checked: value, onchange: () => change(box.checked)});
  return h('label', {class: 'tick'}, box, label);
}

// A dialog with a title, which Escape closes; gives the element to close it with.
export function dialog(title, ...children) {
  const heading = h('h2', {id: 'dialog-title'}, title);
  const box = h('dialog', {'aria-labelledby': 'dialog-title', onclose: () => box.remove()}, heading,
    ...children.filter(Boolean));
  document.body.append(box);
  box.showModal();
  return box;
}

export function save(blob, name) {
  const url = URL.createObjectURL(blob);
  const link = h('a', {href: url, download: name});
  document.body.append(link);
  link.click();
  link.remove();
  setTimeout(() => URL.revokeObjectURL(url), 10000);
}

// Copies a text. Where the browser wants a click for it that was not too long ago, a dialog asks for one.
export async function toClipboard(text, what) {
  try {
    await navigator.clipboard.writeText(text);
    say(`${what} copied`);
  } catch {
    const isShort = text.length < 1e6;
    const area = isShort && h('textarea', {readOnly: true, rows: 6, 'aria-label': what}, text);
    const box = dialog('Ready to be copied', area, h('div', {class: 'row'}, h('button', {type: 'button', class: 'main', onclick: async () => {
      try {
        await navigator.clipboard.writeText(text);
        box.close();
        say(`${what} copied`);
      } catch (error) {
        say(error.message);
      }
    }}, 'Copy'), h('button', {type: 'button', onclick: () => box.close()}, 'Close')));
    if (isShort) area.select();
  }
}

const counting = new Intl.NumberFormat('en-US');
export function counted(count, noun) {
  return `${counting.format(count)} ${noun}${count === 1 ? '' : 's'}`;
}

// A number with the fewest digits that read back to the same; words of special values as they are.
export function numberText(value) {
  if (value === null || value === undefined) return '';
  if (typeof value === 'string') return shown(value);
  return Object.is(value, -0) ? '-0' : String(value);
}

// For axes and cells in which no more digits are of use.
export function shortNumber(value) {
  if (typeof value !== 'number') return numberText(value);
  if (Number.isInteger(value) && Math.abs(value) < 1e15) return counting.format(value);
  return String(Number(value.toPrecision(6)));
}
