import { commandPlayer } from './api.js';
import { live } from './live.js';
import { notify } from './notice.js';
import { queue } from './queue.js';

const mostAtOnce = 1000;
const mostBefore = 50; // for going back

/** The queue as it plays on the machine that the program runs on: that has all of it from shortly before what plays. */
class Machine {
  /** @type {QueueItem|null} what plays there, where it is one of the queue */
  item = null;
  /** Its place in the queue; where it has just been removed, that of what follows it. */
  index = -1;
  /** @type {QueueItem[]} what the machine has */
  #sent = [];
  #goOnAt = 0;
  #isToBeTold = false;
  #work = Promise.resolve();
  #latest = 0;

  constructor() {
    live.addEventListener('player', () => this.#hear());
    queue.addEventListener('edited', () => this.#edited());
    queue.addEventListener('change', () => this.#find());
  }

  get isActive() {
    return Boolean(live.player?.active);
  }

  /** @param {Record<string, unknown>} body */
  command(body) {
    commandPlayer(body).catch((error) => notify(error.message));
  }

  /** @param {number} index @param {number} seconds from where on */
  play(index, seconds) {
    const item = queue.items[index];
    this.#next(async () => {
      if (queue.items.includes(item)) await this.#send('play', item, seconds); // else it has been removed meanwhile
    });
  }

  /** The lists one after the other, as they were made. @param {() => Promise<void>} step */
  #next(step) {
    ++this.#latest;
    this.#work = this.#work.then(step).catch((error) => notify(error.message));
  }

  /** What plays and what is near it; then what follows, unless another list does. @param {string} command @param {QueueItem} item @param {number} [seconds] */
  async #send(command, item, seconds = this.#goOnAt) {
    const mine = this.#latest;
    const all = queue.items.slice(Math.max(0, queue.items.indexOf(item) - mostBefore));
    const part = (/** @type {number} */ at) => all.slice(at, at + mostAtOnce).map(({ title, artist, url, icon, path }) => ({ title, artist, url, icon, path }));
    await commandPlayer({ command, items: part(0), position: all.indexOf(item) });
    this.#sent = all;
    this.item = item;
    this.#goOnAt = seconds;
    for (let at = mostAtOnce; at < all.length && mine === this.#latest; at += mostAtOnce) {
      await commandPlayer({ command: 'append', items: part(at) });
    }
  }

  /** What comes before and after the track that plays has changed. */
  #tell() {
    if (this.#isToBeTold) return;
    this.#isToBeTold = true;
    this.#next(async () => {
      this.#isToBeTold = false;
      if (this.item) await this.#send('queue', this.item);
    });
  }

  #hear() {
    this.#find();
    if (!this.item || !this.#goOnAt || !((live.player?.duration || 0) > 0)) return;
    this.command({ command: 'seek', seconds: this.#goOnAt });
    this.#goOnAt = 0;
  }

  /** What the machine tells of is found by its path: what it has may come from another page. */
  #find() {
    const path = this.isActive && live.player?.path;
    const sent = this.#sent[live.player?.position ?? -1];
    if (!path) this.index = -1;
    else if (sent?.path === path) this.index = queue.items.indexOf(sent);
    else if (queue.items[queue.current]?.path === path) this.index = queue.current;
    else this.index = queue.items.findIndex((item) => item.path === path);
    this.item = queue.items[this.index] || null;
  }

  #edited() {
    if (!this.isActive || !this.item) return;
    if (queue.items.includes(this.item)) this.#tell();
    else if (this.index < queue.items.length && !live.player?.paused) this.play(this.index, 0);
    else this.command({ command: 'stop' });
  }
}

export const machine = new Machine();
