import { serverOf } from './place.js';

// What changes by itself: media servers, the media service, the machine's player, and whether the program is there.

const longestSilence = 40000; // of a program that tells at least that it is there, every 15 s

class Live extends EventTarget {
  /** @type {Row[]|null} null until the program has told */
  servers = null;
  service = { there: true, message: '' };
  /** @type {PlayerState|null} */
  player = null;
  isConnected = true;
  /** @type {EventSource|null} */
  #source = null;
  #again = 0;
  #silence = 0;

  start() {
    // A browser has few connections to one address: a page that nobody sees needs none.
    document.addEventListener('visibilitychange', () => (document.hidden ? this.#stop() : this.#open()));
    if (!document.hidden) this.#open();
  }

  #open() {
    if (this.#source) return;
    const source = new EventSource('/api/servers');
    this.#source = source;
    this.#listen();
    /** @param {string} name @param {(value: any) => void} take */
    const on = (name, take) => source.addEventListener(name, (event) => {
      this.#listen();
      take(JSON.parse(/** @type {MessageEvent} */ (event).data));
      this.dispatchEvent(new Event(name));
    });
    on('servers', (answer) => (this.servers = answer.rows));
    on('service', (service) => (this.service = service));
    on('player', (state) => (this.player = state));
    on('pulse', () => {});
    source.onopen = () => this.#setConnected(true);
    source.onerror = async () => {
      this.#stop();
      this.#again = setTimeout(() => this.#open(), 1000);
      // A stream doesn't say why it ended; an answer to anything else does.
      const answer = await fetch('/api/queue').catch(() => null);
      if (answer?.status !== 401) this.#setConnected(false);
      else dispatchEvent(new Event('locked'));
    };
  }

  /** A program that hangs, or a network that is gone, ends no stream. */
  #listen() {
    clearTimeout(this.#silence);
    this.#silence = setTimeout(() => {
      this.#stop();
      this.#setConnected(false);
      this.#open();
    }, longestSilence);
  }

  #stop() {
    clearTimeout(this.#again);
    clearTimeout(this.#silence);
    this.#source?.close();
    this.#source = null;
  }

  /** @param {boolean} isConnected */
  #setConnected(isConnected) {
    if (this.isConnected === isConnected) return;
    this.isConnected = isConnected;
    this.dispatchEvent(new Event('connection'));
  }

  /** The row of the media server that a path belongs to. @param {string} server */
  find(server) {
    return this.servers?.find((row) => row.path.split('?')[0] === server);
  }
}

export const live = new Live();

/** To be called when something has changed: acts where the media server of a path is back. @param {string} path @param {() => void} act */
export function whenBack(path, act) {
  let wasThere = true;
  return () => {
    const isThere = live.isConnected && live.service.there && Boolean(live.find(serverOf(path)));
    if (isThere && !wasThere) act();
    if (live.servers) wasThere = isThere;
  };
}
