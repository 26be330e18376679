'use strict';
// A till that speaks the register's protocol, over the network or a serial line.
const dgram = require('dgram');
const fs = require('fs');
const tty = require('tty');

const frame = (command) => {
  const bytes = Buffer.from(command, 'latin1');
  const sum = String(bytes.reduce((total, byte) => (total + byte) % 256, 0) % 100).padStart(2, '0');
  return Buffer.concat([Buffer.from([2]), bytes, Buffer.from(sum + '\x03', 'latin1')]);
};

/** @param send takes bytes; `till.receive` is given what comes back. */
function makeTill(send, close) {
  const till = { received: '', close };
  till.receive = (bytes) => {
    till.received += bytes.toString('latin1');
    const whole = /\x02([^\x02]*)\x03/.exec(till.received);
    if (whole && till.answered) till.answered(whole[1]);
  };
  /** The reply's pieces, the code first; nothing when none came within a second and a half. */
  till.ask = async (command) => {
    till.received = '';
    const reply = new Promise((done) => { till.answered = done; });
    send(frame(command));
    const text = await Promise.race([reply, new Promise((done) => setTimeout(done, 1500))]);
    till.answered = undefined;
    if (text === undefined) return undefined;
    send(Buffer.from([6]));
    return text.split('/');
  };
  /** Sells, and pays in cash; each must succeed. */
  till.sell = async (description, price) => {
    for (const command of [`3/S//${description}///1.000/${price}/1/24.00/1/`, '5/1///0.00///', 'O/1/']) {
      const [code] = await till.ask(command) ?? [];
      if (code !== '00') throw new Error(`${command} is answered with ${code}`);
    }
  };
  return till;
}

async function udpTill(port) {
  const socket = dgram.createSocket('udp4');
  await new Promise((done) => socket.connect(port, '127.0.0.1', done));
  const till = makeTill((bytes) => socket.send(bytes), () => socket.close());
  // A register that is gone does not answer; that is all.
  socket.on('message', till.receive).on('error', () => {});
  return till;
}

/** `path`: a terminal in raw mode. */
function serialTill(path) {
  const file = fs.openSync(path, fs.constants.O_RDWR | fs.constants.O_NOCTTY);
  // A file's stream would leave a thread in its last read, for which Node waits at its end.
  const input = new tty.ReadStream(file);
  const till = makeTill((bytes) => fs.writeSync(file, bytes), () => input.destroy());
  input.on('data', till.receive);
  return till;
}

module.exports = { udpTill, serialTill };
