// Opens the fixture's page as a reader would: node page_test.mjs BROWSER PLAYWRIGHT PAGE
import assert from 'node:assert/strict';
import {createRequire} from 'node:module';
import {pathToFileURL} from 'node:url';

const [browser_path, playwright_path, page_path] = process.argv.slice(2);
const {chromium} = createRequire(import.meta.url)(playwright_path);
const browser = await chromium.launch({executablePath: browser_path});

// Counts the pixels of each canvas that differ from its first one.
const drawn = () => [...document.querySelectorAll('canvas')].map(canvas => {
  const {data} = canvas.getContext('2d').getImageData(0, 0, canvas.width, canvas.height);
  const pixels = new Uint32Array(data.buffer);
  return pixels.filter(pixel => pixel !== pixels[0]).length;
});

async function check(colour_scheme, width) {
  const page = await browser.newPage({colorScheme: colour_scheme, viewport: {width, height: 800}});
  const complaints = [];
  page.on('console', message => complaints.push(message.text()));
  page.on('pageerror', error => complaints.push(error.message));
  page.on('dialog', dialog => complaints.push(`dialog: ${dialog.message()}`));
  page.on('request', request => {
    if (!/^(file|data):/.test(request.url())) complaints.push(`request: ${request.url()}`);
  });
  await page.goto(pathToFileURL(page_path).href, {waitUntil: 'load'});
  await page.waitForFunction(() => document.querySelectorAll('canvas').length === 4);

  // Texts arrive as they were, whatever they look like.
  assert.equal(await page.title(), '</title></script><!-- <script>alert(1)</script> & "title"');
  assert.equal(await page.textContent('h1'), await page.title());
  assert.equal(await page.textContent('.command pre'), "zavri report 'a <b>.nv12'");
  assert.match(await page.textContent('[aria-label="Log lines"]'), /UTF-8: \ufffd+\n<\/pre><img/);

  // Verdicts name the loss, with the right sense for each score.
  assert.deepEqual(await page.locator('.scores strong').allTextContents(),
                   ['\u22126.60\u00a0dB: worse', '\u22120.50\u00a0levels: better']);

  // Pictures: the whole first, then the worst loss; all decode, with whichever version on the left.
  const captions = await page.locator('figure:has(.stage) figcaption').allTextContents();
  assert.deepEqual(captions.map(text => text.split(' \u00b7 ')[0]), ['all', '1lost', '2gained']);
  for (const version of ['clean', 'before']) {
    await page.check(`input[value=${version}]`);
    const widths = await page.$$eval('img', async images => {
      await Promise.all(images.map(image => image.decode()));
      return images.map(image => image.naturalWidth);
    });
    assert.deepEqual(widths, [160, 160, 160, 160, 160, 160, 40]);
  }
  for (const image of await page.locator('img').all()) {
    const {width, height} = await image.boundingBox();
    assert(width >= 100 && height >= 100, `a picture is shown as ${width}x${height}`);
  }
  assert.equal(await page.$$eval('img:not([alt]), img[alt=""]', images => images.length), 0);

  // The divider moves by keyboard and by mouse, and tells where it is.
  const slider = page.locator('img-comparison-slider').first();
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

  // A part at 3:1 shows each pixel as nine, whatever the width of the window.
  const pictured = await page.locator('#part-1 .stage').boundingBox();
  assert.equal(pictured.height, 3 * 120);

  // A table sorts by a column's name; cells without a number stay last.
  const table = page.locator('table', {hasText: 'PSNR'});
  await table.locator('button', {hasText: 'PSNR'}).click();
  assert.deepEqual(await table.locator('td:last-child').allTextContents(),
                   ['\u22124.00', '31.25', '\u221e', '\u2013']);

  assert((await page.evaluate(drawn)).every(pixels => pixels > 1000), 'a plot is empty');
  const overflow = await page.evaluate(
      () => document.documentElement.scrollWidth - document.documentElement.clientWidth);
  assert.equal(overflow, 0, 'the page is wider than the window');
  assert.deepEqual(complaints, []);
  await page.close();
}

try {
  await check('light', 1280);
  await check('dark', 420);
} finally {
  await browser.close();
}
