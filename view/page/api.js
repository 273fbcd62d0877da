// Requests to the command that shows this page, and nothing else.

const slow = 1000;
let key = sessionStorage.getItem('key');
let last = 0;

export class Refused extends Error {
  constructor(status, text) {
    super(text);
    this.status = status;
  }
}

// The user has pressed Cancel.
export class Cancelled extends Error {
  name = 'Cancelled';
}

export const hasKey = () => key !== null;

// Takes the token of a link in exchange for the key of this window.
export async function openSession(token) {
  const answer = await fetch('/api/session',
    {method: 'POST', body: JSON.stringify({token}), headers: {'Content-Type': 'application/json'}});
  if (!answer.ok) throw new Refused(answer.status, await reason(answer));
  key = (await answer.json()).key;
  sessionStorage.setItem('key', key);
}

async function reason(answer) {
  try {
    return (await answer.json()).error;
  } catch {
    return `the answer is ${answer.status}`;
  }
}

function address(path, parameters) {
  const query = new URLSearchParams();
  for (const [name, value] of Object.entries(parameters)) {
    if (value === undefined || value === null || value === '') continue;
    for (const one of Array.isArray(value) ? value : [value]) query.append(name, one);
  }
  return `/api/${path}?${query}`;
}

const request = (path, parameters, signal) =>
  fetch(address(path, parameters), {headers: {Authorization: `Bearer ${key}`}, signal});

// Shows how far a request is that takes long, with a button that ends it.
class Busy {
  constructor(id, end) {
    this.id = id;
    this.end = end;
    this.timer = setTimeout(() => this.show(), slow);
  }

  show() {
    Busy.current = this;
    document.getElementById('busy').hidden = false;
    document.getElementById('busy-cancel').onclick = () => this.end();
    this.ask();
  }

  async ask() {
    if (Busy.current !== this) return;
    try {
      const answer = await request('progress', {of: this.id});
      // It has ended, and its answer is on the way.
      if (!answer.ok) return;
      if (Busy.current === this) {
        const {done = 0, records = 0, words = ''} = await answer.json();
        const bar = document.getElementById('busy-bar');
        if (done > 0) bar.value = done; else bar.removeAttribute('value');
        document.getElementById('busy-text').textContent =
          words === '' ? `${records.toLocaleString('en-US')} records read` : words;
      }
    } catch {
      // The request itself tells what is wrong.
    }
    this.timer = setTimeout(() => this.ask(), 300);
  }

  close() {
    clearTimeout(this.timer);
    if (Busy.current !== this) return;
    Busy.current = null;
    document.getElementById('busy').hidden = true;
  }
}

// One request; `signal` gives it up. Throws Refused with the server's own sentence.
async function answered(path, parameters, signal) {
  const id = `r${++last}-${Math.floor(performance.now())}`;
  const gone = new AbortController();
  const cancel = () => {
    request('cancel', {of: id}).catch(() => {});
    gone.abort();
  };
  if (signal?.aborted) throw new DOMException('given up', 'AbortError');
  signal?.addEventListener('abort', cancel, {once: true});
  let isCancelled = false;
  const busy = new Busy(id, () => {
    isCancelled = true;
    cancel();
  });
  try {
    const answer = await request(path, {...parameters, id}, gone.signal);
    busy.close();
    if (!answer.ok) throw new Refused(answer.status, await reason(answer));
    return path === 'export' ? await answer.blob() : await answer.json();
  } catch (error) {
    if (isCancelled) throw new Cancelled('Cancelled.');
    if (error instanceof TypeError) throw new Error('ztb view has ended; start it again to go on');
    throw error;
  } finally {
    busy.close();
    signal?.removeEventListener('abort', cancel);
  }
}

export const get = (path, parameters = {}, signal = undefined) =>
  answered(path, parameters, signal);

setInterval(() => {
  if (key !== null) request('alive', {}).catch(() => {});
}, 30000);
