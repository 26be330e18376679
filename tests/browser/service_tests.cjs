'use strict';
// The service's answers against its description: SERVICE=PROGRAM node service_tests.cjs EMULATOR... Every operation is asked for.
const assert = require('assert');
const Ajv = require('ajv/dist/2020');
const description = require('../../service/page/openapi.json');
const { startEmulator, runCases, finish } = require('./emulator.cjs');
const { startService } = require('./service.cjs');

const ajv = new Ajv({ strict: false, allErrors: true, validateFormats: false }).addSchema(description, 'api');
const inPointer = (part) => String(part).replaceAll('~', '~0').replaceAll('/', '~1');
const asked = new Set();
const coffee = { description: 'ΚΑΦΕΣ', price: 2.5, vat: 24 };
let service;

/** The described path that `where` is one of. */
const templateOf = (where) => Object.keys(description.paths).find((known) =>
  new RegExp(`^${known.replaceAll('.', '\\.').replace(/\{\w+\}/g, '[^/]+')}$`).test(where.split('?')[0]));

/** Asks, and holds the answer against the description. */
async function ask(method, where, body, headers) {
  const response = await fetch(service.web + where, { method, headers, body: body && JSON.stringify(body) });
  const known = templateOf(where), operation = description.paths[known]?.[method.toLowerCase()];
  assert.ok(operation, `${method} ${where} is not described`);
  asked.add(`${method} ${known}`);
  const described = operation.responses[response.status];
  assert.ok(described, `${method} ${where}: ${response.status} is not described`);
  const type = response.headers.get('content-type').split(';')[0];
  assert.ok(described.content[type], `${method} ${where}: ${type} is not described`);
  if (type === 'text/event-stream') return response.body.cancel();
  const text = await response.text();
  if (!type.endsWith('json')) return text;
  const schema = ['paths', known, method.toLowerCase(), 'responses', response.status, 'content', type, 'schema'];
  const value = JSON.parse(text);
  const isValid = ajv.validate({ $ref: `api#/${(described.$ref ? [] : schema).map(inPointer).join('/')}` }, value);
  assert.ok(isValid, `${method} ${where}: ${ajv.errorsText()}\n${text}`);
  return { ...value, status: response.status };
}

const sold = { lines: [coffee], payments: [{ type: 'cash' }] };
const cases = {
  async everyOperationAnswersAsItIsDescribed() {
    const rows = [
      ['PUT', '/v1/receipts/a', sold, 200], ['PUT', '/v1/receipts/a', sold, 200], ['PUT', '/v1/receipts/a', { lines: [] }, 409],
      ['PUT', '/v1/receipts/b', { lines: [{ ...coffee, vat: 23 }] }, 422], ['PUT', '/v1/receipts/%20', sold, 400],
      ['PUT', '/v1/receipts/c', { lines: [coffee, { type: 'discount', percent: 10 }] }, 200], ['GET', '/v1/receipts/c', null, 200],
      ['PUT', '/v1/receipts/c/payments/1', { type: 'cash', amount: 1 }, 200], ['PUT', '/v1/receipts/c/payments/3', { type: 'cash' }, 409],
      ['DELETE', '/v1/receipts/c', null, 202], ['DELETE', '/v1/receipts/a', null, 409], ['GET', '/v1/receipts/none', null, 404],
      ['PUT', '/v1/cash/d', { direction: 'in', amount: 5 }, 200], ['GET', '/v1/cash/d', null, 200],
      ['PUT', '/v1/drawer/e', null, 200], ['GET', '/v1/drawer/e', null, 200],
      ['PUT', '/v1/display/f', { lines: ['ΓΕΙΑ'] }, 200], ['GET', '/v1/display/f', null, 200],
      ['PUT', '/v1/reports/x/g', null, 200], ['GET', '/v1/reports/x/g', null, 200],
      ['PUT', '/v1/reports/z/h', null, 200], ['GET', '/v1/reports/z/h', null, 200],
      ['GET', '/v1/receipts?limit=1', null, 200], ['GET', '/v1/jobs?kind=x', null, 200], ['GET', '/v1/jobs?limit=x', null, 400],
      ['GET', '/v1/jobs/h', null, 200], ['DELETE', '/v1/jobs/h', null, 409],
      ['PUT', '/v1/jobs/h/settlement', { was: 'committed' }, 409], ['PUT', '/v1/jobs/h/settlement', {}, 422],
      ['GET', '/v1/changes?after=2', null, 200], ['GET', '/v1/status', null, 200], ['GET', '/v1/totals', null, 200],
      ['POST', '/v1/register/accept', null, 409], ['POST', '/v1/register/void', null, 202],
      ['GET', '/healthz', null, 200], ['GET', '/readyz', null, 200],
    ];
    for (const [method, where, body, status] of rows) {
      const answer = await ask(method, where, body);
      assert.equal(answer.status, status, `${method} ${where}: ${JSON.stringify(answer)}`);
    }
    const { booked } = await ask('GET', '/v1/reports/z/h');
    assert.match(await ask('GET', `/v1/reports/z/h/files/${booked.files[1].name}`), /0001/);
    assert.match(await ask('GET', '/metrics'), /mirvane_jobs_total\{kind="receipt",state="committed"\} 1\n/);
    await ask('GET', '/v1/events');
    for (const [where, methods] of Object.entries(description.paths)) {
      for (const method of Object.keys(methods)) assert.ok(asked.has(`${method.toUpperCase()} ${where}`), `${method} ${where}`);
    }
  },
  async aCallerWaitsAsLongAsItLikes() {
    const card = { lines: [coffee], payments: [{ type: 'card', terminal: 1 }] };
    assert.equal((await ask('PUT', '/v1/receipts/slow', card, { Prefer: 'wait=0' })).status, 202);
    assert.equal((await ask('PUT', '/v1/receipts/slow', card)).state, 'committed');
  },
  async pagesFromElsewhereAreRefused() {
    const origin = { Origin: 'https://evil.example' };
    for (const method of ['GET', 'OPTIONS']) {
      const response = await fetch(`${service.web}/v1/status`, { method, headers: { ...origin, 'Access-Control-Request-Method': 'PUT' } });
      assert.equal(response.status, 403);
      assert.equal(response.headers.get('access-control-allow-origin'), null);
    }
  },
  async theLogTellsNothingOfWhatWasSold() {
    assert.ok(!JSON.stringify(service.lines).includes('ΚΑΦΕΣ'));
    assert.ok(service.lines.some(({ event, id, state }) => event === 'over' && id === 'a' && state === 'committed'));
  },
};

async function run() {
  const emulator = await startEmulator('--card-seconds', '0');
  service = await startService(emulator.udp);
  return runCases(cases);
}

finish(run());
