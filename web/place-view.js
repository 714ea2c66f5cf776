import { readNode } from './api.js';
import { h, iconButton, short } from './dom.js';
import { live, whenBack } from './live.js';
import { nodeLook } from './looks.js';
import { isFolder, serverOf } from './place.js';
import { NodeRows } from './rows.js';
import { keep, keptOneOf } from './settings.js';
import './scroll-index.js';
import { tr } from './text.js';

/** @param {Row|undefined} row the first one */
const kindOf = (row) => (row && !isFolder(row) ? 'tracks' : 'folders');

/** Covers where the first folders have some, unless somebody chose. @param {NodeRows} rows @returns {'list'|'covers'} */
function formOf(rows) {
  const kind = kindOf(rows.get(0));
  const chosen = keptOneOf(`form.${kind}`, 'list', 'covers');
  if (chosen) return chosen;
  return kind === 'folders' && [0, 1, 2, 3].some((i) => rows.get(i)?.icon) ? 'covers' : 'list';
}

/**
 * One folder: its rows as a list or as covers, and the index beside them.
 * @param {HTMLElement} main @param {string} path @param {import('./looks.js').RowActions} actions @param {Crumb[]} trail
 */
export function showPlace(main, path, actions, trail) {
  const rows = new NodeRows(path);
  const first = Number(history.state?.first || 0);
  const title = trail.at(-1)?.title || live.find(serverOf(path))?.title || '';
  const heading = h('h1', {}, h('bdi', {}, short(title || ' ')));
  const said = h('small', { role: 'status' }, tr('Reading …'));
  const toggle = iconButton('covers', tr('Show covers'), () => switchForm());
  const more = iconButton('more', tr('More about this folder'), () => actions.menu({ path, title: heading.textContent || '' }, more));
  const trouble = h('div', { class: 'empty', hidden: true });
  const list = h('row-list');
  const index = h('scroll-index', { hidden: true });
  main.replaceChildren(h('div', { class: 'head' }, heading, said, toggle, more), trouble, h('div', { class: 'long' }, list, index));

  /** @type {'list'|'covers'|''} */
  let form = '';
  let indexed = -1;

  function name(/** @type {string} */ text) {
    const shown = short(live.find(path.split('?')[0])?.title || text); // a media server's is that of its device
    heading.firstElementChild.textContent = shown;
    document.title = `${shown} – orka`;
  }
  function readName() {
    if (title && trail.length) name(title);
    else readNode(path).then((row) => name(row.title || title), () => name(title || tr('Folder')));
  }

  function draw() {
    const wanted = rows.get(0) || form === '' ? formOf(rows) : form;
    said.textContent = rows.total < 0 ? tr('Reading …') : tr('{n} row|{n} rows', { n: rows.total });
    trouble.hidden = rows.total !== 0;
    if (rows.total === 0) trouble.replaceChildren(tr('This folder is empty.'));
    if (wanted !== form) setForm(/** @type {'list'|'covers'} */ (wanted), form === '' ? first : list.first);
    if (rows.total >= 0 && rows.total !== indexed) {
      indexed = rows.total;
      index.show(path, rows.total, (/** @type {number} */ row) => list.jump(row));
    }
  }

  /** @param {'list'|'covers'} next @param {number} top */
  function setForm(next, top) {
    form = next;
    toggle.setAttribute('aria-label', form === 'covers' ? tr('Show a list') : tr('Show covers'));
    toggle.title = toggle.getAttribute('aria-label');
    list.show(heading.textContent, rows, nodeLook(actions, form), top);
  }

  function switchForm() {
    const next = form === 'covers' ? 'list' : 'covers';
    keep(`form.${kindOf(rows.get(list.first))}`, next);
    setForm(next, list.first);
  }

  function retry() {
    readName();
    trouble.hidden = true;
    said.textContent = tr('Reading …');
    rows.reload();
  }

  let remember = 0;
  list.addEventListener('moved', () => {
    clearTimeout(remember);
    remember = setTimeout(() => {
      if (list.isConnected) history.replaceState({ ...history.state, first: list.first }, '');
    }, 200);
  });
  rows.addEventListener('change', draw);
  rows.addEventListener('problem', (event) => {
    const error = /** @type {CustomEvent} */ (event).detail;
    said.textContent = '';
    trouble.hidden = false;
    trouble.replaceChildren(h('p', {}, error.message), h('button', { type: 'button', onclick: retry }, tr('Try again')));
  });
  readName();
  rows.need(first, first + 63);

  return {
    leave() {
      rows.stop();
      index.clear();
      clearTimeout(remember);
    },
    /** A media server that is back, or a program, has the rows anew. */
    update: whenBack(path, retry),
  };
}
