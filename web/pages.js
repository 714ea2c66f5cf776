/**
 * Something that all open pages of this browser have in common. Each tells the others what it changes, and asks them when
 * it is opened or looked at again; of two that change it at once, the same one wins in every page.
 */
export class Pages {
  #me = Math.random();
  /** What is so here: the newest version that is known, and the page that made it. */
  #version = 0;
  #by = 0;
  /** @type {BroadcastChannel|undefined} */
  #channel;
  #give;

  /** @param {string} name @param {() => object} give what is so here @param {(value: any) => void} take what is so from now on */
  constructor(name, give, take) {
    this.#give = give;
    try {
      this.#channel = new BroadcastChannel(`orka.${name}`);
    } catch {
      return; // forbidden, as keeping is: each page is for itself
    }
    this.#channel.onmessage = ({ data: { version, by, value } }) => {
      if (!value) {
        if (this.#version) this.#post({});
      } else if (version > this.#version || (version === this.#version && by > this.#by)) {
        this.#version = version;
        this.#by = by;
        take(value);
      }
    };
    const ask = () => document.hidden || this.#channel?.postMessage({});
    document.addEventListener('visibilitychange', ask);
    ask();
  }

  /** What is so here has changed. @param {object} [more] for the pages that are open now */
  tell(more = {}) {
    ++this.#version;
    this.#by = this.#me;
    this.#post(more);
  }

  /** @param {object} more */
  #post(more) {
    this.#channel?.postMessage({ version: this.#version, by: this.#by, value: { ...this.#give(), ...more } });
  }
}
