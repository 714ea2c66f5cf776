import { h } from './dom.js';

const place = /** @type {HTMLElement} */ (document.getElementById('notice'));
/** @type {Map<string, HTMLElement>} */
const standing = new Map();

/** A sentence that goes by itself, with a way on where there is one. @param {string} sentence @param {string} [label] @param {() => void} [action] */
export function notify(sentence, label, action) {
  const note = h('p', { class: 'note' }, sentence);
  if (label && action) {
    note.append(h('button', { type: 'button', onclick: () => {
      note.remove();
      action();
    } }, label));
  }
  place.append(note);
  while (place.querySelectorAll('.note').length > 3) place.querySelector('.note')?.remove();
  setTimeout(() => note.remove(), 10000);
}

/** A sentence that stays for as long as it is true; an empty one takes it away. @param {string} name @param {string} sentence */
export function stand(name, sentence) {
  const old = standing.get(name);
  if (old?.textContent === sentence) return;
  old?.remove();
  standing.delete(name);
  if (!sentence) return;
  const note = h('p', { class: 'standing' }, sentence);
  standing.set(name, note);
  place.prepend(note);
}
