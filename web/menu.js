import { readRows } from './api.js';
import { h, short } from './dom.js';
import { notify } from './notice.js';
import { tr, translateTold } from './text.js';

/** @type {HTMLElement|null} */
let open = null;
/** @type {HTMLElement|null} */
let opener = null;
let asked = 0;

function close() {
  open?.remove();
  open = null;
  opener?.focus({ preventScroll: true });
  opener = null;
}

/**
 * What the media device offers for a row.
 * @param {Row} row @param {HTMLElement} anchor @param {string} prefix
 * @param {(path: string, title: string) => void} choose
 */
export async function showMenu(row, anchor, prefix, choose) {
  close();
  const mine = ++asked;
  let entries;
  try {
    entries = (await readRows(`${prefix}:context?path=${encodeURIComponent(row.path)}`, 0, 19)).rows;
  } catch (error) {
    const isPlain = /** @type {Error} */ (error).message.startsWith('Invalid context menu');
    notify(isPlain ? tr('Nothing can be done with “{title}” here: it is no music.', { title: short(row.title) }) : /** @type {Error} */ (error).message);
    return;
  }
  if (mine !== asked || !anchor.isConnected) return; // another was asked for, or its row has gone
  const buttons = entries.map((entry) => h('button', {
    type: 'button', role: 'menuitem', tabindex: -1,
    onclick: () => {
      close();
      choose(entry.path, translateTold(entry.title));
    },
  }, translateTold(short(entry.title))));
  opener = anchor;
  open = h('div', { class: 'menu', role: 'menu', 'aria-label': short(row.title), onkeydown: key }, ...buttons);
  (anchor.closest('main') || document.body).append(/** @type {HTMLElement} */ (open));
  putBeside(/** @type {HTMLElement} */ (open), anchor);
  buttons[0]?.focus();
}

/** @param {HTMLElement} menu @param {HTMLElement} anchor */
function putBeside(menu, anchor) {
  const place = anchor.getBoundingClientRect();
  const x = Math.min(place.left, innerWidth - menu.offsetWidth - 8);
  const y = place.bottom + menu.offsetHeight > innerHeight ? place.top - menu.offsetHeight : place.bottom;
  menu.style.left = `${Math.max(8, x)}px`;
  menu.style.top = `${Math.max(8, y)}px`;
}

/** @param {KeyboardEvent} event */
function key(event) {
  const entries = /** @type {HTMLElement[]} */ ([.../** @type {HTMLElement} */ (open).children]);
  const at = entries.indexOf(/** @type {HTMLElement} */ (document.activeElement));
  const to = { ArrowDown: at + 1, ArrowUp: at - 1, Home: 0, End: -1 }[event.key];
  if (event.key === 'Escape' || event.key === 'Tab') close();
  else if (to !== undefined) entries.at(to % entries.length)?.focus();
  else return;
  event.preventDefault();
  event.stopPropagation();
}

addEventListener('pointerdown', (event) => {
  if (open && !open.contains(/** @type {Node} */ (event.target))) close();
});
