// What is looked at, held in the fragment of the address: a link is a view.

let state = new URLSearchParams();
const listeners = [];

export const get = (name) => state.get(name) ?? '';
export const all = (name) => state.getAll(name);
export const numbers = (name) =>
  get(name).split(',').filter((word) => /^\d+$/.test(word)).map(Number);
export const entries = () => [...state.entries()];

// Of these only the view is kept when another symbol is opened.
const ofAll = new Set(['view', 'f', 'solve', 'seconds']);

function changed(push) {
  const address = `#${state}`;
  if (push) history.pushState(null, '', address); else history.replaceState(null, '', address);
  for (const listener of listeners) listener();
}

// Sets names to values; an empty one goes. Without `quietly` the page is drawn anew.
export function set(values, {push = true, quietly = false} = {}) {
  for (const [name, value] of Object.entries(values)) {
    state.delete(name);
    for (const one of Array.isArray(value) ? value : [value]) {
      if (one !== '' && one !== null && one !== undefined && one !== false) {
        state.append(name, one === true ? '1' : String(one));
      }
    }
  }
  if (quietly) history.replaceState(null, '', `#${state}`); else changed(push);
}

export function openSymbol(name, more = {}) {
  const next = new URLSearchParams();
  for (const [key, value] of state) if (ofAll.has(key)) next.append(key, value);
  next.set('s', name);
  for (const [key, value] of Object.entries(more)) next.set(key, value);
  state = next;
  changed(true);
}

export const listen = (listener) => listeners.push(listener);

// The token of the address, which is taken out of it; null where there is none.
export function begin() {
  state = new URLSearchParams(location.hash.slice(1));
  const token = state.get('token');
  state.delete('token');
  history.replaceState(null, '', `#${state}`);
  addEventListener('popstate', () => {
    state = new URLSearchParams(location.hash.slice(1));
    if (state.has('token')) {
      state.delete('token');
      history.replaceState(null, '', `#${state}`);
    }
    for (const listener of listeners) listener();
  });
  return token;
}

// For a colleague with the same file: without the token.
export function link() {
  return `${location.origin}/#${state}`;
}

// The filters of all that is asked of a symbol.
export function filters() {
  const parameters = {where: get('where')};
  for (const [name, value] of state) {
    if (/^p\d+$/.test(name)) parameters[name] = value;
    if (/^in\d+$/.test(name)) (parameters[name] ??= []).push(value);
  }
  return parameters;
}
