'use strict';
// The service's page in a real browser: SERVICE=PROGRAM node service_page_tests.cjs EMULATOR...
const assert = require('assert');
const { execFileSync } = require('child_process');
const { chromium } = require('playwright-core');
const { startEmulator, runCases, finish, sale } = require('./emulator.cjs');
const { startService } = require('./service.cjs');
const { udpTill } = require('./till.cjs');

const line = { description: '<b onclick=x>ΚΑΦΕΣ</b>', price: 2.5, vat: 24 };
const cash = [{ type: 'cash' }];
let browser, emulator, service, till, page;

const shows = (selector, text) => page.locator(selector, { hasText: text }).first().waitFor();
const press = (act) => page.click(`#cases [data-act=${act}]`);
const calm = () => page.locator('#cases:empty').waitFor({ state: 'attached' });
const put = (id, payments, seconds = 5) => fetch(`${service.web}/v1/receipts/${id}`, {
  method: 'PUT', headers: { Prefer: `wait=${seconds}` }, body: JSON.stringify({ lines: [line], payments }),
});

async function open(options = {}, where = '/') {
  const context = await browser.newContext({ locale: 'en-GB', viewport: { width: 1280, height: 800 }, reducedMotion: 'reduce', ...options });
  const tab = await context.newPage();
  tab.on('pageerror', (error) => { throw error; });
  tab.on('dialog', (dialog) => dialog.accept());
  tab.setDefaultTimeout(10000);
  await tab.goto(service.web + where);
  return tab;
}

/** A receipt that wants a payment. */
async function leaveUnpaid(id) {
  await put(id, []);
  await shows('#cases h3', `Receipt ${id}: €\u00a02.50 left to pay`);
}

/** Somebody cancels what is open at the register, and sells there. */
async function sellByHand(times) {
  await till.ask('O/2/');
  for (let i = 0; i < times; ++i) await till.sell('BY HAND', '1.00');
}

const cases = {
  async aReceiptAppearsAndItsTextIsText() {
    await put('first', cash);
    await shows('#sold summary', /Receipt 1.*first.*€\u00a02.50.*booked/);
    await page.focus('#sold summary');
    await page.keyboard.press('Enter');
    await shows('#sold .about td', line.description);
    await put('second', cash);
    await shows('#sold summary', 'second');
    assert.equal(await page.evaluate(() => document.activeElement.textContent.includes('first')), true, 'the focus stays');
    await shows('#sold .about', 'Cash');
  },
  async aDeclinedCardIsPaidInCash() {
    await emulator.fetch('PATCH', '/card', { next: [156] });
    await put('declined', [{ type: 'card', terminal: 1 }]);
    await shows('#cases p', 'Code 156');
    await page.fill('[type=number]', '2');
    await press('pay');
    await shows('#cases h3', 'Receipt declined: €\u00a00.50 left to pay');
    await press('pay');
    await shows('#sold summary', /declined.*\sbooked/);
  },
  async whatIsUnpaidOrUnknownEndsByItsButton() {
    for (const [id, isLost, act, becomes] of [
      ['unwanted', false, 'cancel', 'not booked'], ['gone', true, 'not-committed', 'not booked'], ['found', true, 'committed', ' booked'],
    ]) {
      await leaveUnpaid(id);
      if (isLost) {
        await sellByHand(1);
        await press('pay');
        await shows('#cases h3', `Receipt ${id}: was it booked?`);
        await shows('#cases .differs', 'Receipts');
        await shows('#cases .about td', line.description);
      }
      await press(act);
      await calm();
      await shows('#sold summary', new RegExp(`${id}.*${becomes}`));
    }
  },
  async aRegisterThatHasGoneOnIsAcceptedAndItsOpenReceiptCancelled() {
    await leaveUnpaid('left');
    // As after a power cut.
    await service.end();
    await shows('#link', 'no connection');
    await sellByHand(2);
    await till.ask(sale);
    service = await startService(emulator.udp, { store: service.store, web: new URL(service.web).port });
    await shows('#cases h3', 'Receipt left: was it booked?');
    await press('not-committed');
    await shows('#cases h3', 'Takes nothing new');
    await press('accept');
    await calm();
    await put('waits', cash, 0);
    await put('queued', cash, 0);
    await shows('#cases h3', 'Waits for the register – Receipt waits');
    await page.locator('#queued li', { hasText: 'Receipt queued' }).locator('[data-act=cancel]').click();
    await shows('#sold summary', /queued.*not booked/);
    await press('void');
    await shows('#sold summary', /waits.*\sbooked/);
    await calm();
  },
  async aHiddenTabEndsItsStream() {
    const ended = page.waitForEvent('requestfailed', (request) => request.url().endsWith('/v1/events'));
    await page.evaluate(() => {
      Object.defineProperty(document, 'hidden', { value: true });
      document.dispatchEvent(new Event('visibilitychange'));
    });
    await ended;
  },
  async itIsAccessibleAndNothingHangsOut() {
    await put('shown', []);
    for (const [where, ready, locale, colorScheme] of [
      ['/', '#cases form', 'el-GR', 'light'], ['/', '#cases form', 'el-GR', 'dark'], ['/', '#cases form', 'en-GB', 'light'],
      ['/', '#cases form', 'en-GB', 'dark'], ['/guide.html', '#operations details', 'en-GB', 'light'],
    ]) {
      const tab = await open({ locale, colorScheme, bypassCSP: true }, where);
      await tab.locator(ready).first().waitFor();
      for (const summary of await tab.locator('#cases summary, #sold li:first-child summary').all()) await summary.click();
      for (const width of [330, 400, 800, 1280]) {
        await tab.setViewportSize({ width, height: 800 });
        const hanging = await tab.evaluate(() => [...document.querySelectorAll('section *, header *')].filter((element) =>
          element.offsetParent && element.getBoundingClientRect().right > element.closest('section, header').getBoundingClientRect().right + 0.5)
          .map((element) => element.outerHTML.slice(0, 80)));
        assert.deepEqual(hanging, [], `${where} ${locale} ${width}`);
        assert.ok(await tab.evaluate(() => document.documentElement.scrollWidth) <= width, `${where} ${locale} ${width} scrolls`);
      }
      await tab.addScriptTag({ path: require.resolve('axe-core/axe.min.js') });
      const { violations } = await tab.evaluate(() => axe.run());
      const found = violations.map(({ id, nodes }) => `${id} ${nodes[0].target}`);
      assert.deepEqual(found, [], `${where} ${locale} ${colorScheme}`);
      await tab.context().close();
    }
  },
  async aTokenIsAskedForAndKept() {
    const store = `${service.store}-2`;
    const token = String(execFileSync(process.env.SERVICE, ['token', 'add', 'page', '--store', store])).trim();
    service = await startService((await startEmulator()).udp, { store, web: '0.0.0.0:0' });
    const tab = await open();
    for (const given of ['wrong', token]) {
      await tab.fill('#token', given);
      await tab.keyboard.press('Enter');
    }
    await tab.locator('#link:not(.lost):not(:empty)').waitFor();
    await tab.reload();
    await tab.locator('#link:not(.lost):not(:empty)').waitFor();
    assert.equal(await tab.evaluate(() => Object.values(localStorage).length), 0);
    await tab.context().close();
  },
};

async function run() {
  browser = await chromium.launch({ executablePath: '/usr/bin/chromium', args: ['--no-sandbox'] });
  emulator = await startEmulator('--card-seconds', '0');
  service = await startService(emulator.udp);
  till = await udpTill(emulator.udp);
  page = await open();
  await page.locator('#link:not(.lost):not(:empty)').waitFor();
  const failures = await runCases(cases);
  await browser.close();
  return failures;
}

finish(run());
