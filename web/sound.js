import { short } from './dom.js';
import { mediaAddress } from './place.js';
import { keep, kept } from './settings.js';
import { tr } from './text.js';

const longestSilence = 15000;

/**
 * One track as it sounds in this page. Tells "change", "ended", "playing", and "failed": its detail is a sentence about
 * what became of the track.
 */
class Sound extends EventTarget {
  #audio = new Audio();
  /** @type {QueueItem|null} */
  item = null;
  #silence = 0;

  constructor() {
    super();
    const audio = this.#audio;
    const volume = Number(kept('volume') || 1);
    audio.preload = 'auto';
    audio.volume = volume >= 0 && volume <= 1 ? volume : 1;
    for (const name of ['play', 'pause', 'timeupdate', 'durationchange', 'volumechange', 'loadstart', 'progress']) {
      audio.addEventListener(name, () => {
        this.#listen();
        this.#tell('change');
      });
    }
    for (const name of ['playing', 'ended']) audio.addEventListener(name, () => this.#tell(name));
    audio.addEventListener('error', () => {
      if (this.item) this.#fail(tr('“{title}” can’t be played here: it can’t be had, or this browser doesn’t know its format.', this.#named));
    });
  }

  get #named() {
    return { title: short(this.item?.title) };
  }

  get state() {
    const { currentTime, duration, paused, volume } = this.#audio;
    return { time: currentTime, duration: duration || this.item?.seconds || 0, paused, volume: Math.round(volume * 100) };
  }

  /** @param {QueueItem} item @param {number} seconds from where on */
  play(item, seconds) {
    this.item = item;
    this.#audio.src = `${mediaAddress(item.url)}${seconds > 0 ? `#t=${seconds}` : ''}`;
    this.resume();
  }

  resume() {
    this.#audio.play().catch(() => this.#tell('change')); // the error event tells why
  }

  pause() {
    this.#audio.pause();
  }

  stop() {
    this.item = null;
    clearTimeout(this.#silence);
    this.#audio.removeAttribute('src');
    this.#audio.load();
    this.#tell('change');
  }

  /** @param {number} seconds */
  seek(seconds) {
    if (this.item) this.#audio.currentTime = seconds;
  }

  /** @param {number} percent */
  setVolume(percent) {
    this.#audio.volume = percent / 100;
    keep('volume', String(percent / 100));
  }

  /** A media server may take the request and never answer, or stop in the middle: neither is an error to the browser. */
  #listen() {
    clearTimeout(this.#silence);
    if (!this.item || this.#audio.paused) return;
    this.#silence = setTimeout(() => this.#fail(tr('“{title}” doesn’t go on: its media server is silent.', this.#named)), longestSilence);
  }

  /** @param {string} sentence */
  #fail(sentence) {
    this.dispatchEvent(new CustomEvent('failed', { detail: sentence }));
  }

  /** @param {string} name */
  #tell(name) {
    this.dispatchEvent(new Event(name));
  }
}

export const sound = new Sound();
