// A browser for the tests of one file, whose pages must not have had a problem at the end of each.
import assert from 'node:assert/strict';
import {after, afterEach, before} from 'node:test';
import {mkdirSync, readFileSync, readdirSync, rmSync} from 'node:fs';
import path from 'node:path';
import {Browser, axeSource, go, settled, texts} from './browser.mjs';
import {newFolder} from './data.mjs';

export const seen = {folder: newFolder(), browser: null, page: null};

// Starts the viewer on files that `make` has made; each test goes on with the same page.
export function suite(make, ...files) {
  before(async () => {
    await make(seen.folder);
    seen.browser = await Browser.start();
    seen.link = await seen.browser.view(seen.folder, ...files);
    seen.page = await seen.browser.page(seen.link);
    seen.downloads = path.join(seen.folder, 'downloads');
    mkdirSync(seen.downloads);
    const session = await seen.page.createCDPSession();
    await session.send('Browser.setDownloadBehavior', {behavior: 'allow', downloadPath: seen.downloads});
  });
  afterEach(() => assert.deepEqual(seen.page.problems.splice(0), []));
  after(() => seen.browser?.end());
}

// The text of an element.
export const textOf = (selector) => seen.page.$eval(selector, (place) => place.textContent);

// What axe-core finds wrong with what is shown, and with what opens.
export async function found(where) {
  await seen.page.$$eval('main details', (parts) => parts.forEach((part) => { part.open = true; }));
  await seen.page.evaluate(axeSource);
  const {violations} = await seen.page.evaluate(() => globalThis.axe.run());
  return violations.flatMap(({id, nodes}) => nodes.map((node) => `${where}: ${id}: ${node.html.slice(0, 160)}`));
}

// Waits until a question takes long enough for its button, and ends it.
export async function cancel() {
  await seen.page.waitForSelector('#busy:not([hidden])');
  await seen.page.click('#busy-cancel');
}

export const view = (fragment, selector) => go(seen.page, fragment, selector);

export async function click(selector) {
  await seen.page.click(selector);
  await settled(seen.page);
}

// The rows that a table shows, as the texts of their cells.
export const shownRows = (selector = '.grid') => seen.page.$$eval(`${selector} tbody tr`,
  (rows) => rows.map((row) => [...row.cells].map((cell) => cell.textContent)));
export const heads = async (selector = '.grid') =>
  (await texts(seen.page, `${selector} thead th`)).map((text) => text.replace(/ [↑↓]$/, ''));

// What a click saves.
export async function saved(selector, name) {
  const file = path.join(seen.downloads, name);
  rmSync(file, {force: true});
  await seen.page.click(selector);
  for (let turn = 0; turn < 200; ++turn) {
    if (readdirSync(seen.downloads).includes(name)) return readFileSync(file);
    await new Promise((done) => setTimeout(done, 50));
  }
  throw new Error(`${name} was not saved`);
}
