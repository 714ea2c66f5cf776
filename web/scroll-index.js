import { readRows } from './api.js';
import { h } from './dom.js';
import { withParameter } from './place.js';
import { tr } from './text.js';

const mostMarks = 26;
const worthAnIndex = 120; // rows
const markHeight = 24; // pixels

/** The letter under which a title is looked for. @param {string} title */
function letterOf(title) {
  const letter = [...title.trim().normalize('NFD').slice(0, 4)][0] || '';
  return /\p{N}/u.test(letter) ? '0' : letter.toUpperCase();
}

/**
 * Letters beside a long list, made of rows spread over it: a thumb jumps there, and nothing that
 * lies before is loaded. A list in another order than its titles' gets numbers instead.
 */
export class ScrollIndex extends HTMLElement {
  /** @type {{label: string, index: number, before: number}[]} */
  #marks = [];
  #request = new AbortController();
  #path = '';
  /** The mark that was chosen last; a slower answer about another changes nothing. @type {object|null} */
  #chosen = null;
  #sizes = new ResizeObserver(() => this.#fit());

  connectedCallback() {
    this.#sizes.observe(this);
  }

  disconnectedCallback() {
    this.#sizes.disconnect();
  }

  /** @param {string} path @param {number} total @param {(index: number) => void} jump */
  async show(path, total, jump) {
    this.clear();
    if (total < worthAnIndex) return;
    const request = (this.#request = new AbortController());
    const step = Math.ceil(total / mostMarks);
    try {
      const sample = withParameter(path, 'sample', `0,${total - 1},${step}`);
      const answer = await readRows(sample, 0, Math.ceil(total / step) - 1, request.signal);
      if (request.signal.aborted) return;
      this.#path = path;
      this.#marks = marksOf(answer.rows.map((row) => row.title || ''), step);
      this.#draw(jump);
    } catch {
      // Without an index the list scrolls all the same.
    }
  }

  clear() {
    this.#request.abort();
    this.#marks = [];
    this.replaceChildren();
    this.hidden = true;
  }

  /** @param {(index: number) => void} jump */
  #draw(jump) {
    this.hidden = this.#marks.length < 3;
    const isSorted = this.#marks.some((mark) => mark.before >= 0);
    this.setAttribute('role', 'group');
    this.setAttribute('aria-label', isSorted ? tr('Jump to a letter') : tr('Jump to a row'));
    this.replaceChildren(...this.#marks.map((mark) => h('button', {
      type: 'button',
      'aria-label': isSorted ? tr('Titles with {label}', mark) : tr('Row {label}', mark),
      onclick: async () => {
        this.#chosen = mark;
        jump(mark.index);
        if (mark.before < 0) return;
        const first = await this.#firstOf(mark);
        if (this.#chosen === mark && first !== mark.index) jump(first);
      },
    }, mark.label)));
    this.#fit();
    this.onpointermove = (/** @type {PointerEvent} */ event) => {
      const target = event.buttons && document.elementFromPoint(event.clientX, event.clientY);
      const mark = target && this.#marks[[...this.children].indexOf(target)];
      if (mark) jump(mark.index);
    };
  }

  /** As many marks as there is room for. */
  #fit() {
    const marks = /** @type {HTMLElement[]} */ ([...this.children]);
    const every = Math.ceil((marks.length * markHeight) / Math.max(markHeight, this.clientHeight - markHeight));
    marks.forEach((mark, i) => (mark.hidden = i % every > 0));
  }

  /** Halves the way between two samples until the letter's first row is found. @param {{label: string, index: number, before: number}} mark */
  async #firstOf(mark) {
    let [low, high] = [mark.before, mark.index];
    try {
      while (high - low > 1) {
        const middle = (low + high) >> 1;
        const { rows } = await readRows(this.#path, middle, middle, this.#request.signal);
        if (letterOf(rows[0]?.title || '') === mark.label) high = middle;
        else low = middle;
      }
    } catch {
      return mark.index;
    }
    return high;
  }
}

/** @param {string[]} titles @param {number} step */
function marksOf(titles, step) {
  const letters = titles.map(letterOf);
  const kinds = new Set(letters);
  // Each letter in one piece, and more than one of them.
  const pieces = letters.filter((letter, i) => letter !== letters[i - 1]).length;
  if (kinds.size < 3 || pieces > kinds.size) {
    return titles.map((_, i) => ({ label: String(i * step + 1), index: i * step, before: -1 })).filter((_, i) => i % 3 === 0);
  }
  return letters
    .map((label, i) => ({ label, index: i * step, before: Math.max(0, (i - 1) * step), isFirst: label !== letters[i - 1] }))
    .filter((mark) => mark.isFirst);
}

customElements.define('scroll-index', ScrollIndex);
