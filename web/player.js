import { commandPlayer, readNode } from './api.js';
import { live } from './live.js';
import { notify } from './notice.js';
import { mediaAddress } from './place.js';
import { queue } from './queue.js';
import { keep, kept, keptOneOf } from './settings.js';

/** Plays the queue: in this page, or on the machine that the program runs on. Tells "change". */
class Player extends EventTarget {
  #audio = new Audio();
  output = keptOneOf('output', 'machine') || 'here';
  #failures = 0;
  #told = '';

  constructor() {
    super();
    this.#audio.preload = 'auto';
    const volume = Number(kept('volume') || 1);
    this.#audio.volume = volume >= 0 && volume <= 1 ? volume : 1;
    for (const name of ['play', 'pause', 'timeupdate', 'durationchange', 'volumechange', 'loadstart']) {
      this.#audio.addEventListener(name, () => this.#changed());
    }
    this.#audio.addEventListener('playing', () => (this.#failures = 0));
    this.#audio.addEventListener('ended', () => this.next());
    this.#audio.addEventListener('error', () => this.#failed());
    live.addEventListener('player', () => {
      const message = live.player?.message || '';
      if (message && message !== this.#told) notify(message);
      this.#told = message;
      this.#changed();
    });
    this.#listenToKeys();
  }

  get isHere() {
    return this.output === 'here' || !live.player?.available;
  }

  /** What plays, wherever. */
  get state() {
    if (!this.isHere && live.player) return live.player;
    const item = queue.items[queue.current];
    return {
      available: true,
      active: Boolean(item),
      position: queue.current,
      count: queue.items.length,
      title: item?.title || '',
      artist: item?.artist || '',
      icon: item?.icon || '',
      path: item?.path || '',
      time: this.#audio.currentTime,
      duration: this.#audio.duration || item?.seconds || 0,
      paused: this.#audio.paused,
      volume: Math.round(this.#audio.volume * 100),
      message: '',
    };
  }

  /** @param {'here'|'machine'} output */
  setOutput(output) {
    if (this.output === output) return;
    if (this.isHere) this.#audio.pause();
    this.output = output;
    keep('output', output);
    this.#changed();
  }

  /** @param {number} index */
  async play(index) {
    const item = queue.items[index];
    if (!item) return;
    queue.setCurrent(index);
    await this.#freshen(item);
    if (queue.items[queue.current] !== item) return; // another was chosen meanwhile
    if (this.isHere) {
      this.#audio.src = mediaAddress(item.url);
      this.#audio.play().catch(() => this.#changed()); // the error event tells why
    } else {
      const items = queue.items.map(({ title, artist, url, icon, path }) => ({ title, artist, url, icon, path }));
      this.#command({ command: 'play', items, position: index });
    }
  }

  /** The media server may have moved, or the program been started anew, since the item was queued. @param {QueueItem} item */
  async #freshen(item) {
    if (!item.path) return;
    try {
      const row = await readNode(item.path);
      item.url = row.mediaData?.resources?.[0]?.uri || item.url;
      item.icon = row.icon || item.icon;
    } catch {
      // It may play all the same.
    }
  }

  #failed() {
    if (!this.#audio.getAttribute('src')) return;
    const item = queue.items[queue.current];
    if (++this.#failures > 3) {
      notify('Several tracks in a row can’t be played. Is their media server still there?', 'Try again', () => this.play(queue.current));
      this.#failures = 0;
      return;
    }
    notify(`“${item?.title || 'This track'}” can’t be played here: it can’t be had, or this browser doesn’t know its format.`);
    this.next();
  }

  toggle() {
    if (!this.isHere) this.#command({ command: live.player?.paused ? 'resume' : 'pause' });
    else if (!this.#audio.getAttribute('src')) this.play(Math.max(0, queue.current));
    else if (this.#audio.paused) this.#audio.play().catch(() => this.#changed());
    else this.#audio.pause();
  }

  next() {
    if (!this.isHere) this.#command({ command: 'next' });
    else if (queue.current + 1 < queue.items.length) this.play(queue.current + 1);
    else this.#changed();
  }

  previous() {
    if (!this.isHere) this.#command({ command: 'previous' });
    else if (this.#audio.currentTime > 3 || queue.current < 1) this.#audio.currentTime = 0;
    else this.play(queue.current - 1);
  }

  /** @param {number} seconds */
  seek(seconds) {
    if (!this.isHere) this.#command({ command: 'seek', seconds });
    else if (this.#audio.getAttribute('src')) this.#audio.currentTime = seconds;
  }

  /** @param {number} percent */
  setVolume(percent) {
    if (!this.isHere) this.#command({ command: 'volume', percent });
    else {
      this.#audio.volume = percent / 100;
      keep('volume', String(percent / 100));
    }
  }

  stop() {
    if (!this.isHere) this.#command({ command: 'stop' });
    this.#audio.pause();
    this.#audio.removeAttribute('src');
    this.#audio.load();
    this.#changed();
  }

  /** @param {Record<string, unknown>} command */
  #command(command) {
    commandPlayer(command).catch((error) => notify(error.message));
  }

  #listenToKeys() {
    const session = navigator.mediaSession;
    if (!session) return;
    session.setActionHandler('play', () => this.toggle());
    session.setActionHandler('pause', () => this.toggle());
    session.setActionHandler('nexttrack', () => this.next());
    session.setActionHandler('previoustrack', () => this.previous());
  }

  #changed() {
    this.dispatchEvent(new Event('change'));
  }
}

export const player = new Player();
