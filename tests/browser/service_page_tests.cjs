'use strict';
// The service's page in a real browser: SERVICE=PROGRAM node service_page_tests.cjs EMULATOR...
const assert = require('assert');
const { execFileSync } = require('child_process');
const { chromium } = require('playwright-core');
const { startEmulator, runCases, finish, sale } = require('./emulator.cjs');
const { startService } = require('./service.cjs');
const { udpTill } = require('./till.cjs');

const line = { description: '<b onclick=x>ΚΑΦΕΣ</b>', price: 2.5, vat: 24 };
const cash = [{ type: 'cash' }], card = [{ type: 'card', terminal: 1 }];
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

/** A receipt whose card is declined: it wants a payment. */
async function decline(id) {
  await emulator.fetch('PATCH', '/card', { next: [156] });
  await put(id, card);
  await shows('#cases h3', `Receipt ${id}: € 2.50 left to pay`);
}

/** Somebody cancels what is open at the register, and sells there. */
async function sellByHand(times) {
  await till.ask('O/2/');
  for (let i = 0; i < times; ++i) await till.sell('BY HAND', '1.00');
}

const cases = {
  async aReceiptAppearsAndItsTextIsText() {
    await put('first', cash);
    await shows('#sold summary', /Receipt 1.*first.*€ 2.50.*booked/);
    await page.focus('#sold summary');
    await page.keyboard.press('Enter');
    await shows('#sold .about td', line.description);
    await put('second', cash);
    await shows('#sold summary', 'second');
    assert.equal(await page.evaluate(() => document.activeElement.textContent.includes('first')), true, 'the focus stays');
    await shows('#sold .about', 'Cash');
  },
  async aDeclinedCardIsPaidInCash() {
    await decline('declined');
    await shows('#cases p', 'Code 156');
    await page.fill('[name=amount]', '2');
    await press('pay');
    await shows('#cases h3', 'Receipt declined: € 0.50 left to pay');
    await press('pay');
    await shows('#sold summary', /declined.*booked/);
    await calm();
    await decline('unwanted');
    await press('cancel');
    await shows('#sold summary', /unwanted.*not booked/);
    await calm();
  },
  async whatIsUnknownIsSettled() {
    for (const [id, act, becomes] of [['lost', 'not-committed', 'not booked'], ['found', 'committed', 'booked']]) {
      await decline(id);
      await sellByHand(1);
      await press('pay');
      await shows('#cases h3', `Receipt ${id}: was it booked?`);
      await shows('#cases .differs', 'Receipts');
      await shows('#cases .about td', line.description);
      await press(act);
      await calm();
      await shows('#sold summary', new RegExp(`${id}.* ${becomes}|${id}${becomes}|${id}.*${becomes}$`));
    }
  },
  async aStrangersReceiptIsCancelledAndTheQueueGoesOn() {
    await till.ask(sale);
    await put('waits', cash, 0);
    await put('queued', cash, 0);
    await shows('#cases h3', 'Waits for the register – Receipt waits');
    await page.locator('#queued li', { hasText: 'Receipt queued' }).locator('[data-act=cancel]').click();
    await shows('#sold summary', /queued.*not booked/);
    await press('void');
    await shows('#sold summary', /waits.*booked/);
    await calm();
  },
  async aServiceThatComesBackWithAnOldDatabaseIsAccepted() {
    await decline('open');
    await service.end();
    await shows('#link', 'no connection');
    await sellByHand(2);
    service = await startService(emulator.udp, { store: service.store, web: new URL(service.web).port });
    await shows('#cases h3', 'Receipt open: was it booked?');
    await shows('#cases h3', 'Takes nothing new');
    await press('not-committed');
    await press('accept');
    await calm();
    await put('after', cash);
    await shows('#sold summary', /after.*booked/);
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
    await decline('shown').catch(() => {});
    for (const [where, ready] of [['/', '#cases form'], ['/guide.html', '#operations details']]) {
      for (const [locale, colorScheme] of [['el-GR', 'light'], ['el-GR', 'dark'], ['en-GB', 'light'], ['en-GB', 'dark']]) {
        const tab = await open({ locale, colorScheme, bypassCSP: true }, where);
        await tab.locator(ready).first().waitFor();
        for (const summary of await tab.locator('#cases summary, #sold li:first-child summary').all()) await summary.click();
        await tab.addScriptTag({ path: require.resolve('axe-core/axe.min.js') });
        for (const width of [330, 400, 800, 1280]) {
          await tab.setViewportSize({ width, height: 800 });
          const hanging = await tab.evaluate(() => [...document.querySelectorAll('section *, header *')].filter((element) =>
            element.offsetParent && element.getBoundingClientRect().right > element.closest('section, header').getBoundingClientRect().right + 0.5)
            .map((element) => element.outerHTML.slice(0, 80)));
          assert.deepEqual(hanging, [], `${where} ${locale} ${width}`);
          if (width === 400 || width === 800) continue;
          const { violations } = await tab.evaluate(() => axe.run());
          const found = violations.map(({ id, nodes }) => `${id} ${nodes[0].target}`);
          assert.deepEqual(found, [], `${where} ${locale} ${colorScheme} ${width}`);
        }
        await tab.context().close();
      }
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
