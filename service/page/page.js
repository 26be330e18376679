'use strict';

const mostShown = 50, mostAtOnce = 200;
const euro = (value) => '€\u00a0' + money(value);
/** Today's without the date. */
function time(moment) {
  const date = new Date(moment), isToday = date.toDateString() === new Date().toDateString();
  return new Intl.DateTimeFormat(language === 'en' ? 'en-GB' : language,
    { ...!isToday && { dateStyle: 'short' }, timeStyle: 'medium', hourCycle: 'h23' }).format(date);
}
const sleep = (milliseconds) => new Promise((done) => { setTimeout(done, milliseconds); });

// ---- Asking

let token = sessionStorage.getItem('token');
async function ask(method, path, body, signal) {
  const given = token, headers = { Prefer: 'wait=0', ...given && { Authorization: `Bearer ${given}` } };
  const response = await fetch('/v1' + path, { method, headers, signal, body: body && JSON.stringify(body) });
  if (response.status === 401 && given === token) wantToken();
  if (response.ok) return response;
  const { detail, errors = [] } = await response.json();
  throw new Error([detail, ...errors.map(({ where, text }) => `${where}: ${text}`)].join('; '));
}
const get = async (path) => (await ask('GET', path)).json();

/** What cannot be asked at all is a TypeError. */
const tell = (error) => (error instanceof TypeError ? tellLink(false) : complain(error.message));

function wantToken() {
  if ($('entrance').hidden && token) complain(word.wrongToken);
  stop();
  $('entrance').hidden = false;
  $('token').value = '';
  $('token').focus();
}

$('token-form').onsubmit = (event) => {
  event.preventDefault();
  token = $('token').value;
  sessionStorage.setItem('token', token);
  $('entrance').hidden = true;
  live();
};

// ---- What is known

const jobs = new Map();
let status, after = 0;

const isOver = ({ state }) => ['committed', 'not-committed', 'unknown'].includes(state);
/** What a job waits for is the register's, and no change of the job. */
function stateOf({ id, state }) {
  if (status.job === id && status.waiting) return 'waiting';
  return state === 'waiting' ? 'printing' : state;
}
const nameOf = ({ kind, id }) => `${word.kinds[kind]} ${id}`;

function keep(job) {
  after = Math.max(after, job.version);
  if (job.version >= (jobs.get(job.id)?.version ?? 0)) jobs.set(job.id, job);
}

/** What matters of all there is; from then on changes are asked for. */
async function load() {
  const wanted = [`unknown&limit=${mostAtOnce}`, 'needs-payment', 'printing', `queued&limit=${mostAtOnce}`,
    `committed&kind=receipt&limit=${mostShown}`, `not-committed&kind=receipt&limit=${mostShown}`];
  const [now, ...pages] = await Promise.all([get('/status'), ...wanted.map((state) => get(`/jobs?state=${state}`))]);
  status = now;
  jobs.clear();
  after = 0;
  pages.forEach((page) => page.jobs.forEach(keep));
  show();
}

const refresh = oneAtATime(async () => {
  try {
    for (let count = mostAtOnce; count === mostAtOnce;) {
      const page = await get(`/changes?after=${after}&limit=${mostAtOnce}`);
      page.jobs.forEach(keep);
      count = page.jobs.length;
    }
    status = await get('/status');
    show();
    tellLink(true);
  } catch (error) {
    tell(error);
  }
  // A few a second are enough.
  await sleep(150);
});

let stop = () => {};
/** A browser allows six connections to a server: a page that nobody sees leaves its own to the others. */
async function live() {
  const ending = new AbortController();
  stop = () => ending.abort();
  while (!ending.signal.aborted) {
    try {
      await load();
      const stream = (await ask('GET', '/events', undefined, ending.signal)).body.getReader();
      // Whatever comes, and be it a heartbeat, is a reason to ask.
      while (!(await stream.read()).done) refresh();
    } catch (error) {
      if (!ending.signal.aborted) tell(error);
    }
    if (ending.signal.aborted) return;
    tellLink(false);
    await sleep(1000);
  }
}

// ---- Showing

/** Rows of `{ key, stamp, make }`: what is as it was stays in place, with the focus and with what is open in it. */
function showRows(list, rows) {
  const focused = list.contains(document.activeElement) && document.activeElement;
  const before = new Map([...list.children].map((element) => [element.dataset.key, element]));
  rows.forEach((row, i) => {
    const old = before.get(row.key);
    before.delete(row.key);
    let element = old;
    if (old?.stamp !== row.stamp) {
      element = row.make();
      element.stamp = row.stamp;
      element.dataset.key = row.key;
      for (const details of element.querySelectorAll('details')) details.open ||= Boolean(old?.querySelector('details')?.open);
      old?.replaceWith(element);
    }
    if (list.children[i] !== element) list.insertBefore(element, list.children[i] ?? null);
  });
  for (const element of before.values()) element.remove();
  if (!focused || list.contains(document.activeElement)) return;
  // Where the keyboard was: the same place in the row's new self, or the list's title.
  const row = [...list.children].find(({ dataset }) => dataset.key === focused.closest('[data-key]').dataset.key);
  const there = row?.querySelector(focused.dataset.act ? `[data-act="${focused.dataset.act}"]` : focused.tagName);
  (there ?? list.closest('section').querySelector('h2')).focus();
}

function show() {
  const byPlace = (a, b) => a.place - b.place;
  const over = [...jobs.values()].filter(isOver).sort((a, b) => b.version - a.version);
  const sold = over.filter(({ kind }) => kind === 'receipt');
  const waiting = [...jobs.values()].filter((job) => !isOver(job)).sort(byPlace);
  const unknown = over.filter(({ state }) => state === 'unknown').sort(byPlace), unpaid = waiting.filter(({ due }) => due);
  const cases = casesOf(unknown, unpaid);
  const shown = [...unknown, ...sold.slice(0, mostShown)];
  for (const job of over) if (!shown.includes(job)) jobs.delete(job.id);
  $('serial').textContent = status.serialNumber;
  $('state').textContent = status.held ? word.held : status.waiting ? word.waits[status.waiting.on]
    : unpaid.length ? word.states['needs-payment'] : status.connected ? word.connected : word.away;
  $('at-hand').textContent = status.job ?? unpaid[0]?.id ?? word.none;
  $('unfinished').textContent = status.unfinished;
  $('needs').textContent = word.needs(cases.length);
  $('hand').classList.toggle('urgent', cases.length > 0);
  document.title = (cases.length ? `(${cases.length}) ` : '') + 'Mirvane – ' + word.title;
  showRows($('cases'), cases);
  showRows($('queued'), waiting.slice(0, mostShown).map(rowOf(queuedElement)));
  showRows($('sold'), sold.slice(0, mostShown).map(rowOf(soldElement)));
}

const rowOf = (element) => (job) =>
  ({ key: job.id, stamp: `${language} ${job.version} ${stateOf(job)}`, make: () => element(job) });

/** A button that asks first: what it does to `what` cannot be undone. No question, no deed. */
function button(act, className, what, run, question = () => word.sure[act](what)) {
  const text = word.acts[act], element = make('button', { text, className, 'data-act': act, 'aria-label': text + (what && `: ${what}`) });
  element.onclick = async () => {
    const asked = question();
    if (!asked || !confirm(asked)) return;
    element.disabled = true;
    await run().catch(tell);
    element.disabled = false;
    refresh();
  };
  return element;
}
const simple = (act, className, what, ...request) => button(act, className, what, () => ask(...request));
const cancelButton = (job) => simple('cancel', 'bad', nameOf(job), 'DELETE', `/jobs/${job.id}`);

/** What the service says of a code or a reason. */
function explanation({ meaning, remedy, code, text, page }) {
  const parts = meaning ? [make('p', { text: meaning[language] }),
    make('p', {}, make('b', { text: word.remedy + ': ' }), remedy[language])] : [];
  const source = [code && `${word.code} ${code}`, text].filter(Boolean).join(': ');
  if (source) parts.push(make('p', { className: 'source', text: source }, ...page ? [' ', make('a', { href: page, text: word.guides })] : []));
  return parts;
}

// ---- What needs a hand

function casesOf(unknown, unpaid) {
  const rows = [], { held, waiting, job, terminals } = status;
  const add = (key, about, title, parts) => rows.push({
    key, stamp: language + JSON.stringify(about), make: () => make('li', {}, make('h3', { text: title }), ...parts()),
  });
  const acts = (...buttons) => make('div', { className: 'acts' }, ...buttons.filter(Boolean));
  for (const one of unknown) {
    const settle = (was, className) => simple(was, className, nameOf(one), 'PUT', `/jobs/${one.id}/settlement`, { was });
    add(one.id, one.version, word.unknownTitle(nameOf(one)), () => [...explanation(one.unknown.why), picturesElement(one.unknown),
      askedElement(one, true), acts(settle('committed', 'good'), settle('not-committed', 'bad'))]);
  }
  if (held) {
    add('!held', held, word.heldTitle, () => [...explanation(held),
      acts(held.name === 'older-than-register' && simple('accept', 'good', '', 'POST', '/register/accept'))]);
  }
  if (waiting) {
    const at = jobs.get(job);
    add('!waiting', [job, waiting], word.waits[waiting.on] + (at ? ` – ${nameOf(at)}` : ''), () => [...explanation(waiting),
      acts(waiting.name === 'document-open' && simple('void', '', '', 'POST', '/register/void'), at && cancelButton(at))]);
  }
  for (const one of unpaid) {
    add(one.id, [one.version, terminals], word.dueTitle(nameOf(one), euro(one.due.remaining)), () =>
      [...one.due.failure ? explanation(one.due.failure) : [], askedElement(one), paymentElement(one)]);
  }
  return rows;
}

/** The register before and now. */
function picturesElement({ before, now }) {
  const shown = ({ open, total, remaining, ...rest }) => ({
    ...rest, open: word.opens[open] + (open === 1 ? ` ${word.left(euro(total / 100), euro(remaining / 100))}` : ''),
  });
  // A day has a number as soon as anything is known of it.
  const pictures = [before, now].map((picture) => picture.day ? shown(picture) : {});
  return table([word.picture, word.before, word.now], Object.entries(word.pictures).map(([name, text]) => {
    const element = tableRow('td', text, ...pictures.map((picture) => String(picture[name] ?? word.none)));
    if (pictures[0].day && pictures[0][name] !== pictures[1][name]) element.className = 'differs';
    return element;
  }));
}

function paymentElement(job) {
  const field = (label, element) => make('label', { text: word[label] }, element);
  const select = (entries) => make('select', {}, ...entries.map(([value, text]) => make('option', { value, text })));
  const type = select(Object.entries(word.tenders));
  const terminal = select([[0, word.noTerminal], ...status.terminals.map((one) => [one, word.terminalNumber(one)])]);
  const amount = make('input', { type: 'number', min: '0.01', step: '0.01', value: job.due.remaining.toFixed(2), required: '' });
  const forCards = field('terminal', terminal);
  forCards.hidden = true;
  type.onchange = () => { forCards.hidden = type.value !== 'card'; };
  const pay = async () => {
    const payment = { type: type.value, amount: Number(amount.value), ...type.value === 'card' && { terminal: Number(terminal.value) } };
    const { added } = await get(`/receipts/${job.id}`);
    await ask('PUT', `/receipts/${job.id}/payments/${added.length + 1}`, payment);
  };
  const question = () => form.reportValidity() && word.sure.pay(nameOf(job), euro(Number(amount.value)));
  const form = make('form', { className: 'acts' }, field('tender', type), forCards, field('amount', amount),
    button('pay', 'good', nameOf(job), pay, question), cancelButton(job));
  form.onsubmit = (event) => event.preventDefault();
  return form;
}

// ---- Jobs

const chip = (state) => make('span', { text: word.states[state],
  className: 'code ' + ({ 'committed': '', 'not-committed': 'refused', 'unknown': 'refused' }[state] ?? 'none') });

function queuedElement(job) {
  return make('li', { className: 'row' }, make('time', { text: time(job.created) }), make('b', { text: nameOf(job) }),
    make('span', { className: 'end' }, chip(stateOf(job)), ' ', ...job.due ? [] : [cancelButton(job)]));
}

function soldElement(job) {
  const { number = '', total } = job.booked ?? {};
  return make('li', {}, detailsElement(job, make('summary', {}, make('time', { text: time(job.changed) }),
    make('b', { text: `${word.kinds.receipt} ${number}` }), make('span', { className: 'source', text: job.id }),
    make('span', { className: 'end' }, make('b', { text: total === undefined ? '' : euro(total) }), ' ', chip(job.state)))));
}

const askedElement = (job, isOpen) => detailsElement(job, make('summary', { text: word.asked }), isOpen);

/** All of a job, asked for whenever somebody opens it. */
function detailsElement({ id }, summary, isOpen = false) {
  const about = make('div', { className: 'about' }), element = make('details', {}, summary, about);
  element.ontoggle = () => element.open && get(`/jobs/${id}`).then((job) => about.replaceChildren(...aboutParts(job))).catch(tell);
  element.open = isOpen;
  return element;
}

function aboutParts({ asked, added = [], booked = {}, failure, unknown, settled, created, changed, register, group, total }) {
  const tenders = (list = []) => list.map(({ type, amount, terminal }) => word.tenders[type]
    + (amount ? ' ' + euro(amount) : '') + (terminal ? ` (${word.terminalNumber(terminal)})` : '')).join(', ');
  const sum = total ?? asked.amount;
  const facts = Object.entries({
    number: booked.number, day: booked.day, total: sum && euro(sum),
    payments: tenders([...asked.payments ?? [], ...added]), paid: tenders(booked.tenders), change: booked.change && euro(booked.change),
    created: time(created), changed: time(changed),
    where: [register, group].filter(Boolean).join(', '), settled: settled && `${word.acts[settled.was]}, ${time(settled.time)}`,
  }).filter(([, value]) => value);
  const parts = [make('dl', { className: 'facts' },
    ...facts.map(([name, value]) => make('div', {}, make('dt', { text: word[name] }), make('dd', { text: value }))))];
  if (failure) parts.push(...explanation(failure));
  if (failure?.again) parts.push(make('p', { text: word.again }));
  if (settled) parts.push(...explanation(unknown.why), picturesElement(unknown));
  if (asked.lines) {
    parts.push(table(['line', 'price'].map((name) => word[name]), asked.lines.map((line) => tableRow('td', lineText(line), priceText(line)))));
  }
  return parts;
}

const tableRow = (cell, ...texts) => make('tr', {}, ...texts.map((text) => make(cell, { text })));
const table = (titles, rows) => make('table', {}, make('thead', {}, tableRow('th', ...titles)), make('tbody', {}, ...rows));

const lineText = (line) => typeof line === 'string' ? line
  : [word.lineKinds[line.type], line.description, line.text, line.comment].filter(Boolean).join(' · ');
function priceText({ quantity = 1, price, vat, amount, percent }) {
  if (price === undefined) return amount !== undefined ? euro(amount) : percent ? `${percent}%` : '';
  return `${quantity === 1 ? '' : `${quantity} × `}${euro(price)}, ${vat}%`;
}

speak(() => status && show());
document.addEventListener('visibilitychange', () => { stop(); if (!document.hidden) live(); });
live();
