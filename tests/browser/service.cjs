'use strict';
// A service of the program that SERVICE names.
const { spawn } = require('child_process');
const fs = require('fs');
const os = require('os');
const path = require('path');

const running = new Set();
process.on('exit', () => { for (const child of running) child.kill('SIGKILL'); });

/** At the register of that port, on a fresh database unless `store` names one, and once the register has answered. */
async function startService(port, { store = path.join(fs.mkdtempSync(path.join(os.tmpdir(), 'service-')), 'db'), web = '0' } = {}) {
  const child = spawn(process.env.SERVICE, ['--register', `127.0.0.1:${port}`, '--web', web, '--store', store],
    { stdio: ['ignore', 'pipe', 'inherit'] });
  running.add(child);
  const lines = [];
  const service = {
    store, lines,
    /** As a power cut does it. */
    end: () => new Promise((done) => { child.on('exit', done).kill('SIGKILL'); }),
  };
  await new Promise((done) => {
    child.stdout.on('data', (bytes) => {
      lines.push(...String(bytes).trim().split('\n').map((line) => JSON.parse(line)));
      if (['ready', 'connected'].every((name) => lines.some(({ event }) => event === name))) done();
    });
  });
  service.web = lines.find(({ event }) => event === 'ready').web.replace(/\/$/, '').replace('0.0.0.0', '127.0.0.1');
  return service;
}

module.exports = { startService };
