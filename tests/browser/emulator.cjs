'use strict';
// What tests of the emulator share. The command that starts one stands on the command line; the outcome is told in the
// words of the unit tests.
const { spawn } = require('child_process');

const [program, ...programOptions] = process.argv.slice(2);
const sale = '3/S//A///1.000/10.00/1/24.00/1/';
const running = new Set();

// However the tests end, nothing of them goes on.
process.on('exit', () => { for (const child of running) child.kill('SIGKILL'); });

async function startEmulator(...options) {
  const child = spawn(program, [...programOptions, '--quiet', '--udp', '0', '--web', '0', ...options],
    { stdio: ['ignore', 'pipe', 'inherit'] });
  running.add(child);
  const ready = await new Promise((done, fail) => {
    let text = '';
    child.stdout.on('data', (bytes) => { text += bytes; if (text.includes('\n')) done(text); });
    child.on('exit', (code) => fail(new Error(`the emulator ended with ${code}`)));
    setTimeout(() => fail(new Error('no ready line in 30 seconds')), 30000).unref();
  });
  const emulator = {
    web: /web=(\S+)\//.exec(ready)[1],
    udp: Number(/udp=\S+:(\d+)/.exec(ready)[1]),
    /** As a power cut does it. */
    end: () => new Promise((done) => {
      running.delete(child);
      child.removeAllListeners('exit').on('exit', done);
      child.kill('SIGKILL');
    }),
    fetch: (method, where, body) => fetch(`${emulator.web}/api/v1${where}`, { method, body: body && JSON.stringify(body) }),
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

module.exports = { startEmulator, runCases, finish, sale };
