// A till's own tests against the emulator: node --test till_tests.mjs, with its address in MIRVANE_WEB
import assert from 'node:assert';
import { beforeEach, test } from 'node:test';

const web = `${process.env.MIRVANE_WEB ?? 'http://127.0.0.1:8100'}/api/v1`;

/** Throws what the emulator has to say against it. */
async function emulator(method, path, body) {
  const response = await fetch(web + path, { method, body: body && JSON.stringify(body) });
  const text = await response.text();
  assert.ok(response.ok, text);
  return text && JSON.parse(text);
}

// The till under test. Yours talks to the register through its component; this one sends the register's own commands.
const till = (command) => emulator('POST', '/commands', { command });
const sell = (name, price) => till(`3/S//${name}///1.000/${price}/1/24.00/1/`);
const verify = (what) => emulator('POST', '/verify?wait=5', what);

beforeEach(() => emulator('POST', '/reset'));

test('a coffee is paid in cash', async () => {
  await sell('Coffee', '1.80');
  await till('5/1///5.00///');
  await till('O/1/');
  assert.equal((await emulator('GET', '/receipts/last?wait=5')).change, 3.2);
  await verify({ sold: { description: 'Coffee', price: 1.8 }, times: 1 });
});

test('a card is declined, and the receipt is paid in cash', async () => {
  await emulator('PATCH', '/card', { next: [156], seconds: 0 });
  await sell('Lunch', '12.50');
  await till('5/2///12.50/1/1/');
  assert.equal((await till('?/')).code, 156);
  await till('5/1///0.00///');
  await till('O/1/');
  await verify({ paid: { tender: 'card' }, times: 0 });
  await verify({ paid: { tender: 'cash' }, times: 1 });
});
