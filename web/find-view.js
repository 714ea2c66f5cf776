import { readRows, setValue } from './api.js';
import { h, short } from './dom.js';
import { live, whenBack } from './live.js';
import { nodeLook } from './looks.js';
import { isFolder, placeHash, serverOf } from './place.js';
import { mayFollow } from './rows.js';
import { language, number, tr, translateTold } from './text.js';

const mostShown = 24;

/**
 * What a media server finds, by everything that its search menu offers, as the answers come.
 * @param {HTMLElement} main @param {string} path @param {string} text
 * @param {import('./looks.js').RowActions} actions @param {Crumb[]} trail @param {() => void} again
 */
export function showSearch(main, path, text, actions, trail, again) {
  const said = h('small', { role: 'status' }, tr('Searching …'));
  const results = h('div', { class: 'results', tabindex: 0, role: 'region', 'aria-label': tr('Results') });
  const where = h('bdi');
  const update = whenBack(path, again);
  const request = new AbortController();
  /** @type {Set<string>} */
  const problems = new Set();
  let isCounted = true;
  document.title = `${short(text)} – orka`;
  main.replaceChildren(h('div', { class: 'head' }, h('h1', {}, tr('Search') + ' ', where), said), results);
  search();

  async function search() {
    try {
      const menu = await readRows(`${serverOf(path)}?search=menu`, 0, 9, request.signal);
      if (!menu.rows.length) {
        say(tr('This media server can’t search. Its folders can be browsed, and long ones have an index at the side.'));
        return;
      }
      const found = await Promise.all(menu.rows.map(searchOne));
      const total = found.reduce((sum, number) => sum + number, 0);
      said.textContent = isCounted ? tr('{n} match|{n} matches', { n: total }) : tr('At least {n} matches', { n: total });
      if (request.signal.aborted) return;
      if (problems.size) say([...problems].join(' '));
      else if (total === 0) say(tr('Nothing matches “{text}”. A part of a word is enough; fewer letters find more.', { text: short(text) }));
    } catch (error) {
      if (!request.signal.aborted) say(/** @type {Error} */ (error).message);
    }
  }

  /** @param {string} sentence */
  function say(sentence) {
    said.textContent = '';
    results.append(h('div', { class: 'empty' }, h('p', {}, sentence), h('a', { href: placeHash(path) }, tr('To the folders'))));
  }

  /** One section; returns how many rows there are. @param {Row} kind */
  async function searchOne(kind) {
    const title = translateTold(kind.title);
    const section = h('section', {}, h('h2', {}, `${title} `, h('small', {}, tr('searching …'))));
    results.append(section);
    try {
      const place = await setValue(kind.path, { string_: text });
      const answer = await readRows(place, 0, mostShown - 1, request.signal);
      if (request.signal.aborted) return 0;
      section.hidden = !answer.rows.length;
      const { length } = answer.rows;
      const isMore = mayFollow(answer.rowsCount, length, length === mostShown);
      const matches = Math.max(answer.rowsCount, length);
      // Some media servers don't count what they find.
      if (isMore && matches === length) isCounted = false;
      const shown = number(matches) + (isMore && matches === length ? '+' : '');
      section.replaceChildren(h('h2', {}, `${title} `, h('small', {}, shown)));
      addGroup(section, tr('Folders'), answer.rows.filter(isFolder));
      addGroup(section, tr('Tracks'), answer.rows.filter((row) => !isFolder(row)));
      if (isMore) {
        section.append(h('a', { class: 'all', href: placeHash(place) }, tr('All {shown} by {kind}', { shown, kind: language === 'en' ? title.toLowerCase() : title })));
      }
      return matches;
    } catch (error) {
      section.remove();
      problems.add(/** @type {Error} */ (error).message);
      return 0;
    }
  }

  /** @param {HTMLElement} section @param {string} name @param {Row[]} rows */
  function addGroup(section, name, rows) {
    if (!rows.length) return;
    const look = nodeLook(actions, rows.every(isFolder) && rows.some((row) => row.icon) ? 'covers' : 'list');
    const list = h('ul', { class: look.width ? 'still covers' : 'still', 'aria-label': name });
    rows.forEach((row, i) => {
      const element = look.make();
      look.fill(element, row, i);
      list.append(element);
    });
    section.append(h('h3', {}, name), list);
  }

  return {
    leave: () => request.abort(),
    update() {
      where.textContent = short(trail[0]?.title || live.find(serverOf(path))?.title || ' ').trim();
      update();
    },
  };
}
