'use strict';
// What the pages of this project's programs have in common. Each page's own `words`, by language, come before.

const $ = (id) => document.getElementById(id);

let language = localStorage.getItem('language') || (navigator.language.startsWith('el') ? 'el' : 'en');
let word = words[language];
const money = (value) => new Intl.NumberFormat(language, { minimumFractionDigits: 2, maximumFractionDigits: 2 }).format(value);

/** An element with a class, a text and children. */
function make(tag, { className = '', text = '', ...attributes } = {}, ...children) {
  const element = document.createElement(tag);
  if (className) element.className = className;
  if (text) element.textContent = text;
  for (const [name, value] of Object.entries(attributes)) element.setAttribute(name, value);
  element.append(...children);
  return element;
}

/** Puts words where the page names them, now and when another language is chosen; `retell` does the page's other words. */
function speak(retell) {
  word = words[language];
  document.documentElement.lang = language;
  document.title = 'Mirvane – ' + word.title;
  for (const element of document.querySelectorAll('[data-word]')) element.textContent = word[element.dataset.word];
  for (const element of document.querySelectorAll('[data-label]')) element.setAttribute('aria-label', word[element.dataset.label]);
  for (const element of document.querySelectorAll('[data-hint]')) element.placeholder = word[element.dataset.hint];
  for (const button of document.querySelectorAll('[data-language]')) {
    button.setAttribute('aria-pressed', button.dataset.language === language);
    button.onclick = () => {
      language = button.dataset.language;
      localStorage.setItem('language', language);
      speak(retell);
    };
  }
  if ($('link').textContent) tellLink(!$('link').classList.contains('lost'));
  retell();
}

/** Whether the page hears of what changes. */
function tellLink(isLive) {
  $('link').textContent = isLive ? word.live : word.lost;
  $('link').classList.toggle('lost', !isLive);
}

/** Of `ask`, one call at a time: what changes meanwhile is asked for once, behind it. */
function oneAtATime(ask) {
  let isAsking = false, isStale = false;
  return async () => {
    isStale = true;
    if (isAsking) return;
    isAsking = true;
    try {
      while (isStale) {
        isStale = false;
        await ask();
      }
    } finally {
      isAsking = false;
    }
  };
}

let noticeTimer;
function complain(text) {
  $('notice').textContent = text;
  $('notice').hidden = false;
  clearTimeout(noticeTimer);
  noticeTimer = setTimeout(() => { $('notice').hidden = true; }, 5000);
}
