import { savePlaylist } from './api.js';
import { clock, h, iconButton, short } from './dom.js';
import { fillArt, makeArt } from './looks.js';
import { notify } from './notice.js';
import { player } from './player.js';
import { queue } from './queue.js';
import { RowList } from './row-list.js';
import { GivenRows } from './rows.js';
import { number, tr } from './text.js';

/** @param {HTMLElement} panel @param {HTMLElement} button */
export function setUpQueue(panel, button) {
  const heading = h('h2', {}, tr('Queue'));
  const said = h('small');
  const list = /** @type {RowList} */ (h('row-list'));
  /** @param {string} format */
  const saveAs = (format) => h('button', { type: 'button', onclick: () => save(format) }, tr('Save as {format}', { format: format.toUpperCase() }));
  const clear = h('button', { type: 'button', onclick: () => {
    const old = queue.items;
    queue.replace([]);
    notify(tr('The queue is empty now.'), tr('Undo'), () => queue.replace(old));
  } }, tr('Clear'));
  const empty = h('p', { class: 'empty' }, tr('Nothing is queued. Choose “Add to queue” from the menu of a track or folder.'));
  panel.append(h('div', { class: 'panel-head' }, heading, said), h('div', { class: 'panel-tools' }, saveAs('m3u8'), saveAs('xspf'), clear), empty, list,
    h('p', { id: 'queue-keys', hidden: true }, tr('Alt with an arrow key moves it, Delete removes it.')));

  const look = queueLook(list);
  const rows = new GivenRows(queue.items);
  let isShown = false;
  function draw() {
    button.textContent = queue.items.length ? `${tr('Queue')} ${number(queue.items.length)}` : tr('Queue');
    if (panel.hidden) return;
    const seconds = queue.items.reduce((sum, item) => sum + item.seconds, 0);
    said.textContent = queue.items.length ? tr('{n} track, {time}|{n} tracks, {time}', { n: queue.items.length, time: clock(seconds) }) : '';
    empty.hidden = queue.items.length > 0;
    for (const tool of /** @type {any} */ (panel.querySelectorAll('.panel-tools button'))) tool.disabled = !queue.items.length;
    rows.rows = queue.items;
    if (!isShown) list.show(tr('Queued tracks'), rows, look, Math.max(0, queue.current));
    else list.update(true);
    isShown = true;
  }
  queue.addEventListener('change', draw);
  queue.addEventListener('unkept', (event) => {
    const most = /** @type {CustomEvent} */ (event).detail;
    notify(tr('The browser has room for one track of this queue: when the page is closed, the others are lost.|The browser has room for {n} tracks of this queue: when the page is closed, the others are lost.', { n: most }));
  });
  button.addEventListener('click', () => {
    panel.hidden = !panel.hidden;
    isShown = false;
    button.setAttribute('aria-expanded', String(!panel.hidden));
    draw();
  });
  panel.addEventListener('keydown', (event) => {
    if (event.key !== 'Escape') return;
    button.click();
    button.focus();
  });
  draw();
}

/** @param {string} format */
async function save(format) {
  const items = queue.items.map(({ title, artist, album, url, icon, seconds }) => (
    { title, artist, album, url, artworkUrl: icon, durationSeconds: seconds }));
  try {
    const address = URL.createObjectURL(await savePlaylist(format, items));
    h('a', { href: address, download: `queue.${format}` }).click();
    setTimeout(() => URL.revokeObjectURL(address), 10000);
  } catch (error) {
    notify(/** @type {Error} */ (error).message);
  }
}

/** @param {RowList} list @returns {Look<QueueItem>} */
function queueLook(list) {
  /** @param {Event} event */
  const indexOf = (event) => Number(/** @type {HTMLElement} */ (/** @type {HTMLElement} */ (event.currentTarget).closest('li')).dataset.index);
  let dragged = -1;
  /** @param {number} from @param {number} to */
  function move(from, to) {
    queue.move(from, to);
    list.focusRow(Math.max(0, Math.min(queue.items.length - 1, to)));
  }
  /** @param {KeyboardEvent} event */
  function key(event) {
    const index = indexOf(event);
    if (event.key === 'Delete') {
      queue.remove(index);
      list.focusRow(index);
    } else if (event.altKey && event.key === 'ArrowUp') move(index, index - 1);
    else if (event.altKey && event.key === 'ArrowDown') move(index, index + 1);
    else return;
    event.preventDefault();
    event.stopPropagation();
  }
  return {
    height: 56,
    width: 0,
    make: () => h('li', {
      class: 'row queued', draggable: 'true', onkeydown: key,
      ondragstart: (/** @type {DragEvent} */ event) => {
        dragged = indexOf(event);
        event.dataTransfer?.setData('text/plain', '');
      },
      ondragover: (/** @type {DragEvent} */ event) => dragged >= 0 && event.preventDefault(),
      ondrop: (/** @type {DragEvent} */ event) => {
        event.preventDefault();
        if (dragged >= 0) queue.move(dragged, indexOf(event));
        dragged = -1;
      },
    }, h('a', { href: '#', onclick: (/** @type {MouseEvent} */ event) => {
      event.preventDefault();
      player.play(indexOf(event));
    } }, makeArt(), h('span', { class: 'text' }, h('bdi'), h('small')), h('time')), iconButton('remove', tr('Remove'), (event) => queue.remove(indexOf(event)))),
    fill(element, item, index) {
      const [link, remove] = /** @type {HTMLElement[]} */ ([...element.children]);
      const [art, text, time] = /** @type {HTMLElement[]} */ ([...link.children]);
      const title = short(item?.title);
      text.children[0].textContent = title;
      text.children[1].textContent = item ? [item.artist, item.album].filter(Boolean).map(short).join(' — ') : '';
      time.textContent = item?.seconds ? clock(item.seconds) : '';
      link.setAttribute('aria-describedby', 'queue-keys');
      remove.setAttribute('aria-label', tr('Remove {title}', { title }));
      if (index === queue.current) link.setAttribute('aria-current', 'true');
      else link.removeAttribute('aria-current');
      fillArt(art, item?.title || '', item?.icon, 96);
    },
  };
}
