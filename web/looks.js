import { clock, h, iconButton, short } from './dom.js';
import { artAddress, isFolder, placeHash } from './place.js';
import { tr } from './text.js';

/** A picture, over a tile made of the title for as long as there is none. */
export function makeArt() {
  const image = h('img', { alt: '', decoding: 'async' });
  image.addEventListener('load', () => image.classList.add('there'));
  image.addEventListener('error', () => image.classList.remove('there'));
  return h('span', { class: 'art', 'aria-hidden': 'true' }, h('span'), image);
}

/** @param {HTMLElement} art @param {string} title @param {string|undefined} icon @param {number} width */
export function fillArt(art, title, icon, width) {
  const [tile, image] = /** @type {any} */ (art.children);
  const address = artAddress(icon, width);
  tile.textContent = initials(title);
  art.style.setProperty('--hue', String(hue(title)));
  if (image.getAttribute('src') === address) return;
  image.classList.remove('there');
  if (address) image.src = address;
  else image.removeAttribute('src');
}

/** @param {string} title */
function initials(title) {
  const words = title.slice(0, 100).normalize('NFC').match(/[\p{L}\p{N}]+/gu) || [];
  return words.slice(0, 2).map((word) => [...word][0]).join('').toUpperCase();
}

/** @param {string} text */
function hue(text) {
  let sum = 7;
  for (const letter of text.slice(0, 40)) sum = (sum * 31 + (letter.codePointAt(0) || 0)) % 360;
  return sum;
}

/** @param {Row} row */
export function detailOf(row) {
  const data = row.mediaData?.metaData || {};
  return [data.artist, data.album].filter(Boolean).map(short).join(' — ');
}

/**
 * @typedef {{open(row: Row, index: number): void, menu(row: Row, anchor: HTMLElement): void}} RowActions
 */

/** @param {RowActions} actions @param {'list'|'covers'} form @returns {Look<Row>} */
export function nodeLook(actions, form) {
  const isCovers = form === 'covers';
  /** @type {WeakMap<HTMLElement, {row?: Row, index: number}>} */
  const shown = new WeakMap();

  /** @param {Event} event */
  function rowOf(event) {
    const element = /** @type {HTMLElement} */ (event.currentTarget).closest('li');
    return (element && shown.get(element)) || { index: 0 };
  }

  /** @param {Event} event */
  function open(event) {
    const { row, index } = rowOf(event);
    const mouse = /** @type {MouseEvent} */ (event);
    if (row && !(isFolder(row) && (mouse.ctrlKey || mouse.metaKey || mouse.shiftKey))) {
      event.preventDefault();
      actions.open(row, index);
    }
  }

  /** @param {Event} event */
  function menu(event) {
    const { row } = rowOf(event);
    const element = /** @type {HTMLElement} */ (event.currentTarget);
    event.preventDefault();
    if (row) actions.menu(row, element.querySelector('.icon') || element);
  }

  return {
    height: isCovers ? 236 : 60,
    width: isCovers ? 176 : 0,
    make() {
      const more = iconButton('more', tr('More'), menu);
      const link = h('a', { onclick: open }, makeArt(), h('span', { class: 'text' }, h('bdi'), h('small')), h('time'));
      return h('li', { class: isCovers ? 'cover' : 'row', oncontextmenu: menu }, link, more);
    },
    fill(element, row, index) {
      shown.set(element, { row, index });
      const [link, more] = /** @type {HTMLElement[]} */ ([...element.children]);
      const [art, text, time] = /** @type {HTMLElement[]} */ ([...link.children]);
      const title = row ? short(row.title) : '';
      const seconds = (row?.mediaData?.resources?.[0]?.duration || 0) / 1000;
      text.children[0].textContent = row ? title : '\u00a0';
      text.children[1].textContent = row ? detailOf(row) : '';
      time.textContent = seconds ? clock(seconds) : '';
      link.setAttribute('href', row && isFolder(row) ? placeHash(row.path) : '#');
      link.toggleAttribute('data-folder', Boolean(row && isFolder(row)));
      more.setAttribute('aria-label', tr('More about {title}', { title }));
      fillArt(art, row?.title || '', row?.icon, isCovers ? 320 : 96);
    },
  };
}
