import { commandPlayer } from './api.js';
import { freshen, freshenAll } from './freshen.js';
import { live } from './live.js';
import { notify } from './notice.js';
import { queue } from './queue.js';

const mostSent = 500;
const mostBefore = 50; // of those, for going back

/** The queue as it plays on the machine that the program runs on: that has the part of it around what plays. */
class Machine {
  /** @type {QueueItem|null} what plays there, where it is one of the queue */
  item = null;
  /** Its place in the queue; where it has just been removed, that of what follows it. */
  index = -1;
  /** @type {QueueItem[]} what the machine has */
  #sent = [];
  /** @type {Set<QueueItem>} what can't be had */
  #lost = new Set();
  /** @type {QueueItem|null} */
  #wanted = null;
  #goOnAt = 0;
  #isToBeTold = false;
  #work = Promise.resolve();

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
  async play(index, seconds) {
    const item = queue.items[index];
    this.#wanted = item;
    const hasMoved = (await freshen(item)) === 'new';
    if (this.#wanted !== item || !queue.items.includes(item)) return; // another was chosen meanwhile
    this.#next(async () => {
      const part = this.#part(item);
      try {
        await this.#send('play', hasMoved ? [item] : part, item);
      } catch (error) {
        // A program that was started anew knows no address from before.
        if (/** @type {any} */ (error).status !== 400) throw error;
        await this.#send('play', [item], item);
      }
      this.#goOnAt = seconds;
      if (this.#sent !== part) this.#freshen(part);
    });
  }

  /** The lists one after the other, as they were made. @param {() => Promise<void>} step */
  #next(step) {
    this.#work = this.#work.then(step).catch((error) => notify(error.message));
  }

  /** @param {QueueItem} item */
  #part(item) {
    const first = Math.max(0, queue.items.indexOf(item) - mostBefore);
    return queue.items.slice(first, first + mostSent).filter((one) => one === item || !this.#lost.has(one));
  }

  /** @param {string} command @param {QueueItem[]} part @param {QueueItem} item */
  async #send(command, part, item) {
    const items = part.map(({ title, artist, url, icon, path }) => ({ title, artist, url, icon, path }));
    await commandPlayer({ command, items, position: part.indexOf(item) });
    this.#sent = part;
    this.item = item;
  }

  /** What comes before and after the track that plays has changed. */
  #tell(isFresh = false) {
    if (this.#isToBeTold) return;
    this.#isToBeTold = true;
    this.#next(async () => {
      this.#isToBeTold = false;
      if (!this.item) return;
      const part = this.#part(this.item);
      await this.#send('queue', part, this.item).catch((error) => {
        if (error.status !== 400 || isFresh) throw error;
        this.#freshen(part);
      });
    });
  }

  /** @param {QueueItem[]} part */
  async #freshen(part) {
    this.#lost = await freshenAll(part);
    this.#tell(true);
  }

  #hear() {
    this.#find();
    const { duration, position } = live.player || { duration: 0, position: 0 };
    if (!this.item) return;
    if (this.#goOnAt && duration > 0) {
      this.command({ command: 'seek', seconds: this.#goOnAt });
      this.#goOnAt = 0;
    }
    const isNearEnd = position > this.#sent.length - mostBefore && this.#sent.length > mostSent / 2;
    if (isNearEnd && this.#sent[position] === this.item) this.#tell();
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
