'use strict';
// What tests of the emulator share. The command that starts one stands on the command line; the outcome is told in the
// words of the unit tests.
const assert = require('assert');
const { spawn } = require('child_process');
const Ajv = require('ajv/dist/2020');
const description = require('../../emulator/page/openapi.json');

const [program, ...programOptions] = process.argv.slice(2);
const sale = '3/S//A///1.000/10.00/1/24.00/1/';
const running = new Set();

const ajv = new Ajv({ strict: false, allErrors: true }).addSchema(description, 'api');
const inPointer = (part) => part.replaceAll('~', '~0').replaceAll('/', '~1');
/** The operations that were asked for. */
const asked = new Set();

/** An answer is as the interface's description has it, or the test fails. */
async function check(method, where, response) {
  const path = `/api/v1${where.split('?')[0]}`;
  const known = description.paths[path] ? path : path.replace(/[^/]+$/, '{item}');
  const operation = description.paths[known]?.[method.toLowerCase()];
  if (!operation) return;
  asked.add(operation.operationId);
  const { status } = response, described = operation.responses[status];
  assert.ok(described, `${method} ${where}: ${status} is not described`);
  const body = await response.clone().text();
  if (!described.content) return assert.equal(body, '', `${method} ${where}`);
  if (!response.headers.get('content-type').includes('json')) return;
  const schema = ['paths', known, method.toLowerCase(), 'responses', status, 'content', 'application/json', 'schema'];
  const isValid = ajv.validate({ $ref: 'api#/' + schema.map((part) => inPointer(String(part))).join('/') }, JSON.parse(body));
  assert.ok(isValid, `${method} ${where}: ${ajv.errorsText()}\n${body}`);
}

// However the tests end, nothing of them goes on.
process.on('exit', () => { for (const child of running) child.kill('SIGKILL'); });

async function startEmulator(...options) {
  const { isLoud } = typeof options.at(-1) === 'object' ? options.pop() : {};
  const child = spawn(program, [...programOptions, ...isLoud ? [] : ['--quiet'], '--udp', '0', '--web', '0', ...options],
    { stdio: ['ignore', 'pipe', 'inherit'] });
  running.add(child);
  const ready = await new Promise((done, fail) => {
    let text = '';
    child.stdout.on('data', (bytes) => { text += bytes; if (text.includes('\n')) done(text); });
    child.on('exit', (code) => fail(new Error(`the emulator ended with ${code}`)));
    setTimeout(() => fail(new Error('no ready line in 30 seconds')), 30000).unref();
  });
  const emulator = {
    stdout: child.stdout,
    web: /web=(\S+)\//.exec(ready)[1],
    udp: Number(/udp=\S+:(\d+)/.exec(ready)[1]),
    /** As a power cut does it. */
    end: () => new Promise((done) => {
      running.delete(child);
      child.removeAllListeners('exit').on('exit', done);
      child.kill('SIGKILL');
    }),
    fetch: async (method, where, body) => {
      const response = await fetch(`${emulator.web}/api/v1${where}`, { method, body: body && JSON.stringify(body) });
      await check(method, where, response);
      return response;
    },
  };
  emulator.get = async (where) => (await emulator.fetch('GET', where)).json();
  return emulator;
}

/** Runs the cases one after the other, and returns how many failed. */
async function runCases(cases) {
  let failures = 0;
  for (const [name, test] of Object.entries(cases)) {
    const start = Date.now();
    try {
      await test();
      console.log(`[       OK ] ${name} (${Date.now() - start} ms)`);
    } catch (error) {
      ++failures;
      console.log(`${error.stack}\n[  FAILED  ] ${name} (${Date.now() - start} ms)`);
    }
  }
  return failures;
}

/** Ends the program when the promise of a number of failures is kept. */
function finish(failing) {
  failing.catch((error) => { console.log(error.stack); return 1; }).then((failures) => {
    process.exit(failures ? 1 : 0);
  });
}

module.exports = { asked, description, startEmulator, runCases, finish, sale };
