import { tr } from './text.js';

/**
 * Makes an element. Texts become text nodes, whatever they hold; nothing here reads markup.
 * @param {string} name
 * @param {Record<string, any>} [properties] attributes; "on…" listeners
 * @param {...(Node|string)} children
 * @returns {any}
 */
export function h(name, properties = {}, ...children) {
  const element = document.createElement(name);
  for (const [key, value] of Object.entries(properties)) {
    if (key.startsWith('on')) element.addEventListener(key.slice(2), value);
    else if (value === true) element.setAttribute(key, '');
    else if (value !== false && value != null) element.setAttribute(key, String(value));
  }
  element.append(...children);
  return element;
}

/** Outlines on a grid of 24. */
const shapes = {
  more: 'M5 12h.01M12 12h.01M19 12h.01',
  play: 'M8 5v14l11-7z',
  pause: 'M8 5v14M16 5v14',
  next: 'M6 5v14l9-7zM18 5v14',
  previous: 'M18 5v14l-9-7zM6 5v14',
  remove: 'M6 6l12 12M18 6L6 18',
  list: 'M4 6h16M4 12h16M4 18h16',
  covers: 'M4 4h7v7H4zM13 4h7v7h-7zM4 13h7v7H4zM13 13h7v7h-7z',
};

/** @param {keyof typeof shapes} shape */
export function icon(shape) {
  const space = 'http://www.w3.org/2000/svg';
  const svg = document.createElementNS(space, 'svg');
  svg.setAttribute('viewBox', '0 0 24 24');
  svg.setAttribute('aria-hidden', 'true');
  const path = document.createElementNS(space, 'path');
  path.setAttribute('d', shapes[shape]);
  svg.append(path);
  return svg;
}

/**
 * @param {keyof typeof shapes} shape
 * @param {string} label
 * @param {(event: MouseEvent) => void} action
 */
export function iconButton(shape, label, action) {
  return h('button', { type: 'button', class: 'icon', 'aria-label': label, title: label, onclick: action }, icon(shape));
}

/** A title as it is shown: never longer than a screen can use. @param {string|undefined} text */
export function short(text) {
  const shown = text || tr('Untitled');
  return shown.length > 300 ? shown.slice(0, 300) + '…' : shown;
}

/** "3:05" @param {number} seconds */
export function clock(seconds) {
  if (!(seconds > 0)) return '0:00';
  const whole = Math.floor(seconds);
  const minutes = Math.floor(whole / 60) % 60;
  const hours = Math.floor(whole / 3600);
  const tail = String(whole % 60).padStart(2, '0');
  return hours ? `${hours}:${String(minutes).padStart(2, '0')}:${tail}` : `${minutes}:${tail}`;
}
