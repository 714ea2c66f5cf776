import { readQueue } from './api.js';
import { Pages } from './pages.js';
import { kept, store } from './settings.js';
import { tr, translateTold } from './text.js';

/** @param {any} item an item as the media device prepares it @returns {QueueItem} */
function itemOf(item) {
  const row = JSON.parse(item.orkaRoles || '{}');
  return {
    path: row.path || '',
    title: item.title || '',
    artist: item.artist || '',
    album: item.album || '',
    icon: item.artworkUrl || row.icon || '',
    url: item.url || '',
    seconds: item.durationSeconds || 0,
  };
}

/** An item as the browser kept it. @param {any} item @returns {QueueItem} */
function keptItem(item) {
  /** @param {string} name */
  const text = (name) => (typeof item[name] === 'string' ? item[name] : '');
  return {
    path: text('path'), title: text('title'), artist: text('artist'), album: text('album'), icon: text('icon'), url: text('url'),
    seconds: Number(item.seconds) || 0,
  };
}

const many = 1000; // tracks

/** @param {QueueItem} item */
const keyOf = (item) => item.path || item.url;

/**
 * What is played, in order; kept by the browser, and one for all its pages. Tells "change"; "edited" before it where it was
 * changed here, "played" where another page begins to play, "unkept" (its detail is how many tracks are kept) where not all are.
 */
class Queue extends EventTarget {
  /** @type {QueueItem[]} */
  items = [];
  /** The item that plays or comes next; -1 for none. */
  current = -1;
  /** How many tracks the browser had room for. */
  #room = Infinity;
  #soon = 0;
  #isUntold = false;
  #pages = new Pages('queue', () => ({ items: this.items, current: this.current }), (value) => this.#take(value));

  constructor() {
    super();
    try {
      const { items, current } = JSON.parse(kept('queue') || '{}');
      this.items = items.map(keptItem);
      this.current = Math.min(this.items.length - 1, Math.floor(current));
    } catch {
      // What can't be read is as good as nothing.
    }
    document.addEventListener('visibilitychange', () => this.#write()); // a hidden page may be ended at any time
    if (!(this.current >= 0)) this.current = this.items.length ? 0 : -1;
  }

  /** Every track below a node; where some are lacking, why. @param {string} path */
  async tracksBelow(path) {
    const answer = await readQueue(path);
    const lacking = answer.complete ? '' : translateTold(answer.error?.message || '') || tr('Not every track of this place could be queued.');
    return { items: answer.items.map(itemOf), lacking };
  }

  /** @param {QueueItem[]} items @param {number} at */
  insert(items, at) {
    const place = Math.max(0, Math.min(this.items.length, at));
    this.items.splice(place, 0, ...items);
    if (this.current < 0) this.current = 0;
    else if (this.current >= place) this.current += items.length;
    this.#edited();
  }

  /** @param {QueueItem[]} items */
  replace(items) {
    this.items = items;
    this.current = items.length ? 0 : -1;
    this.#edited();
  }

  /** @param {number} index */
  remove(index) {
    this.items.splice(index, 1);
    if (index < this.current || this.current >= this.items.length) --this.current;
    this.#edited();
  }

  /** @param {number} from @param {number} to */
  move(from, to) {
    const target = Math.max(0, Math.min(this.items.length - 1, to));
    const playing = this.items[this.current];
    this.items.splice(target, 0, ...this.items.splice(from, 1));
    this.current = playing ? this.items.indexOf(playing) : -1;
    this.#edited();
  }

  /** An item plays in this page. @param {number} index */
  play(index) {
    this.current = index;
    this.#isUntold = false;
    this.#pages.tell({ isPlayed: true });
    this.#changed();
  }

  /** An item plays elsewhere, as every page hears by itself. @param {number} index */
  follow(index) {
    if (index < 0 || index === this.current) return;
    this.current = index;
    this.#changed();
  }

  /** What another page has. What is in both stays the same object. @param {{items: QueueItem[], current: number, isPlayed?: boolean}} value */
  #take({ items, current, isPlayed }) {
    /** @type {Map<string, QueueItem[]>} */
    const known = new Map(this.items.map((item) => [keyOf(item), []]));
    for (const item of this.items.reverse()) known.get(keyOf(item))?.push(item);
    this.items = items.map((item) => Object.assign(known.get(keyOf(item))?.pop() || item, item));
    this.current = current;
    this.#isUntold = false;
    if (isPlayed) this.dispatchEvent(new Event('played'));
    this.dispatchEvent(new Event('change'));
  }

  #edited() {
    this.#isUntold = true;
    this.dispatchEvent(new Event('edited'));
    this.#changed();
  }

  #changed() {
    clearTimeout(this.#soon);
    if (this.items.length < many) this.#write();
    else this.#soon = setTimeout(() => this.#write(), 300);
    this.dispatchEvent(new Event('change'));
  }

  /** To the other pages, and to the browser: of many tracks that takes longer than a key that is held down. */
  #write() {
    clearTimeout(this.#soon);
    if (this.#isUntold) this.#pages.tell();
    this.#isUntold = false;
    this.#keep();
  }

  /** As much as the browser has room for; from the mark on, where that isn't all. */
  #keep() {
    const length = this.items.length;
    let most = Math.min(length, this.#room);
    const first = () => Math.max(0, Math.min(this.current, length - most));
    const text = () => JSON.stringify({ items: this.items.slice(first(), first() + most), current: this.current - first() });
    while (!store('queue', most ? text() : '') && most) most = Math.floor(most * 0.85);
    if (most < length && this.#room === Infinity) this.dispatchEvent(new CustomEvent('unkept', { detail: most }));
    this.#room = most < length ? most : Infinity;
  }
}

export const queue = new Queue();
