import { readNode } from './api.js';
import { live } from './live.js';
import { machine } from './machine.js';
import { notify } from './notice.js';
import { queue } from './queue.js';
import { keep, keptOneOf } from './settings.js';
import { sound } from './sound.js';
import { tr, translateTold } from './text.js';

/** The media server may have moved, or the program been started anew, since the item was queued. @param {QueueItem} item */
async function freshen(item) {
  const row = await readNode(item.path, AbortSignal.timeout(5000)).catch(() => null); // it may play all the same
  Object.assign(item, { url: row?.mediaData?.resources?.[0]?.uri || item.url, icon: row?.icon || item.icon });
}

/** Plays the queue: in this page, or on the machine that the program runs on. Tells "change". */
class Player extends EventTarget {
  /** @type {'here'|'machine'} */
  output = keptOneOf('output', 'machine') || 'here';
  /** @type {QueueItem|null} what is to sound here next, while its address is asked for */
  #wanted = null;
  /** The place in the queue of what sounds here; where that has just been removed, of what follows it. */
  #index = -1;
  #failures = 0;
  #told = '';

  constructor() {
    super();
    sound.addEventListener('change', () => this.#changed());
    sound.addEventListener('playing', () => (this.#failures = 0));
    sound.addEventListener('ended', () => this.#wanted || this.next());
    sound.addEventListener('failed', (event) => this.#failed(/** @type {CustomEvent} */ (event).detail));
    queue.addEventListener('played', () => sound.pause());
    queue.addEventListener('change', () => this.#followQueue());
    live.addEventListener('player', () => this.#followMachine());
    this.#listenToKeys();
  }

  get isHere() {
    return this.output === 'here' || !live.player?.available;
  }

  get #isOnMachine() {
    return !this.isHere && machine.isActive;
  }

  /** What plays, wherever; else what would. */
  get state() {
    if (this.#isOnMachine && live.player) return live.player;
    const item = (this.isHere && sound.item) || queue.items[queue.current];
    const { title = '', artist = '', icon = '', seconds = 0 } = item || {};
    const state = this.isHere ? sound.state : { time: 0, duration: 0, paused: true, volume: live.player?.volume ?? 100 };
    return { ...state, duration: state.duration || seconds, active: Boolean(item), title, artist, icon };
  }

  /** What plays goes on in the other place; it is silent in this one. @param {'here'|'machine'} output */
  setOutput(output) {
    if (this.output === output) return;
    const { paused, time } = this.state;
    const index = this.isHere ? this.#index : machine.index;
    this.#wanted = null;
    if (this.isHere) sound.stop();
    else if (this.#isOnMachine) machine.command({ command: 'pause' });
    this.output = output;
    keep('output', output);
    if (!paused) this.play(index, time);
    this.#changed();
  }

  /** @param {number} index @param {number} [seconds] from where on */
  async play(index, seconds = 0) {
    const item = queue.items[index];
    if (!item) return;
    if (!this.isHere) {
      machine.play(index, seconds);
      return;
    }
    this.#wanted = item;
    await freshen(item);
    if (this.#wanted !== item) return; // another was chosen meanwhile
    this.#wanted = null;
    const place = queue.items.indexOf(item);
    if (place < 0) return;
    sound.play(item, seconds);
    queue.play(place);
  }

  /** @param {string} sentence what became of the track */
  #failed(sentence) {
    if (this.#wanted) return; // it is being left
    if (++this.#failures > 3) {
      const following = this.#index + 1;
      const goesOn = following < queue.items.length;
      notify(tr('Several tracks in a row can’t be played. Is their media server still there?'),
        goesOn ? tr('Go on behind them') : tr('Try again'), () => this.play(goesOn ? following : queue.current));
      this.#failures = 0;
      sound.stop();
      return;
    }
    notify(sentence);
    if (this.#index + 1 < queue.items.length) this.next();
    else sound.stop();
  }

  /** The place in the queue of what plays here, or is about to, or would. */
  get #place() {
    if (this.#wanted) return queue.items.indexOf(this.#wanted);
    return sound.item ? this.#index : queue.current;
  }

  toggle() {
    if (this.#isOnMachine) machine.command({ command: live.player?.paused ? 'resume' : 'pause' });
    else if (!this.isHere || !sound.item) this.play(Math.max(0, queue.current));
    else if (!sound.state.paused) sound.pause();
    else {
      sound.resume();
      queue.play(this.#index);
    }
  }

  next() {
    if (this.#isOnMachine) machine.command({ command: 'next' });
    else this.play(this.#place + 1);
  }

  previous() {
    if (this.#isOnMachine) machine.command({ command: 'previous' });
    else if (!this.#wanted && (sound.state.time > 3 || this.#place < 1)) sound.seek(0);
    else this.play(this.#place - 1);
  }

  /** @param {number} seconds */
  seek(seconds) {
    if (this.#isOnMachine) machine.command({ command: 'seek', seconds });
    else if (this.isHere && sound.item) sound.seek(seconds);
    else this.play(queue.current, seconds);
  }

  /** @param {number} percent */
  setVolume(percent) {
    if (this.isHere) sound.setVolume(percent);
    else machine.command({ command: 'volume', percent });
  }

  #followQueue() {
    const index = sound.item ? queue.items.indexOf(sound.item) : this.#index;
    if (index >= 0) this.#index = index;
    else if (sound.item) {
      const goesOn = !sound.state.paused && !this.#wanted;
      sound.stop();
      if (goesOn) this.play(this.#index);
    }
    this.#changed();
  }

  #followMachine() {
    const message = live.player?.message || '';
    if (message && message !== this.#told) notify(translateTold(message));
    this.#told = message;
    if (this.#isOnMachine) queue.follow(machine.index);
    this.#changed();
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
