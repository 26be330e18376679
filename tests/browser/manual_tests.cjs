'use strict';
// The manual as people open it: from a folder. manual_tests.cjs FOLDER
const assert = require('assert');
const fs = require('fs');
const path = require('path');
const { pathToFileURL } = require('url');
const { chromium } = require('playwright-core');

const folder = path.resolve(process.argv[2]);
const addressOf = (page) => pathToFileURL(path.join(folder, page)).href.replace('%3F', '?').replace('%23', '#');
const pages = fs.readdirSync(folder).concat(fs.readdirSync(path.join(folder, 'el')).map((name) => `el/${name}`))
  .filter((name) => name.endsWith('.html'));

const cases = {
  async theSearchFindsACodeAMemberAndASymptom(page) {
    for (const [query, where, language = 'en'] of [
      ['25', 'result-codes.html#25-paper-end'], ['-3', 'result-codes.html#-3-no-answer'], ['itemsale', 'reference.html#itemsale'],
      ['Class not registered', 'when-it-does-not-print.html#class-not-registered'],
      ['τελος χαρτιου', 'el/when-it-does-not-print.html#εκτυπωτής', 'el'],
    ]) {
      await page.goto(addressOf(language === 'el' ? 'el/index.html' : 'sell.html'));
      await page.fill('.sidebar-search', query);
      await page.press('.sidebar-search', 'Enter');
      const first = await page.locator('#search-results a').first().evaluate((link) => link.href);
      assert.equal(decodeURIComponent(first), decodeURIComponent(addressOf(where)), query);
      await page.goto(first);
      assert.ok(await page.evaluate((id) => document.getElementById(id) !== null, where.split('#')[1]), where);
    }
  },
  async everyPageFitsAPhoneAndSpeaksOfNothingOfOurs(page) {
    await page.setViewportSize({ width: 400, height: 800 });
    for (const name of pages) {
      await page.goto(addressOf(name));
      assert.ok(await page.evaluate(() => document.documentElement.scrollWidth <= innerWidth), `${name} is wider than a phone`);
      assert.ok(!/\.\/run |docs\/[a-z-]+\.md/.test(fs.readFileSync(path.join(folder, name), 'utf8').replace(/<[^>]*>/g, '')), name);
    }
  },
  async bothLanguagesAndBothColours(page) {
    await page.emulateMedia({ colorScheme: 'dark' });
    await page.goto(addressOf('index.html'));
    const background = () => page.evaluate(() => getComputedStyle(document.body).backgroundColor);
    const dark = await background();
    await page.locator('.theme-toggle:visible').click();
    assert.notEqual(await background(), dark);
    await page.goto(await page.locator('.sidebar-language a').evaluate((link) => link.href));
    assert.equal(await page.getAttribute('html', 'lang'), 'el');
    assert.equal(await page.locator('.door').count(), 3);
  },
};

(async () => {
  const browser = await chromium.launch({ executablePath: '/usr/bin/chromium', args: ['--no-sandbox'] });
  for (const [name, run] of Object.entries(cases)) {
    const page = await browser.newPage({ viewport: { width: 1280, height: 900 } });
    page.on('pageerror', (error) => { throw error; });
    await run(page);
    await page.close();
    console.log(`ok ${name}`);
  }
  await browser.close();
})().catch((error) => { console.error(error); process.exit(1); });
