import { readQueue } from './api.js';
import { kept, store } from './settings.js';

const mostItems = 20000;

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

/** What is played, in order; kept by the browser. Tells "change". */
class Queue extends EventTarget {
  /** @type {QueueItem[]} */
  items = [];
  /** The item that plays or comes next; -1 for none. */
  current = -1;

  constructor() {
    super();
    try {
      const { items, current } = JSON.parse(kept('queue') || '{}');
      this.items = items.map(keptItem);
      this.current = Math.min(this.items.length - 1, Math.floor(current));
    } catch {
      // What can't be read is as good as nothing.
    }
    if (!(this.current >= 0)) this.current = this.items.length ? 0 : -1;
  }

  /** Every track below a node. @param {string} path */
  async tracksBelow(path) {
    const answer = await readQueue(path);
    return { items: answer.items.map(itemOf).slice(0, mostItems), complete: answer.complete };
  }

  /** @param {QueueItem[]} items @param {number} at */
  insert(items, at) {
    const place = Math.max(0, Math.min(this.items.length, at));
    this.items.splice(place, 0, ...items);
    if (this.current >= place) this.current += items.length;
    this.#changed();
  }

  /** @param {QueueItem[]} items */
  replace(items) {
    this.items = items;
    this.current = items.length ? 0 : -1;
    this.#changed();
  }

  /** @param {number} index */
  remove(index) {
    this.items.splice(index, 1);
    if (index < this.current || this.current >= this.items.length) --this.current;
    this.#changed();
  }

  /** @param {number} from @param {number} to */
  move(from, to) {
    const target = Math.max(0, Math.min(this.items.length - 1, to));
    const playing = this.items[this.current];
    this.items.splice(target, 0, ...this.items.splice(from, 1));
    this.current = playing ? this.items.indexOf(playing) : -1;
    this.#changed();
  }

  /** @param {number} index */
  setCurrent(index) {
    this.current = index;
    this.#changed();
  }

  /** Texts changed inside an item. */
  touch() {
    this.#changed();
  }

  #changed() {
    if (!store('queue', JSON.stringify({ items: this.items, current: this.current }))) this.dispatchEvent(new Event('unkept'));
    this.dispatchEvent(new Event('change'));
  }
}

export const queue = new Queue();
