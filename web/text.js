// The page's texts in the browser's language, where there are translations; text-LANGUAGE.js has them.

const translated = ['de'];

/** Of the languages that the browser's user reads, the first that the page has. */
export const language = navigator.languages.map((name) => name.split('-')[0]).find((name) => name === 'en' || translated.includes(name)) || 'en';

/** @type {{texts: Record<string, string>, told: Record<string, string>}} */
const { texts, told } = language === 'en' ? { texts: {}, told: {} } : await import(`./text-${language}.js`);
const patterns = Object.keys(told).map((text) => ({ text, pattern: patternOf(text) }));
const numbers = new Intl.NumberFormat(language);

/** "1,234" @param {number} value */
export function number(value) {
  return numbers.format(value);
}

/**
 * A text with its {name}s filled in. One that has two forms, "{n} row|{n} rows", is about `n`.
 * @param {string} text @param {Record<string, string|number>} [values]
 */
export function tr(text, values = {}) {
  const forms = (texts[text] || text).split('|');
  return fill(values.n === 1 ? forms[0] : forms[forms.length - 1], values);
}

/** What the program said, which is in English. @param {string} text @returns {string} */
export function translateTold(text) {
  for (const { text: known, pattern } of patterns) {
    const match = pattern.exec(text);
    if (match) return fill(told[known], Object.fromEntries(Object.entries(match.groups || {}).map(([name, part]) => [name, translateTold(part)])));
  }
  return text;
}

/** @param {string} form @param {Record<string, string|number>} values */
function fill(form, values) {
  return form.replace(/\{(\w+)\}/g, (_, name) => {
    const value = values[name];
    if (typeof value === 'number') return number(value);
    return name === 'title' || name === 'text' ? `\u2068${value}\u2069` : value; // whatever direction it is written in
  });
}

/** @param {string} text */
function patternOf(text) {
  const escaped = text.replace(/[.*+?^$()|[\]\\]/g, '\\$&');
  return new RegExp(`^${escaped.replace(/\{(\w+)\}/g, '(?<$1>.*)')}$`, 's');
}

/** The texts that stand in the document itself. */
export function translateDocument() {
  document.documentElement.lang = language;
  for (const element of document.querySelectorAll('[data-tr]')) {
    for (const name of ['aria-label', 'placeholder', 'content']) {
      const text = element.getAttribute(name);
      if (text) element.setAttribute(name, tr(text));
    }
    if (!element.children.length && element.textContent) element.textContent = tr(element.textContent);
  }
}
