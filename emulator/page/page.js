'use strict';

const api = '/api/v1';
const mostDocuments = 60, mostWhileReading = 150, mostEntries = 300;
const named = (name) => word.names[name] || name;

// ---- Wishes

async function wish(method, path, body) {
  try {
    const response = await fetch(api + path, { method, body: body && JSON.stringify(body) });
    if (!response.ok) {
      const { error, where } = await response.json();
      complain(where ? `${error} (${where})` : error);
    }
    return response.ok;
  } catch {
    complain(word.lost);
    return false;
  }
}

// ---- The paper

const roll = $('roll');
let newest = 0, newestLines = 0;

function paperLine({ text, size, cut }) {
  const line = make('div');
  if (cut) {
    line.className = 'cut';
    return line;
  }
  if (size === 2 || size === 4) line.className = 'bold';
  if (size < 3) {
    line.textContent = text;
    return line;
  }
  // Double width stands as a blank behind each character; a wide letter takes both places.
  const margin = text.length - text.trimStart().length;
  line.append(text.slice(0, margin), make('span', { className: 'wide', text: [...text.slice(margin)].filter((_, i) => i % 2 === 0).join('') }));
  return line;
}

function labelText({ kind, number, z, time, state }) {
  const title = [word.kinds[kind], number && String(number).padStart(4, '0')].filter(Boolean).join(' ');
  return [title, z && `Z ${z}`, time && time.slice(11, 16), word.states[state]].filter(Boolean).join(' · ');
}

function documentElement(data) {
  const path = `${api}/documents/${data.id}`;
  const element = make('article', { className: 'document', 'data-id': data.id },
    make('div', { className: 'sheet' }),
    make('div', { className: 'label' }, make('span'),
      make('a', { href: path + '.txt', target: '_blank', 'data-form': 'text' }),
      make('a', { href: path + '.png', target: '_blank', 'data-form': 'picture' }),
      make('a', { href: path, target: '_blank', 'data-form': 'data' })));
  return element;
}

function fillDocument(element, data) {
  element.firstChild.append(...data.paper.map(paperLine));
  element.about = data;
  labelDocument(element);
}

function labelDocument(element) {
  element.querySelector('.label span').textContent = labelText(element.about);
  for (const link of element.querySelectorAll('a')) link.textContent = word[link.dataset.form];
}

const shownDocuments = () => [...roll.querySelectorAll('.document')];
const idOf = (element) => Number(element.dataset.id);

/** Says where the roll is not complete. */
function markGaps() {
  for (const gap of roll.querySelectorAll('.gap')) gap.remove();
  shownDocuments().reduce((above, below) => {
    const missing = above ? idOf(below) - idOf(above) - 1 : 0;
    if (missing > 0) {
      const gap = make('button', { className: 'gap' });
      gap.onclick = () => fillGap(idOf(above), idOf(below));
      gap.missing = missing;
      labelGap(gap);
      below.before(gap);
    }
    return below;
  }, undefined);
}

function labelGap(gap) {
  gap.textContent = word.gap(gap.missing);
}

/** Drops what nobody looks at: above, when the end is shown; otherwise between what is read and the end. */
function trim(atEnd) {
  const shown = shownDocuments();
  const tooMany = shown.length - (atEnd ? mostDocuments : mostWhileReading);
  const first = atEnd ? 0 : mostWhileReading - 20;
  for (let i = 0; i < tooMany; ++i) shown[first + i].remove();
}

function showDocuments(documents, first) {
  const atEnd = roll.scrollHeight - roll.scrollTop - roll.clientHeight < 60;
  for (const element of shownDocuments()) {
    if (idOf(element) < first) element.remove();
  }
  for (const data of documents) {
    let element = roll.querySelector(`.document[data-id="${data.id}"]`);
    if (!element && data.firstLine) continue;
    if (!element) {
      element = documentElement(data);
      element.classList.add('fresh');
      roll.append(element);
    }
    fillDocument(element, data);
    newest = data.id;
    newestLines = data.firstLine + data.paper.length;
  }
  trim(atEnd);
  markGaps();
  if (atEnd) roll.scrollTop = roll.scrollHeight;
  const oldest = shownDocuments()[0];
  $('earlier').hidden = !oldest || idOf(oldest) <= first;
  $('blank').hidden = Boolean(oldest);
}

/** Puts documents that the register still has in front of one that is shown. */
async function insertBefore(below, query) {
  const response = await fetch(`${api}/documents?limit=20&${query}`);
  const fromEnd = roll.scrollHeight - roll.scrollTop;
  for (const data of await response.json()) {
    const element = documentElement(data);
    below.before(element);
    fillDocument(element, data);
  }
  markGaps();
  return fromEnd;
}

async function showEarlier() {
  const oldest = shownDocuments()[0];
  const fromEnd = await insertBefore(oldest, `before=${idOf(oldest)}`);
  roll.scrollTop = roll.scrollHeight - fromEnd;
  $('earlier').hidden = shownDocuments()[0] === oldest || idOf(shownDocuments()[0]) === 1;
}

async function fillGap(above, below) {
  const at = roll.scrollTop;
  await insertBefore(roll.querySelector(`.document[data-id="${below}"]`), `after=${above}&before=${below}`);
  roll.scrollTop = at;
}

// ---- The search

let searching;
async function search() {
  const text = $('search').value.trim();
  roll.hidden = Boolean(text);
  $('found').hidden = !text;
  if (!text) return;
  const response = await fetch(`${api}/documents?limit=30&text=${encodeURIComponent(text)}`);
  const documents = await response.json();
  if (text !== $('search').value.trim()) return;
  $('found').replaceChildren(...documents.reverse().map((data) => {
    const element = documentElement(data);
    fillDocument(element, data);
    return element;
  }));
  if (!documents.length) $('found').append(make('p', { text: word.nothingFound }));
}

// ---- The register

let clockAhead = 0;
function showClock() {
  const now = new Date(Date.now() + clockAhead);
  $('clock').textContent = now.toISOString().slice(0, 19).replace('T', ' ');
}

function showRegister(register, faults) {
  clockAhead = Date.parse(register.time + 'Z') - Date.now();
  showClock();
  $('serial').textContent = register.serialNumber;
  register.display.forEach((text, i) => { $(`display-${i + 1}`).textContent = text.padEnd(20); });
  $('fiscal').replaceChildren(...Object.entries(register.fiscal).map(([name, on]) =>
    make('span', { className: on ? 'on' : '', text: word.fiscal[name] })));
  $('receipt').textContent = register.receipt ? register.receipt.number : register.lastReceipt || word.none;
  $('z').textContent = register.z;
  $('drawer').textContent = register.drawerOpenings;
  $('day-total').textContent = '€ ' + money(register.day.total);
  $('taxes').replaceChildren(...register.day.taxes.map((tax) => {
    const row = make('tr', { className: tax.gross ? '' : 'zero' });
    const letter = language === 'el' ? 'ΑΒΓΔΕ'['ABCDE'.indexOf(tax.category)] : tax.category;
    for (const text of [letter, money(tax.rate) + '%', money(tax.net), money(tax.vat), money(tax.gross)]) row.append(make('td', { text }));
    return row;
  }));
  $('tenders').replaceChildren(...Object.entries(word.tenders).map(([name, text]) =>
    make('div', {}, make('dt', { text }), make('dd', { text: money(register.day[name]) }))));

  for (const [name, button] of Object.entries(switches)) button.setAttribute('aria-checked', faults.switches[name]);
  const lacks = ['paperEnd', 'offline', 'silent', 'error'].filter((name) => faults.switches[name]);
  $('lamp').className = 'lamp' + (faults.switches.off ? ' off' : lacks.length ? ' bad' : '');
  $('printer').textContent = faults.switches.off ? word.printerOff
    : lacks.map((name) => word.switches[name]).join(', ') || word.printerReady;
  showRules(faults.rules);

  const { outcome, seconds, answers, running } = register.card;
  const chosen = !answers ? 'mute' : outcome ? 'declines' : seconds > 5 ? 'slow' : 'approves';
  for (const [name, button] of Object.entries(cards)) {
    button.setAttribute('aria-checked', name === chosen);
    button.tabIndex = name === chosen ? 0 : -1;
  }
  if (outcome) $('reason').value = outcome;
  $('payment').hidden = !running;
  if (running) $('payment-text').textContent = word.payment('€ ' + money(running.amount), running.terminal);
}

function showRules(rules) {
  const buttons = [...$('rules').querySelectorAll('button')], focused = buttons.indexOf(document.activeElement);
  $('rules').replaceChildren(...rules.map(({ number, rule }) => {
    const button = make('button', { text: '×', 'aria-label': `${word.remove}: ${rule}` });
    button.onclick = () => wish('DELETE', `/faults/${number}`);
    return make('li', {}, make('span', { text: rule }), button);
  }));
  if (focused < 0) return;
  // The one that has taken its place, or the last, or where a new one is written.
  const left = $('rules').querySelectorAll('button');
  (left[Math.min(focused, left.length - 1)] ?? $('rule')).focus();
}

// ---- Trouble

const switches = {}, shots = {}, cards = {};
const cardWishes = {
  approves: { outcome: 0, seconds: 2, answers: true },
  get declines() { return { outcome: Number($('reason').value), seconds: 2, answers: true }; },
  slow: { outcome: 0, seconds: 15, answers: true }, mute: { answers: false },
};

function makeTrouble() {
  for (const name of Object.keys(word.switches)) {
    const button = switches[name] = make('button', { role: 'switch', id: 'switch-' + name });
    button.onclick = () => wish('PATCH', '/switches', { [name]: button.getAttribute('aria-checked') !== 'true' });
    $('switches').append(button);
  }
  for (const rule of Object.keys(word.shots)) {
    const button = shots[rule] = make('button');
    button.onclick = () => wish('POST', '/faults', { rule });
    $(rule.includes('till-') ? 'sent' : 'shots').append(button);
  }
  for (const name of Object.keys(word.cards)) {
    const button = cards[name] = make('button', { role: 'radio', id: 'card-' + name });
    button.onclick = () => wish('PATCH', '/card', cardWishes[name]);
    $('card').append(button);
  }
  $('card').onkeydown = ({ key }) => {
    const step = { ArrowRight: 1, ArrowDown: 1, ArrowLeft: -1, ArrowUp: -1 }[key];
    const all = Object.values(cards), at = all.indexOf(document.activeElement);
    if (!step || at < 0) return;
    const next = all[(at + step + all.length) % all.length];
    next.focus();
    next.click();
  };
  for (const code of [156, 157, 159, 112]) $('reason').append(make('option', { value: code }));
  $('reason').onchange = () => cards.declines.getAttribute('aria-checked') === 'true' && wish('PATCH', '/card', cardWishes.declines);
  $('rule-form').onsubmit = async (event) => {
    event.preventDefault();
    if (await wish('POST', '/faults', { rule: $('rule').value })) $('rule').value = '';
  };
  $('approve').onclick = () => wish('POST', '/card/decision', { outcome: 0 });
  $('decline').onclick = () => wish('POST', '/card/decision', { outcome: cardWishes.declines.outcome });
  $('feed').onclick = () => wish('POST', '/paper', { feed: 1 });
  $('cut').onclick = () => wish('POST', '/paper', { cut: 'full' });
  $('calm').onclick = () => wish('DELETE', '/faults');
  $('reset').onclick = () => { if (confirm(word.resetQuestion)) wish('POST', '/reset'); };
}

function tellTroubles() {
  for (const [name, button] of Object.entries(switches)) button.textContent = word.switches[name];
  for (const [rule, button] of Object.entries(shots)) button.textContent = word.shots[rule];
  for (const [name, button] of Object.entries(cards)) button.textContent = word.cards[name];
  for (const option of $('reason').options) option.textContent = `${option.value} ${word.reasons[option.value]}`;
}

// ---- The conversation

let newestEntry = 0;

/** Fields in words; one without a name only says which command it is, unless none has a name. */
function fieldTexts(fields) {
  const isKnown = fields.length < 2 || fields.some(({ name }) => name);
  return fields.filter(({ name, value }) => value !== '' && (name || !isKnown)).map(({ name, value }) => [named(name), value]);
}

function fieldsElement(fields) {
  const element = make('div', { className: 'fields' });
  fieldTexts(fields).forEach(([name, value], i) => element.append(i ? ' · ' : '', name ? name + ' ' : '', make('i', { text: value })));
  return element;
}

function verdict({ reply }) {
  if (!reply) return word.noReply;
  if (reply.code === undefined) return reply.raw;
  return reply.code ? `${reply.code} ${reply.text}` : word.ok;
}

function title({ command, struck }) {
  const name = command.raw ? named(command.name) || word.unknown : word.spoiled;
  if (!struck) return name;
  return `${word.sentNames[struck.what]} ${word.struck[struck.fault]}` + (command.raw ? `: ${name}` : '');
}

const lineText = ({ line, peer }) => peer ? `${line} ${peer}` : line;

function entryElement(entry) {
  const { command, reply } = entry;
  const summary = make('summary', {},
    make('time', { text: entry.time.slice(11) }), make('b', { text: title(entry) }));
  if (entry.peer) summary.append(make('span', { className: 'peer', text: `${word.from} ${entry.peer}` }));
  if (entry.fault) summary.append(make('span', { className: 'mark', text: entry.fault }));
  if (entry.repeat) summary.append(make('span', { className: 'mark', text: word.repeated }));
  if (entry.missing) summary.append(make('span', { className: 'mark', text: word.gap(entry.missing) }));
  const passes = [14, 81, 146, 158].includes(reply?.code);
  const kind = !reply || passes ? ' none' : reply.code ? ' refused' : '';
  if (!entry.struck) summary.append(make('span', { className: 'code' + kind, text: verdict(entry) }));
  if (fieldTexts(command.fields).length) summary.append(fieldsElement(command.fields));
  if (reply?.fields && fieldTexts(reply.fields).length) summary.append(fieldsElement(reply.fields));
  const line = lineText(entry);
  const raw = make('div', { className: 'raw' }, make('div', { text: `${line} ← ${command.raw}` }));
  if (reply) raw.append(make('div', { text: `${line} → ${reply.raw}` }));
  const element = make('li', {}, make('details', {}, summary, raw));
  element.about = entry;
  return element;
}

const filterWords = () => $('filter').value.toLowerCase().split(/\s+/).filter(Boolean);

function sift(elements = $('entries').children) {
  const wanted = filterWords();
  for (const element of elements) {
    const text = element.textContent.toLowerCase();
    element.hidden = !wanted.every((part) => text.includes(part));
  }
}

function showEntries(entries, first) {
  const list = $('entries');
  for (const element of [...list.children]) {
    if (element.about.id < first) element.remove();
  }
  // More was said than the page was told of at once.
  if (newestEntry && entries[0]?.id > newestEntry + 1) entries[0].missing = entries[0].id - newestEntry - 1;
  // The latest is on top.
  const fresh = entries.map(entryElement);
  for (const element of fresh) list.prepend(element);
  while (list.children.length > mostEntries) list.lastChild.remove();
  sift(fresh);
  // Who said it matters where there are several.
  list.classList.toggle('crowd', new Set([...list.children].map(({ about }) => about.peer).filter(Boolean)).size > 1);
  if (entries.length) newestEntry = entries.at(-1).id;
}

function conversationText() {
  return [...$('entries').children].filter((element) => !element.hidden).reverse().map(({ about }) => {
    const fields = (list) => fieldTexts(list ?? []).map(([name, value]) => `${name} ${value}`).join(', ');
    const answer = about.struck ? [] : ['→', verdict(about), fields(about.reply?.fields)];
    return [about.time.replace('T', ' '), lineText(about), title(about), fields(about.command.fields), ...answer,
      about.fault && `[${about.fault}]`, `(${about.command.raw} → ${about.reply?.raw ?? ''})`]
      .filter(Boolean).join(' ');
  }).join('\n');
}

async function copyConversation() {
  const text = conversationText();
  try {
    await navigator.clipboard.writeText(text);
  } catch {
    const area = make('textarea', { text });
    document.body.append(area);
    area.select();
    document.execCommand('copy');
    area.remove();
  }
  $('copy').textContent = word.copied;
  setTimeout(() => { $('copy').textContent = word.copy; }, 1500);
}

// ---- What changes

let latest, started;

const refresh = oneAtATime(async () => {
  const response = await fetch(`${api}/changes?document=${newest}&lines=${newestLines}&entry=${newestEntry}`);
  latest = await response.json();
  if (started && latest.started !== started) return location.reload();
  started = latest.started;
  showRegister(latest.register, latest.faults);
  showDocuments(latest.documents, latest.firstDocument);
  showEntries(latest.conversation, latest.firstEntry);
});

let events;

/** A browser allows six connections to a server: a page that nobody sees leaves its own to the others. */
function listen() {
  events?.close();
  events = undefined;
  if (document.hidden) return;
  events = new EventSource(api + '/events');
  events.onopen = () => { tellLink(true); refresh(); };
  events.onmessage = refresh;
  events.onerror = () => tellLink(false);
}

/** In the language that somebody has chosen. */
function retell() {
  tellTroubles();
  if (!latest) return;
  showRegister(latest.register, latest.faults);
  shownDocuments().forEach(labelDocument);
  roll.querySelectorAll('.gap').forEach(labelGap);
  search();
  $('entries').replaceChildren(...[...$('entries').children].map(({ about }) => entryElement(about)));
  sift();
}

makeTrouble();
speak(retell);
$('earlier').onclick = showEarlier;
$('filter').oninput = () => sift();
$('copy').onclick = copyConversation;
$('clear').onclick = () => wish('DELETE', '/conversation');
$('search').oninput = () => { clearTimeout(searching); searching = setTimeout(search, 150); };
document.addEventListener('visibilitychange', listen);
setInterval(showClock, 1000);
listen();
