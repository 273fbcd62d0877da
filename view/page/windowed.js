// A table of any number of rows, of which those that are seen are asked for. Browsers end elements at
// some millions of pixels; beyond that the scroll bar tells a share of the whole instead of pixels.
import {h, problem} from './dom.js';
import {makePrintable, readyRows} from './print.js';

const rowHeight = 26;
const tallest = 6e6;
const pageRows = 200;
const pagesKept = 60;

export class Windowed {
  // `columns`: {title, number, sort?, order?} each; `fetch(from, count)` gives {total, rows};
  // `cells(row)` gives the texts or elements of a row.
  constructor({columns, fetch, cells, label, first = 0, moved = () => {}, counted = () => {}}) {
    Object.assign(this, {columns, fetch, cells, moved, counted});
    this.first = first;
    this.total = 0;
    this.pages = new Map();
    this.body = h('tbody');
    this.table = h('table', {class: 'grid', 'aria-label': label},
      h('thead', {}, h('tr', {'aria-rowindex': 1}, columns.map((column) => this.title(column)))), this.body);
    this.view = h('div', {class: 'view'}, this.table);
    this.tall = h('div', {class: 'tall'}, this.view);
    this.scroller = h('div', {class: 'scroller', tabIndex: 0, role: 'region', 'aria-label': `${label}, scrolls`}, this.tall);
    makePrintable(this);
    this.element = h('div', {class: 'windowed'}, this.scroller, this.printed);
    this.scroller.addEventListener('scroll', () => this.scrolled());
    this.scroller.addEventListener('wheel', (event) => this.wheeled(event), {passive: false});
    this.scroller.addEventListener('keydown', (event) => this.pressed(event));
    new ResizeObserver(() => this.draw()).observe(this.scroller);
  }

  title(column) {
    const order = column.order;
    return h('th', {
      scope: 'col',
      class: column.number ? 'number' : '',
      'aria-sort': order ? (order === 'desc' ? 'descending' : 'ascending') : undefined,
    }, column.sort
      ? h('button', {type: 'button', class: 'link', onclick: column.sort, id: column.id},
        column.title, order ? (order === 'desc' ? ' ↓' : ' ↑') : '')
      : column.title);
  }

  get fitting() {
    return Math.max(1, Math.floor((this.scroller.clientHeight - this.head()) / rowHeight));
  }

  head() {
    return this.table.tHead.offsetHeight || rowHeight;
  }

  get last() {
    return Math.max(0, this.total - this.fitting);
  }

  // Asks for the first rows; throws what is wrong with the question itself.
  async open() {
    const page = Math.floor(this.first / pageRows);
    const {total} = await this.page(page);
    this.total = total;
    this.counted(total);
    this.table.setAttribute('aria-rowcount', total + 1);
    this.go(this.first);
    if (total <= readyRows) this.makeReady();
  }

  // Asks for all rows of a small table beforehand.
  async makeReady() {
    try {
      for (let page = 0; page * pageRows < this.total; ++page) await this.page(page);
    } catch {
      // They are asked for again when they are seen.
    }
  }

  page(number) {
    let page = this.pages.get(number);
    if (page === undefined) {
      page = {rows: null, promise: null};
      page.promise = this.fetch(number * pageRows, pageRows).then((answer) => {
        page.rows = answer.rows;
        return answer;
      });
      page.promise.catch(() => this.pages.delete(number));
    } else {
      this.pages.delete(number);
    }
    this.pages.set(number, page);
    while (this.pages.size > pagesKept) this.pages.delete(this.pages.keys().next().value);
    return page.promise;
  }

  row(index) {
    return this.pages.get(Math.floor(index / pageRows))?.rows?.[index % pageRows];
  }

  heightOfAll() {
    return Math.min(tallest, this.total * rowHeight + this.head());
  }

  // Shows the rows from `row` on, and puts the scroll bar there.
  go(row) {
    this.first = Math.min(Math.max(0, Math.round(row)), this.last);
    const height = this.heightOfAll();
    this.tall.style.height = `${height}px`;
    const room = height - this.scroller.clientHeight;
    this.expected = this.last === 0 ? 0 : this.first / this.last * Math.max(0, room);
    this.scroller.scrollTop = this.expected;
    this.draw();
    clearTimeout(this.movedTimer);
    this.movedTimer = setTimeout(() => this.moved(this.first), 400);
  }

  scrolled() {
    // What go() has set comes back as an event of its own.
    if (this.expected !== undefined && Math.abs(this.scroller.scrollTop - this.expected) < 2) return;
    this.expected = undefined;
    const room = this.heightOfAll() - this.scroller.clientHeight;
    const first = room <= 0 ? 0 : Math.round(this.scroller.scrollTop / room * this.last);
    if (first === this.first) return;
    this.first = Math.min(first, this.last);
    this.draw();
    clearTimeout(this.movedTimer);
    this.movedTimer = setTimeout(() => this.moved(this.first), 400);
  }

  // A turn of the wheel moves by rows however tall the whole is.
  wheeled(event) {
    if (event.ctrlKey || event.shiftKey || Math.abs(event.deltaX) > Math.abs(event.deltaY)) return;
    const rows = event.deltaMode === 1 ? event.deltaY : event.deltaY / rowHeight;
    this.owed = (this.owed ?? 0) + rows;
    const whole = Math.trunc(this.owed);
    this.owed -= whole;
    const target = this.first + whole;
    if (target < 0 && this.first === 0 || target > this.last && this.first === this.last) return;
    event.preventDefault();
    if (whole !== 0) this.go(target);
  }

  pressed(event) {
    if (event.target !== this.scroller) return;
    const step = {ArrowDown: 1, ArrowUp: -1, PageDown: this.fitting - 1, PageUp: 1 - this.fitting}[event.key];
    if (step !== undefined) this.go(this.first + step);
    else if (event.key === 'Home') this.go(0);
    else if (event.key === 'End') this.go(this.last);
    else return;
    event.preventDefault();
  }

  draw() {
    if (!this.element.isConnected) return;
    const end = Math.min(this.total, this.first + this.fitting);
    const rows = [];
    let isMissing = false;
    for (let index = this.first; index < end; ++index) {
      const row = this.row(index);
      isMissing ||= row === undefined;
      rows.push(h('tr', {'aria-rowindex': index + 2}, row === undefined
        ? this.columns.map(() => h('td', {class: 'coming'}, '…'))
        : this.cells(row, index).map((cell, column) =>
          h('td', {class: this.columns[column].number ? 'number' : ''}, cell))));
    }
    this.body.replaceChildren(...rows);
    this.keepWidths();
    if (isMissing) this.askSoon(end);
  }

  // Columns grow and never shrink, so that they stand still while one scrolls.
  keepWidths() {
    for (const cell of this.table.tHead.rows[0].cells) {
      const width = cell.offsetWidth;
      if (width > (Number(cell.dataset.width) || 0)) {
        cell.dataset.width = width;
        cell.style.minWidth = `${width}px`;
      }
    }
  }

  // Waits for a scroll to come to rest before it asks.
  askSoon(end) {
    clearTimeout(this.askTimer);
    this.askTimer = setTimeout(async () => {
      const from = Math.floor(this.first / pageRows);
      const to = Math.floor(Math.max(this.first, end - 1) / pageRows);
      try {
        for (let page = from; page <= to; ++page) await this.page(page);
        this.wrong?.remove();
        this.draw();
      } catch (error) {
        if (error.name === 'AbortError') return;
        this.wrong?.remove();
        this.wrong = problem(error);
        this.element.before(this.wrong);
      }
    }, 40);
  }
}
