// Pictures of the viewer for the documents: node tests/browser/pictures.mjs FOLDER
import path from 'node:path';
import {Browser, go} from './browser.mjs';
import {makeDiet, makeSweep, newFolder} from './data.mjs';

const out = path.resolve(process.argv[2]);
const folder = newFolder();
makeDiet(folder);
makeSweep(folder);

const pictures = [
  ['view-table', ['diet.rxf'], 'view=table&s=nutrition&sort=value&desc=1', 'light'],
  ['view-pivot', ['diet.rxf'], 'view=pivot&s=nutrition&heat=1&p0=*beans*', 'light'],
  ['view-chart', ['diet.rxf'], 'view=chart&s=nutrition&x=1&by=0&type=area&p0=*beans*', 'dark'],
  ['view-compare', ['diet.rxf', 'changed.rxf'], 'view=compare&s=price', 'light'],
  ['view-scatter', ['diet.rxf'], 'view=chart&s=nutrition&type=scatter&x=0&vs=p1&lx=protein_g&ly=iron_mg', 'light'],
  ['view-sweep', ['sweep.rxf', 'scenarios.rxf'], 'view=sweep', 'light'],
  ['view-model', ['diet.lp'], 'view=model&solve=auto&of=enough', 'light', 1340],
];

const browser = await Browser.start();
try {
  for (const [name, files, fragment, scheme, height = 600] of pictures) {
    const page = await browser.page(await browser.view(folder, ...files));
    await page.setViewport({width: 1040, height});
    await page.emulateMediaFeatures([{name: 'prefers-color-scheme', value: scheme}]);
    await go(page, fragment, 'h1');
    if (page.problems.length > 0) throw new Error(page.problems.join('\n'));
    await page.screenshot({path: path.join(out, `${name}.png`)});
    await page.close();
  }
} finally {
  await browser.end();
}
