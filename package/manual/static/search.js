'use strict';
// Searches the manual section by section, in both languages. `sections` are [page, anchor, page's title, title, text].

const kMost = 60;
const wordsOf = {
  en: { title: 'Search', found: (count) => count === 1 ? '1 section' : `${count} sections`, none: 'Nothing found.' },
  el: { title: 'Αναζήτηση', found: (count) => count === 1 ? '1 ενότητα' : `${count} ενότητες`, none: 'Δεν βρέθηκε τίποτα.' },
};

/** Without accents and case, letter for letter, so that places in both texts are the same. */
const plain = (text) => [...text].map((letter) => letter.normalize('NFD')[0].toLowerCase()[0] ?? letter)
  .join('').replaceAll('ς', 'σ');

const escaped = (text) => text.replace(/[.*+?^${}()|[\]\\]/g, '\\$&');

/** A number is found as a whole, with its sign; a word by its beginning. */
const pattern = (word) => /^-?\d+$/.test(word)
  ? new RegExp(`(?<![\\p{L}\\p{N}_.,:-])${escaped(word)}(?![\\p{L}\\p{N}_]|[.,]\\d)`, 'u')
  : new RegExp(`(?<![\\p{L}\\p{N}])${escaped(word)}`, 'u');

function scoreOf([, , pageTitle, title, text], patterns) {
  const places = [[plain(title || pageTitle), 20], [plain(title ? pageTitle : ''), 5], [plain(text), 1]];
  let score = 0;
  for (const word of patterns) {
    const best = Math.max(...places.map(([place, weight]) => {
      const match = word.exec(place);
      if (!match) return 0;
      const isWhole = !/[\p{L}\p{N}_]/u.test(place[match.index + match[0].length] ?? ' ');
      return weight * (isWhole ? 2 : 1) * (match.index === 0 ? 2 : 1);
    }));
    if (best === 0) return 0;
    score += best;
  }
  return score;
}

/** The text around the first word that is in it, with all of them marked. */
function excerpt(text, patterns) {
  const folded = plain(text);
  const first = Math.min(...patterns.map((word) => word.exec(folded)?.index ?? text.length));
  const begin = first === text.length ? 0 : Math.max(0, folded.lastIndexOf(' ', Math.max(0, first - 60)) + 1);
  const end = Math.min(text.length, begin + 220);
  const all = new RegExp(patterns.map((word) => word.source).join('|'), 'gu');
  const parts = [begin > 0 ? '… ' : ''];
  let at = begin;
  for (const match of folded.slice(begin, end).matchAll(all)) {
    const mark = document.createElement('mark');
    mark.textContent = text.slice(begin + match.index, begin + match.index + match[0].length);
    parts.push(text.slice(at, begin + match.index), mark);
    at = begin + match.index + match[0].length;
  }
  parts.push(text.slice(at, end), end < text.length ? ' …' : '');
  return parts;
}

function resultElement([page, anchor, pageTitle, title, text], patterns) {
  const item = document.createElement('li');
  const link = document.createElement('a');
  link.href = page + (anchor ? `#${encodeURIComponent(anchor)}` : '');
  link.textContent = title ? `${title} – ${pageTitle}` : pageTitle;
  const context = document.createElement('p');
  context.append(...excerpt(text, patterns));
  item.append(link, context);
  return item;
}

const parameters = new URLSearchParams(location.search);
const language = parameters.get('language') === 'el' ? 'el' : 'en';
const words = wordsOf[language];
document.documentElement.lang = language;
document.getElementById('search-title').textContent = words.title;
const query = (parameters.get('q') ?? '').trim();
for (const input of document.querySelectorAll('input[name="q"]')) input.value = query;
for (const input of document.querySelectorAll('input[name="language"]')) input.value = language;
if (query) {
  const patterns = plain(query).replace(/["“”«»]/g, '').split(/\s+/).filter(Boolean).map(pattern);
  // Of equals, those in the reader's language come first.
  const isOther = ([page]) => page.startsWith('el/') !== (language === 'el');
  const found = sections.map((section) => ({ section, score: scoreOf(section, patterns) }))
    .filter(({ score }) => score > 0)
    .sort((a, b) => b.score - a.score || isOther(a.section) - isOther(b.section));
  document.getElementById('search-count').textContent = found.length ? words.found(found.length) : words.none;
  document.getElementById('search-results').append(...found.slice(0, kMost).map(({ section }) => resultElement(section, patterns)));
}
