'use strict';
// The emulator's interface for tests: node interface_tests.cjs COMMAND...
const assert = require('assert');
const { execFileSync } = require('child_process');
const fs = require('fs');
const net = require('net');
const os = require('os');
const path = require('path');
const { asked, description, startEmulator, runCases, finish, sale } = require('./emulator.cjs');
const { udpTill } = require('./till.cjs');

let emulator;

/** The whole answer to a request's own bytes, as `fetch` sets Host and Origin by itself. */
const raw = (port, head, body = '') => new Promise((done) => {
  const socket = net.connect(port, '127.0.0.1');
  let text = '';
  socket.on('data', (bytes) => { text += bytes; }).on('close', () => done(text)).on('error', () => done(text));
  socket.write(Buffer.from(`${head}\r\nConnection: close\r\nContent-Length: ${body.length}\r\n\r\n${body}`, 'latin1'));
});

/** `value` without what `wanted` does not name. */
function part(value, wanted) {
  if (Array.isArray(wanted)) return Array.isArray(value) ? wanted.map((element, i) => part(value[i], element)) : value;
  if (!wanted || typeof wanted !== 'object' || !value) return value;
  return Object.fromEntries(Object.keys(wanted).map((name) => [name, part(value[name], wanted[name])]));
}

const cases = {
  async theInterfaceAsItsGuideHasIt() {
    const guide = fs.readFileSync(path.join(__dirname, '../../emulator/http.md'), 'utf8');
    const fresh = await startEmulator();
    let examples = 0;
    for (const [, lines, expected] of guide.matchAll(/```sh\n([^]*?)```(?:\s*```json\n([^]*?)```)?/g)) {
      const answer = execFileSync('bash', ['-ec', lines.replaceAll('http://127.0.0.1:8100', fresh.web)], { encoding: 'utf8' });
      if (expected) assert.deepEqual(part(JSON.parse(answer), JSON.parse(expected)), JSON.parse(expected), lines);
      ++examples;
    }
    assert.ok(examples > 15, 'the guide has lost its examples');
    await fresh.end();
  },
  async requestsFromElsewhereAndBrokenOnesAreRefused() {
    const { port } = new URL(emulator.web);
    const post = 'POST /api/v1/faults HTTP/1.1\r\nHost: ';
    const get = (path, host = 'localhost') => `GET ${path} HTTP/1.1\r\nHost: ${host}`;
    const rows = [
      [`${post}evil.example`, '', 403, 'header/host'], [`${post}localhost:${port}\r\nOrigin: http://evil.example`, '', 403],
      [`${post}127.0.0.1:${port}\r\nOrigin: null`, '', 403], [`${post}\xff\xfe`, '', 400, 'header/host'],
      ['GET /api/v1/state HTTP/1.0', '', 400, 'header/host'], [get('/api/v1/health', 'Kassa.LOCALHOST'), '', 200],
      [get('/api/v1/health', `TILL.shop:${port}`), '', 200], [get('/api/v1/health', '[::1]'), '', 200],
      [`${post}127.0.0.1:${port}\r\nOrigin: http://127.0.0.1:${port}`, '{"rule": "next lost"}', 201],
      [`${post}[::1]`, '{"rule": 7}', 400, 'body/rule'], [`${post}localhost`, '{"rule" 7}', 400, 'body'],
      [`${post}localhost`, '{"rule": "\xca\xe1\xf6\xdd\xf2"}', 400, 'body'], [`${post}localhost`, '{"rule": 1e999}', 400, 'body'],
      [`${post}localhost`, '{"rule": "a", "rule": "b"}', 400, 'body'], [`${post}localhost`, '['.repeat(60000), 400, 'body'],
      [`${post}localhost`, '"\\ud800"', 400, 'body'], [`${post}localhost`, '{"rule": "\\u0000\xc3\xa9"}', 400, 'body/rule'],
      [`${post}localhost`, '{"rules": []}', 400, 'body/rules'], [`${post}localhost`, ' '.repeat(700000), 413],
      ['PATCH /api/v1/faults HTTP/1.1\r\nHost: localhost', '', 405], ['nonsense', '', 400],
      [`GET /${'x'.repeat(20000)} HTTP/1.1\r\nHost: localhost`, '', 431],
      [get('/api/v1/receipts/x'), '', 400, 'path'], [get('/api/v1/receipts/1?wiat=5'), '', 400, 'query/wiat'],
      [get('/api/v1/receipts/1?wait=%ff'), '', 400, 'query/wait'], [get('/api/v1/state?%ff'), '', 400],
      [get('/../etc/passwd'), '', 404, 'path'], [get('/%00'), '', 404],
    ];
    for (const [head, body, status, where] of rows) {
      const answer = await raw(port, head, body);
      assert.equal(Number(answer.slice(9, 12)), status, head + answer);
      if (where) assert.equal(JSON.parse(answer.split('\r\n\r\n')[1]).where, where, head + body);
    }
    const [head, body] = (await raw(port, 'HEAD /api/v1/state HTTP/1.1\r\nHost: localhost')).split('\r\n\r\n');
    assert.ok(Number(/Content-Length: (\d+)/.exec(head)[1]) > 100 && body === '', head);
    await emulator.fetch('DELETE', '/faults');
  },
  async everyAnswerIsAsDescribed() {
    const item = { command: sale }, total = { command: '5/1///0.00///' }, close = { command: 'O/1/' };
    const rows = [
      ['GET', '/health'], ['GET', '/version'], ['POST', '/reset', { preset: 'kiosk' }], ['POST', '/commands', item], ['GET', '/state'],
      ['PATCH', '/register', { vatNumber: '123456789' }, 409], ['PATCH', '/register', { header: [{ text: 'a', size: 9 }] }, 400],
      ['POST', '/commands', { command: '5/2///1.00/1/1/' }], ['POST', '/commands', total], ['POST', '/commands', close],
      ['POST', '/commands', { command: '6/0/5.00//' }], ['POST', '/commands', close], ['POST', '/commands', { command: 'p/1/' }],
      ['POST', '/commands', { command: 'x/1/' }], ['GET', '/happenings'], ['GET', '/happenings?kind=tea', , 400],
      ['GET', '/receipts'], ['GET', '/receipts/last'], ['GET', '/receipts/7', , 404], ['GET', '/receipts/7?wait=0.05', , 204],
      ['GET', '/documents?limit=2'], ['GET', '/documents/1'], ['GET', '/documents/0', , 400], ['GET', '/documents/999', , 404],
      ['POST', '/verify', { sold: { description: 'A' }, times: 1 }], ['POST', '/verify', { sold: { price: 10 }, times: 2 }, 409],
      ['POST', '/verify', { paid: { tender: 'cash' } }], ['POST', '/verify', { printed: 'συνολο' }], ['POST', '/verify', {}, 400],
      ['POST', '/faults', { rule: 'on 5/ 5s lost' }, 201], ['GET', '/faults'], ['GET', '/faults/1'], ['GET', '/faults/9', , 404],
      ['PATCH', '/switches', { busy: true }], ['GET', '/switches'], ['DELETE', '/faults/1', , 204], ['DELETE', '/faults', , 204],
      ['PATCH', '/card', { seconds: 3, next: [156] }], ['GET', '/card'], ['PATCH', '/card', { outcome: 1 }, 400],
      ['POST', '/card/decision', { outcome: 0 }, 409], ['PATCH', '/clock', { time: '2026-02-30T10:00:00' }, 400],
      ['PATCH', '/clock', { time: '2026-02-28T10:00:00', runs: false }], ['GET', '/clock'], ['GET', '/register'],
      ['POST', '/paper', { feed: 2, cut: 'full' }, 204], ['POST', '/paper', { feed: 2, cut: 'half' }, 400],
      ['GET', '/conversation?after=2&limit=2'], ['GET', '/changes'], ['DELETE', '/conversation', , 204],
    ];
    for (const [method, where, body, status = 200] of rows) {
      assert.equal((await emulator.fetch(method, where, body)).status, status, `${method} ${where}`);
    }
    asked.add('getEvents');
    const all = Object.values(description.paths).flatMap(Object.values).map(({ operationId }) => operationId);
    assert.deepEqual(all.filter((operation) => !asked.has(operation) && operation !== 'postDecision'), []);
    assert.equal((await emulator.get('/clock')).time, '2026-02-28T10:00:00', 'it stands still');
    assert.deepEqual((await (await fetch(`${emulator.web}/openapi.json`)).json()).info, description.info);
    await emulator.fetch('POST', '/reset');
    assert.deepEqual((await emulator.get('/happenings')), []);
  },
  async whatIsWaitedForComes() {
    const rows = [
      ['exchange', '?/'], ['display', '7/1/ΓΕΙΑ/'], ['drawer', 'p/1/'], ['report', 'x/1/'], ['struck', undefined],
      ['cash', '6/0/5.00//', 'O/1/'], ['receipt', sale, '5/1///0.00///', 'O/1/'],
    ];
    const cashier = await udpTill(emulator.udp);
    for (const [kind, ...commands] of rows) {
      const { lastHappening } = await emulator.get('/state');
      const waiting = emulator.fetch('GET', `/happenings?after=${lastHappening}&kind=${kind}&wait=60`);
      if (kind === 'struck') {
        await emulator.fetch('POST', '/faults', { rule: 'next late 1' });
        await cashier.ask('?/');
      }
      for (const command of commands.filter(Boolean)) assert.equal((await cashier.ask(command))[0], '00', command);
      const [happening] = await (await waiting).json();
      assert.equal(happening.kind, kind);
      if (kind === 'receipt') assert.equal(happening.document.total, 10);
    }
    const soon = emulator.fetch('POST', '/verify?wait=60', { sold: { description: 'A' }, times: 2 });
    await cashier.sell('A', '3.00');
    assert.equal((await (await soon).json()).count, 2);
    cashier.close();
  },
  async clientsThatLeaveMakeRoom() {
    const { port } = new URL(emulator.web);
    const waiting = await Promise.all(Array.from({ length: 250 }, () => new Promise((done) => {
      const socket = net.connect(port, '127.0.0.1', () => socket.write(
        'GET /api/v1/receipts/99?wait=600 HTTP/1.1\r\nHost: localhost\r\n\r\n', () => done(socket)));
    })));
    const full = await raw(port, 'GET /api/v1/health HTTP/1.1\r\nHost: localhost');
    assert.equal(full.slice(9, 12), '503');
    for (const socket of waiting) socket.destroy();
    assert.equal((await emulator.fetch('GET', '/health')).status, 200);
  },
  async aPowerCutLosesNothingAndBooksNothingTwice() {
    const file = path.join(fs.mkdtempSync(path.join(os.tmpdir(), 'mirvane-')), 'state');
    const options = ['--state', process.env.WINEPREFIX ? 'Z:' + file.replaceAll('/', '\\') : file];
    let register = await startEmulator(...options, '--serial-number', 'MVE1', '--fault', 'on 3/S lost');
    const again = async (...more) => {
      await register.end();
      register = await startEmulator(...options, ...more);
      return makeTill();
    };
    const makeTill = () => udpTill(register.udp);
    let cashier = await makeTill();
    assert.equal(await cashier.ask(sale), undefined, 'booked, and the reply is lost');
    cashier = await again();
    assert.equal((await cashier.ask(sale))[0], '00', 'the reply only');
    assert.equal((await register.get('/state')).receipt.total, 10);
    cashier = await again();
    assert.equal((await cashier.ask(sale))[0], '00', 'acknowledged before: a new one');
    await cashier.ask('5/1///0.00///');
    await cashier.ask('O/1/');
    cashier = await again();
    const { day, serialNumber } = await register.get('/state');
    assert.deepEqual([day.total, day.cash, serialNumber], [20, 20, 'MVE1']);
    cashier = await again('--reset', '--preset', 'kiosk');
    assert.deepEqual([(await register.get('/state')).day.total, (await register.get('/state')).header[0].text], [0, 'ΠΕΡΙΠΤΕΡΟ']);
    await register.end();
  },
  async aKillAtAnyMomentBooksEachReceiptOnce() {
    const folder = fs.mkdtempSync(path.join(os.tmpdir(), 'mirvane-')), file = path.join(folder, 'state');
    const options = ['--state', process.env.WINEPREFIX ? 'Z:' + file.replaceAll('/', '\\') : file];
    let sold = 0, register;
    for (let round = 0, pending; round < 15; ++round) {
      register = await startEmulator(...options);
      const cashier = await udpTill(register.udp);
      let isDead = false;
      const killed = new Promise((done) => setTimeout(async () => { isDead = true; await register.end(); done(); }, 3 + 7 * round));
      while (!isDead) {
        pending ??= { left: [sale, '5/1///0.00///', 'O/1/'] };
        const reply = await Promise.race([cashier.ask(pending.left[0]), killed]);
        if (isDead || !reply) break;
        assert.equal(reply[0], '00', pending.left[0]);
        pending.left.shift();
        // The ACK may still be on its way when the power goes; a till asks before it sends an equal frame.
        await Promise.race([cashier.ask('?/'), killed]);
        if (pending.left.length) continue;
        ++sold;
        pending = undefined;
      }
      await killed;
      cashier.close();
      if (pending) {
        // What became of the command is asked first, as a till does.
        register = await startEmulator(...options);
        const next = await udpTill(register.udp);
        const { receipt, day } = await register.get('/state');
        if (day.receipts > sold) pending = void ++sold;
        else pending.left = [sale, '5/1///0.00///', 'O/1/'].slice(!receipt ? 0 : receipt.remaining > 0 ? 1 : 2);
        next.close();
        await register.end();
      }
    }
    register = await startEmulator(...options);
    const { day } = await register.get('/state');
    assert.ok(sold > 15, `${sold} receipts`);
    assert.deepEqual([day.receipts, day.total], [sold, sold * 10]);
    await assert.rejects(startEmulator(...options), /ended with 1/, 'one program at a time');
    await register.end();
  },
  async outputThatNobodyReadsHoldsUpNothingAndTheLogTellsAll() {
    const folder = fs.mkdtempSync(path.join(os.tmpdir(), 'mirvane-')), file = path.join(folder, 'log');
    const log = process.env.WINEPREFIX ? 'Z:' + file.replaceAll('/', '\\') : file;
    for (const closes of [false, true]) {
      const loud = await startEmulator('--log', log, { isLoud: true });
      closes ? loud.stdout.destroy() : loud.stdout.pause();
      const cashier = await udpTill(loud.udp);
      // More than a pipe holds.
      for (let i = 0; i < 150; ++i) await cashier.sell('A', '1.00');
      assert.equal((await loud.get('/state')).day.receipts, 150);
      assert.equal((await loud.fetch('POST', '/faults', {})).status, 400);
      cashier.close();
      await loud.end();
    }
    const lines = fs.readFileSync(file, 'utf8').trim().split('\n').map(JSON.parse);
    const count = (holds) => lines.filter(holds).length;
    assert.deepEqual([count(({ started }) => started), count(({ happening }) => happening?.kind === 'receipt' && happening.document.total === 1),
      count(({ happening }) => happening?.kind === 'exchange'), count(({ request }) => request?.status === 400)], [2, 300, 900, 2]);
  },
  async aTakenPortIsTold() {
    await assert.rejects(startEmulator('--web', new URL(emulator.web).port), /ended with 1/);
  },
};

finish((async () => {
  emulator = await startEmulator('--web-host', 'till.shop');
  return runCases(cases);
})());
