import { setValue, unlock } from './api.js';
import { h, short } from './dom.js';
import { showSearch } from './find-view.js';
import { live } from './live.js';
import { nodeLook } from './looks.js';
import { showMenu } from './menu.js';
import { notify, stand } from './notice.js';
import { findHash, isFolder, isTrack, parseHash, placeHash, serverOf } from './place.js';
import { showPlace } from './place-view.js';
import { player } from './player.js';
import { setUpPlayer } from './player-bar.js';
import { queue } from './queue.js';
import { setUpQueue } from './queue-panel.js';
import './row-list.js';
import { GivenRows } from './rows.js';
import { tr, translateDocument, translateTold } from './text.js';

/** @param {string} id @returns {any} */
const part = (id) => document.getElementById(id);
const main = part('list');
const findForm = part('find');
const findText = part('find-text');

/** What is on screen; `update` is told when media servers come and go. @type {{leave(): void, update(): void}} */
let view = { leave() {}, update() {} };
let place = parseHash('');

/** @returns {Crumb[]} */
const trailNow = () => history.state?.trail || [];

/** @param {string} hash @param {Crumb[]} trail */
function go(hash, trail) {
  history.pushState({ trail }, '', hash);
  render();
}

const actions = {
  /** @param {Row} row */
  open(row) {
    if (isFolder(row)) go(placeHash(row.path), [...trailNow(), { path: row.path, title: row.title }]);
    else if (isTrack(row)) enqueue('playlist/playNow', row);
    else notify(tr('“{title}” is no music; this page plays music.', { title: short(row.title) }));
  },
  /** @param {Row} row @param {HTMLElement} anchor */
  menu(row, anchor) {
    const prefix = row.path.slice(0, row.path.indexOf(':'));
    showMenu(row, anchor, prefix, (path, title) => enqueue(path.split('?')[0].slice(prefix.length + 1), row, path, title));
  },
};

/** @param {string} action @param {Row} row @param {string} [path] @param {string} [title] */
async function enqueue(action, row, path, title) {
  try {
    if (!action.startsWith('playlist/')) {
      await setValue(path || '', '');
      notify(tr('{title}: done.', { title: title || '' }));
      return;
    }
    const saying = setTimeout(() => stand(row.path, tr('The tracks of “{title}” are being gathered …', { title: short(row.title) })), 700);
    const { items, lacking } = await queue.tracksBelow(row.path).finally(() => {
      clearTimeout(saying);
      stand(row.path, '');
    });
    if (!items.length) {
      notify(lacking || tr('There is no music in “{title}”.', { title: short(row.title) }));
      return;
    }
    if (lacking) notify(lacking);
    const next = queue.current + 1;
    queue.insert(items, action === 'playlist/addToQueue' ? queue.items.length : next);
    if (action === 'playlist/playNow') player.play(next);
    else notify(tr('“{title}” is queued.|{n} tracks are queued.', { n: items.length, title: short(items[0].title) }));
  } catch (error) {
    notify(/** @type {Error} */ (error).message, tr('Try again'), () => enqueue(action, row, path, title));
  }
}

function render() {
  const hadFocus = main.contains(document.activeElement);
  view.leave();
  place = parseHash(location.hash);
  if (place.view === 'servers') view = showServers();
  else if (place.view === 'find') view = showSearch(main, place.path, place.text, actions, trailNow(), render);
  else view = showPlace(main, place.path, actions, trailNow());
  if (findText.value.trim() !== place.text) findText.value = place.text;
  drawTrail();
  view.update();
  if (!hadFocus) return;
  const heading = main.querySelector('h1'); // what had the focus is gone
  heading.tabIndex = -1;
  heading.focus();
}

function showServers() {
  const list = h('row-list');
  const rows = new GivenRows(/** @type {Row[]} */ ([]));
  const empty = h('p', { class: 'empty' });
  main.replaceChildren(h('div', { class: 'head' }, h('h1', {}, tr('Media servers'))), empty, list);
  document.title = 'orka';
  list.show(tr('Media servers'), rows, nodeLook(actions, 'list'));
  return {
    leave() {},
    update() {
      rows.rows = live.servers || [];
      empty.hidden = rows.rows.length > 0;
      empty.textContent = live.servers
        ? tr('No media server has shown up yet. Start one on this network; it appears here by itself.')
        : tr('Looking for media servers …');
      list.update(true);
    },
  };
}

/** The way from the media servers to here; a place that was opened by its address shows its server alone. */
function drawTrail() {
  let trail = trailNow();
  if (!trail.length && place.path) {
    const server = live.find(serverOf(place.path));
    if (server && server.path !== place.path) trail = [{ path: server.path, title: server.title }];
  }
  const upTo = place.view === 'find' ? trail : trail.slice(0, -1);
  const crumbs = !trailNow().length ? trail : upTo;
  part('trail').replaceChildren(...crumbs.map((crumb, i) => h('a', {
    href: placeHash(crumb.path),
    onclick: (/** @type {MouseEvent} */ event) => {
      event.preventDefault();
      go(placeHash(crumb.path), crumbs.slice(0, i + 1));
    },
  }, short(crumb.title))));
  findForm.hidden = place.view === 'servers';
}

function drawStanding() {
  stand('away', live.isConnected ? '' : tr('The program orka has stopped or can’t be reached. Start “orka serve” again; this page goes on by itself.'));
  stand('service', live.service.there ? '' : translateTold(live.service.message || 'The media service is not there.'));
  const server = serverOf(place.path);
  const isGone = place.path && live.isConnected && live.service.there && live.servers && !live.find(server);
  stand('server', isGone ? tr('This media server has left the network. When it is back, this page goes on by itself.') : '');
  main.classList.toggle('stale', Boolean(isGone || !live.isConnected || !live.service.there));
}

let typing = 0;
findText.addEventListener('input', () => {
  clearTimeout(typing);
  typing = setTimeout(search, 250);
});
findForm.addEventListener('submit', (/** @type {Event} */ event) => {
  event.preventDefault();
  clearTimeout(typing);
  search();
});

function search() {
  const text = findText.value.trim();
  const server = live.find(serverOf(place.path));
  const path = server?.path || `${serverOf(place.path)}?itemType=server`;
  const trail = [{ path, title: server?.title || tr('Media server') }];
  if (!text) {
    if (place.view === 'find') go(placeHash(path), trail);
  } else if (place.view === 'find') {
    history.replaceState(history.state, '', findHash(path, text));
    render();
  } else go(findHash(path, text), trail);
}

/** Beyond this machine the program wants to know that its page may be seen. Whether it knows it from the address now. */
async function unlockFromAddress() {
  const token = /^#token=([\w-]+)$/.exec(location.hash)?.[1];
  if (!token) return false;
  history.replaceState(null, '', '#/');
  return unlock(token).then(() => true, (error) => notify(error.message));
}

function askForToken() {
  if (document.querySelector('.token')) return;
  const field = h('input', { autocomplete: 'off', 'aria-label': tr('Token') });
  const form = h('form', { class: 'token', onsubmit: async (/** @type {Event} */ event) => {
    event.preventDefault();
    try {
      await unlock(field.value.trim().replace(/^.*#token=/, '')); // the whole address will do
      location.reload();
    } catch (error) {
      notify(/** @type {Error} */ (error).message);
    }
  } }, h('p', {}, tr('This page needs the token that “orka serve” printed.')), field, h('button', {}, tr('Open')));
  document.body.append(form);
  field.focus();
}

part('home').addEventListener('click', (/** @type {MouseEvent} */ event) => {
  event.preventDefault();
  go('#/', []);
});
/** @type {HTMLElement} */ (document.querySelector('.skip')).addEventListener('click', (event) => {
  event.preventDefault(); // the address is that of a place
  main.focus();
});
addEventListener('popstate', async () => ((await unlockFromAddress()) ? location.reload() : render()));
addEventListener('locked', askForToken);
addEventListener('keydown', (event) => {
  const isTyping = /^(INPUT|SELECT)$/.test(/** @type {HTMLElement} */ (event.target).tagName);
  if (event.key !== '/' || isTyping || findForm.hidden) return;
  event.preventDefault();
  findText.focus();
});
for (const name of ['servers', 'service', 'connection']) {
  live.addEventListener(name, () => {
    if (name === 'servers') document.querySelector('.token')?.remove(); // who is told of them needs none
    drawStanding();
    view.update();
    drawTrail();
  });
}

translateDocument();
setUpQueue(part('queue'), part('queue-button'));
setUpPlayer(part('player'));
await unlockFromAddress();
live.start();
render();
