// Opens pages as a reader would: node page_test.mjs BROWSER PLAYWRIGHT FIXTURE OTHER..
import assert from 'node:assert/strict';
import {createRequire} from 'node:module';
import {resolve} from 'node:path';
import {pathToFileURL} from 'node:url';

const [browser_path, playwright_path, fixture, ...others] = process.argv.slice(2);
const {chromium} = createRequire(import.meta.url)(playwright_path);
const browser = await chromium.launch({executablePath: browser_path});

// Counts the pixels of each canvas that differ from its first one.
const drawn = () => [...document.querySelectorAll('canvas')].map(canvas => {
  const {data} = canvas.getContext('2d').getImageData(0, 0, canvas.width, canvas.height);
  const pixels = new Uint32Array(data.buffer);
  return pixels.filter(pixel => pixel !== pixels[0]).length;
});

async function open(path, colour_scheme, width) {
  const page = await browser.newPage({colorScheme: colour_scheme, viewport: {width, height: 800}});
  page.complaints = [];
  page.on('console', message => page.complaints.push(message.text()));
  page.on('pageerror', error => page.complaints.push(error.message));
  page.on('dialog', dialog => page.complaints.push(`dialog: ${dialog.message()}`));
  page.on('request', request => {
    if (!/^(file|data):/.test(request.url())) page.complaints.push(`request: ${request.url()}`);
  });
  await page.goto(pathToFileURL(resolve(path)).href, {waitUntil: 'load'});
  await page.waitForFunction(() => [...document.querySelectorAll('.plot')].every(
      plot => plot.querySelector('canvas')));
  return page;
}

// What holds of every page.
async function check_page(page) {
  for (const left of [null, 'clean', 'before']) {
    if (left && await page.locator(`input[value=${left}]`).count()) {
      await page.check(`input[value=${left}]`);
    }
    const widths = await page.$$eval('img', async images => {
      await Promise.all(images.map(image => image.decode()));
      return images.map(image => image.naturalWidth);
    });
    assert(widths.every(width => width > 0));
  }
  for (const image of await page.locator('img').all()) {
    const {width, height} = await image.boundingBox();
    assert(width >= 100 && height >= 100, `a picture is shown as ${width}x${height}`);
  }
  assert.equal(await page.$$eval('img:not([alt]), img[alt=""]', images => images.length), 0);

  // The divider moves by keyboard and by mouse, and tells where it is.
  const slider = page.locator('img-comparison-slider').first();
  if (await slider.count()) {
    const at = async () => Number(await slider.getAttribute('aria-valuenow'));
    await slider.focus();
    await page.keyboard.down('ArrowRight');
    await page.waitForFunction(
        () => document.querySelector('img-comparison-slider').ariaValueNow > 55);
    await page.keyboard.up('ArrowRight');
    await page.keyboard.press('Home');
    assert.equal(await at(), 0);
    const box = await slider.boundingBox();
    await page.mouse.click(box.x + box.width / 4, box.y + box.height / 2);
    assert.equal(await at(), 25);
  }
  assert((await page.evaluate(drawn)).every(pixels => pixels > 1000), 'a plot is empty');
  assert.doesNotMatch(await page.innerText('main'), /NaN|undefined|null/);
  const overflow = await page.evaluate(
      () => document.documentElement.scrollWidth - document.documentElement.clientWidth);
  assert.equal(overflow, 0, 'the page is wider than the window');
  assert.deepEqual(page.complaints, []);
}

async function check_fixture(colour_scheme, width) {
  const page = await open(fixture, colour_scheme, width);
  await check_page(page);

  // Texts arrive as they were, whatever they look like.
  assert.equal(await page.title(), '</title></script><!-- <script>alert(1)</script> & "title"');
  assert.equal(await page.textContent('h1'), await page.title());
  assert.equal(await page.textContent('.command pre'), "zavri report 'a <b>.nv12'");
  assert.match(await page.textContent('[aria-label="Log lines"]'), /UTF-8: \ufffd+\n<\/pre><img/);

  // Verdicts name the loss, with the right sense for each score.
  assert.deepEqual(await page.locator('.scores strong').allTextContents(),
                   ['\u22126.60\u00a0dB: worse', '\u22120.50\u00a0levels: better']);

  // The whole picture comes first, then the worst loss.
  const captions = await page.locator('figure:has(.stage) figcaption').allTextContents();
  assert.deepEqual(captions.map(text => text.split(' \u00b7 ')[0]), ['all', '1lost', '2gained']);

  // A part at 3:1 shows each pixel as nine, whatever the width of the window.
  const pictured = await page.locator('#part-1 .stage').boundingBox();
  assert.equal(pictured.height, 3 * 120);

  // A table sorts by a column's name; cells without a number stay last.
  const table = page.locator('table', {hasText: 'PSNR'});
  await table.locator('button', {hasText: 'PSNR'}).click();
  assert.deepEqual(await table.locator('td:last-child').allTextContents(),
                   ['\u22124.00', '31.25', '\u221e', '\u2013']);

  await page.close();
}

try {
  await check_fixture('light', 1280);
  await check_fixture('dark', 420);
  for (const path of others) {
    const page = await open(path, 'light', 1280);
    await check_page(page);
    await page.close();
  }
} finally {
  await browser.close();
}
