// The viewer in a browser: starts the command and the browser, and gives pages that note whatever
// goes wrong in them.
import {execFileSync, spawn, spawnSync} from 'node:child_process';
import {createRequire} from 'node:module';
import {mkdtempSync, rmSync} from 'node:fs';
import {tmpdir} from 'node:os';
import path from 'node:path';
import {fileURLToPath} from 'node:url';

export const project = path.resolve(path.dirname(fileURLToPath(import.meta.url)), '../..');
const require = createRequire(path.join(project, 'build/browser/package.json'));
const puppeteer = require('puppeteer-core');
export const axeSource = require('axe-core').source;

const programs = process.env.ZTB_BIN ?? path.join(project, 'build/release/bin');
const environment = {...process.env, NO_COLOR: '1', LC_ALL: 'C.UTF-8'};

export function ztb(folder, ...parameters) {
  return execFileSync(path.join(programs, 'ztb'), parameters,
    {cwd: folder, encoding: 'utf8', env: environment, maxBuffer: 1 << 28, stdio: ['ignore', 'pipe', 'pipe']});
}

// The same of a command that ends with 1: what it prints, and what it says on standard error.
export function ztbFails(folder, ...parameters) {
  const {status, stdout, stderr} = spawnSync(path.join(programs, 'ztb'), parameters, {cwd: folder, encoding: 'utf8', env: environment});
  if (status !== 1) throw new Error(`ztb ${parameters.join(' ')} ended with ${status}: ${stderr}`);
  return {output: stdout, said: stderr};
}

export class Browser {
  static async start() {
    const self = new Browser();
    self.folder = mkdtempSync(path.join(tmpdir(), 'ztb-browser-'));
    self.views = [];
    self.browser = await puppeteer.launch({
      executablePath: '/usr/bin/chromium',
      headless: true,
      userDataDir: path.join(self.folder, 'profile'),
      args: ['--no-sandbox', '--disable-gpu', '--disable-quic', '--no-first-run',
        '--disable-background-networking', '--disable-component-update', '--disable-sync'],
    });
    return self;
  }

  // Starts the viewer on files, and gives the link that it prints.
  async view(folder, ...files) {
    const child = spawn(path.join(programs, 'ztb'), ['view', '--no-open', ...files],
      {cwd: folder, env: environment, stdio: ['ignore', 'pipe', 'inherit']});
    this.views.push(child);
    return new Promise((resolve, reject) => {
      let text = '';
      child.stdout.on('data', (piece) => {
        text += piece;
        if (text.includes('\n')) resolve(text.trim().split('\n')[0]);
      });
      child.on('exit', (status) => reject(new Error(`ztb view ${files.join(' ')} ended with ${status}`)));
    });
  }

  // A page whose problems are noted: errors of the console, of scripts, and requests to elsewhere.
  async page(link) {
    const page = await this.browser.newPage();
    const origin = new URL(link).origin;
    page.problems = [];
    page.on('console', (message) => {
      if (['error', 'warn'].includes(message.type())) page.problems.push(`console: ${message.text()} ${message.location().url ?? ''}`.trimEnd());
    });
    page.on('pageerror', (error) => page.problems.push(`script: ${error.message}`));
    page.on('request', (request) => {
      const url = new URL(request.url());
      if (url.protocol !== 'blob:' && url.protocol !== 'data:' && url.origin !== origin) {
        page.problems.push(`request: ${request.url()}`);
      }
    });
    page.on('dialog', (dialog) => {
      page.problems.push(`dialog: ${dialog.message()}`);
      dialog.dismiss();
    });
    await page.setViewport({width: 1280, height: 800});
    await page.goto(link);
    await page.waitForSelector('#pages button');
    return page;
  }

  async end() {
    await this.browser.close();
    for (const view of this.views) {
      view.removeAllListeners('exit');
      view.kill('SIGTERM');
    }
    rmSync(this.folder, {recursive: true, force: true});
  }
}

// Goes to another view of the same page, and waits for what it shows.
export async function go(page, fragment, selector) {
  await page.evaluate((next) => { location.hash = next; }, fragment);
  if (selector) await page.waitForSelector(selector);
  await settled(page);
}

// Until nothing is asked any more.
export async function settled(page) {
  await page.waitForNetworkIdle({idleTime: 150});
}

export const texts = (page, selector) =>
  page.$$eval(selector, (elements) => elements.map((element) => element.textContent));
