'use strict';
// The emulator's page in a real browser: node browser_tests.cjs COMMAND...
//
// COMMAND starts an emulator; further options are put behind it. TILL_SERIAL names the other end of its serial port,
// when it has one.
const assert = require('assert');
const net = require('net');
const { chromium } = require('playwright-core');
const { udpTill, serialTill } = require('./till.cjs');

const { startEmulator, runCases, finish, sale } = require('./emulator.cjs');

let browser, emulator, till, page;

async function freshPage(locale, width = 1280) {
  if (page) await page.context().close();
  page = await (await browser.newContext({ locale, viewport: { width, height: 800 } })).newPage();
  page.on('pageerror', (error) => { throw error; });
  page.setDefaultTimeout(10000);
  await page.goto(emulator.web);
  await page.locator('#link:not(.lost):not(:empty)').waitFor();
}

const shows = (selector, text) => page.locator(selector, { hasText: text }).first().waitFor();
const code = async (command) => (await till.ask(command))?.[0];

const cases = {
  async aReceiptAppearsWhileItIsSold() {
    const waiting = emulator.get('/receipts/1?wait=10');
    await till.ask(sale);
    await shows('.sheet', 'ΑΠΟΔΕΙΞΗ 0001');
    await shows('#fiscal .on', 'receipt open');
    assert.equal((await emulator.fetch('GET', '/receipts/1?wait=0.05')).status, 204, 'it is still open');
    await till.ask('5/1///0.00///');
    await till.ask('O/1/');
    const { state, lines, taxes, tenders, total } = await waiting;
    assert.deepEqual([state, lines[0].amount, taxes[0].vat, tenders[0].tender, total], ['closed', 10, 1.94, 'cash', 10]);
    await shows('.sheet', 'ΛΗΞΗ');
    await shows('#day-total', '10.00');
    await shows('#entries li', 'payment');
    await page.fill('#filter', 'quantity 1.000');
    assert.equal(await page.locator('#entries li:visible').count(), 1);
    await page.fill('#filter', '');
    const picture = await page.request.get(`${emulator.web}/api/v1/receipts/1.png`);
    assert.equal((await picture.body()).readUInt32BE(16), 528, 'as wide as the paper');
  },
  async aReceiptOverTheSerialPort() {
    if (!process.env.TILL_SERIAL) return;
    const serial = serialTill(process.env.TILL_SERIAL);
    await serial.sell('SERIAL', '2.00');
    serial.close();
    await shows('.sheet', 'SERIAL');
    await shows('#entries li', 'item');
  },
  async paperOutAndBackByButton() {
    await page.focus('#switch-paperEnd');
    await page.keyboard.press('Space');
    await shows('#printer', 'paper out');
    assert.equal(await code(sale), '19');
    await page.click('#switch-paperEnd');
    await shows('#printer', 'ready');
    assert.equal(await code(sale), '00');
    await page.click('#switch-off');
    await shows('#printer', 'off');
    assert.equal(await code(sale), undefined, 'nothing answers');
    await page.click('#calm');
    await shows('#printer', 'ready');
    assert.equal(await code('O/2/'), '00');
  },
  async aCardIsDeclinedAndApprovedByButton() {
    await page.click('#card-mute');
    await shows('#card-mute[aria-checked=true]', '');
    await till.ask(sale);
    for (const [reason, button, told] of [['156', '#decline', '9C'], ['112', '#decline', '70'], ['112', '#approve', '00']]) {
      await page.selectOption('#reason', reason);
      assert.equal(await code('5/2///10.00/1/1/'), '9E');
      await page.click(button);
      await page.locator('#payment').waitFor({ state: 'hidden' });
      assert.equal(await code('?/'), told);
    }
    await shows('.sheet', 'ΕΓΚΡΙΘΗΚΕ');
    assert.equal(await code('O/1/'), '00');
    await page.click('#card-declines');
    await shows('#card-declines[aria-checked=true]', '');
    assert.equal((await emulator.get('/state')).card.outcome, 112);
    await emulator.fetch('DELETE', '/faults');
  },
  async whatTheTillSendsIsStruckAndItsPeerIsTold() {
    await page.click('#sent >> text=drop its ACK');
    await shows('#rules li', 'next till-ack lost');
    assert.equal(await code(sale), '00');
    await shows('#entries b', 'the till\'s ACK was lost');
    assert.equal(await code(sale), '00', 'and not booked');
    await shows('#entries .mark', 'repeated');
    assert.equal((await emulator.get('/state')).receipt.total, 10);
    await page.click('[data-language=el]');
    await shows('#entries b', 'το ACK του ταμείου χάθηκε');
    await page.click('[data-language=en]');
    assert.equal(await page.locator('.peer:visible').count(), 0, 'there is one till');
    const other = await udpTill(emulator.udp);
    await other.ask('O/2/');
    other.close();
    await shows('.peer:visible', 'from 127.0.0.1:');
    const [answered, struck] = (await emulator.get('/conversation')).reverse().filter(({ struck, command }) => struck || command.raw === 'O/2/');
    assert.deepEqual(struck.struck, { what: 'till-ack', fault: 'lost' });
    assert.notEqual(answered.peer, struck.peer);
  },
  async rulesAreAddedSeenAndTakenAway() {
    await page.fill('#rule', 'next tomorrow');
    await page.keyboard.press('Enter');
    await shows('#notice', 'unknown fault "tomorrow" (body/rule)');
    await page.fill('#rule', 'on ?/ 2 code 116');
    await page.keyboard.press('Enter');
    await shows('#rules li', 'on ?/ 2 code 116');
    assert.equal(await code('?/'), '74');
    await shows('.mark', 'on ?/ 2 code 116');
    await page.focus('#rules button');
    await page.keyboard.press('Enter');
    await page.locator('#rules li').waitFor({ state: 'detached' });
    assert.equal(await page.evaluate(() => document.activeElement.id), 'rule', 'the focus stays near');
    assert.equal(await code('?/'), '00');
  },
  async greekAndEnglishAt360Pixels() {
    await freshPage('el-GR', 360);
    await till.ask(sale);
    for (const [language, word, item] of [['el', 'Χαρτί', 'είδος'], ['en', 'Paper', 'item']]) {
      await page.click(`[data-language=${language}]`);
      await shows('#paper h2', word);
      await shows('#entries b', item);
      assert.equal(await page.evaluate(() => document.documentElement.scrollWidth), 360, language);
      const silent = await page.$$eval('button, h2, h3, dt, th, nav a, #printer', (all) => all.filter((e) => !e.hidden && !e.textContent).length);
      assert.equal(silent, 0, 'something has no word');
    }
    await till.ask('O/2/');
    await freshPage('en-GB');
  },
  async itIsAccessibleAndNothingHangsOut() {
    await till.ask(sale);
    await emulator.fetch('POST', '/faults', { rule: 'on 5/ late 800' });
    const open = async (where, options) => {
      const tab = await (await browser.newContext({ bypassCSP: true, reducedMotion: 'reduce', ...options })).newPage();
      await tab.goto(emulator.web + where);
      await tab.locator('#link:not(:empty), #operations details').first().waitFor();
      return tab;
    };
    for (const where of ['/', '/guide.html']) {
      // The guides are in English alone.
      for (const locale of where === '/' ? ['el-GR', 'en-GB'] : ['en-GB']) {
        for (const colorScheme of ['light', 'dark']) {
          for (const width of [320, 1400]) {
            const tab = await open(where, { locale, colorScheme, viewport: { width, height: 800 } });
            await tab.addScriptTag({ path: require.resolve('axe-core/axe.min.js') });
            const { violations } = await tab.evaluate(() => axe.run());
            const found = violations.map(({ id, nodes }) => `${id} ${nodes[0].target}`);
            assert.equal(found.join(), '', `${where} ${locale} ${colorScheme} ${width}: ${found}`);
            await tab.context().close();
          }
        }
      }
    }
    const tab = await open('/', { locale: 'el-GR' });
    for (const width of [300, 320, 360, 420, 761, 770, 790, 820, 1000, 1240, 1241, 1400]) {
      await tab.setViewportSize({ width, height: 800 });
      const hanging = await tab.evaluate(() => [...document.querySelectorAll('section *, header *')].filter((element) => {
        // What scrolls or is cut by intention.
        if (!element.offsetParent || element.closest('#roll, #found, #entries, .display')) return false;
        return element.getBoundingClientRect().right > element.closest('section, header').getBoundingClientRect().right + 0.5;
      }).map((element) => element.outerHTML.slice(0, 80)));
      assert.deepEqual(hanging, [], `${width}`);
      assert.ok(await tab.evaluate(() => document.documentElement.scrollWidth) <= width, `${width} scrolls`);
    }
    await tab.context().close();
    await emulator.fetch('DELETE', '/faults');
    await till.ask('O/2/');
  },
  async aBurstLeavesNothingOpenAndSaysWhatItLacks() {
    await page.evaluate(() => { document.getElementById('roll').scrollTop = 0; });
    // While the page cannot ask, more is printed than it is told of at once.
    let letAsk;
    const mayAsk = new Promise((resolve) => { letAsk = resolve; });
    await page.route('**/changes?*', (route) => mayAsk.then(() => route.continue()));
    for (let i = 1; i <= 300; ++i) await till.sell(`Burst ${i}`, '1.00');
    letAsk();
    await page.unroute('**/changes?*');
    await till.sell('Last', '1.00');
    await shows('.sheet', 'Last');
    const state = () => page.evaluate(() => ({
      ids: [...document.querySelectorAll('#roll > *')].filter((e) => !e.hidden && e.id !== 'blank' && e.id !== 'earlier').map((e) => e.dataset.id ? Number(e.dataset.id) : 'gap'),
      open: [...document.querySelectorAll('#roll .label span')].filter((e) => e.textContent.includes('open')).length,
    }));
    const { ids, open } = await state();
    assert.equal(open, 0, 'receipts that are closed look open');
    await shows('#entries', 'not shown');
    assert.ok(ids.length <= 200 && ids.includes('gap'), `${ids}`);
    for (let i = 1; i < ids.length; ++i) assert.ok(ids[i] === 'gap' || ids[i - 1] === 'gap' || ids[i] === ids[i - 1] + 1, `${ids}`);
    await page.locator('.gap').first().click();
    await page.locator('.document').nth(ids.filter((id) => id !== 'gap').length).waitFor({ state: 'attached' });
    await page.fill('#search', 'burst 17');
    await shows('#found .sheet', 'Burst 17');
    assert.ok(await page.locator('#found .document').count() >= 11);
    await page.fill('#search', '');
    await page.locator('#roll').waitFor();
    await freshPage('en-GB');
  },
  async hiddenTabsLeaveTheirConnectionsToOthers() {
    const tabs = [];
    for (let i = 0; i < 8; ++i) {
      tabs.push(await page.context().newPage());
      await tabs[i].goto(emulator.web, { timeout: 5000 });
      await tabs[i].locator('#link:not(:empty)').waitFor();
      await tabs[i].evaluate(() => {
        Object.defineProperty(document, 'hidden', { value: true });
        document.dispatchEvent(new Event('visibilitychange'));
      });
    }
    for (const tab of tabs) await tab.close();
  },
  async aThousandReceiptsAndABrowserThatDoesNotRead() {
    const deaf = net.connect(new URL(emulator.web).port, '127.0.0.1');
    deaf.write('GET /api/v1/events HTTP/1.1\r\nHost: localhost\r\n\r\n');
    deaf.pause();
    const before = (await emulator.get('/state')).day.receipts, start = Date.now();
    for (let i = 1; i <= 1000; ++i) await till.sell(`No ${i}`, '1.00');
    const selling = Date.now() - start;
    await shows('.sheet', /No 1000 /);
    const behind = Date.now() - start - selling;
    await shows('#receipt', String((await emulator.get('/state')).lastReceipt));
    assert.equal((await emulator.get('/state')).day.receipts, before + 1000);
    assert.ok(await page.locator('.document').count() <= 60 && await page.locator('#entries li').count() <= 300, 'the page grows');
    console.log(`    1000 receipts in ${selling} ms, on the page ${behind} ms later`);
    assert.ok(selling < 60000 && behind < 2000);
    deaf.destroy();
  },
};

async function run() {
  browser = await chromium.launch({ executablePath: '/usr/bin/chromium', args: ['--no-sandbox'] });
  emulator = await startEmulator(...(process.env.SERIAL_OPTIONS ?? '').split(' ').filter(Boolean));
  till = await udpTill(emulator.udp);
  await freshPage('en-GB');
  const failures = await runCases(cases);
  await browser.close();
  return failures;
}

finish(run());
