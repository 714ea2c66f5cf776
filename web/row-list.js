// A list of any length: only the rows in view have elements.

// Pixels that every browser can scroll, which counts them as the screen does.
const tallest = () => Math.min(8_000_000, 30_000_000 / devicePixelRatio);
const spare = 4; // lines above and below the view

export class RowList extends HTMLElement {
  /** @type {Source<any>|null} */
  source = null;
  /** @type {Look<any>|null} */
  #look = null;
  #list = document.createElement('ul');
  /** @type {Map<number, HTMLElement>} */
  #shown = new Map();
  /** @type {HTMLElement[]} */
  #pool = [];
  #columns = 1;
  #active = 0;
  #frame = 0;
  #lastTop = 0;
  #settle = 0;
  #change = () => this.update(true);
  #sizes = new ResizeObserver(() => this.update(true));

  connectedCallback() {
    this.#list.setAttribute('role', 'list');
    this.append(this.#list);
    this.addEventListener('scroll', () => this.#soon(), { passive: true });
    this.addEventListener('keydown', (event) => this.#key(event));
    this.addEventListener('focusin', (event) => {
      const row = /** @type {HTMLElement} */ (event.target).closest('li');
      if (row) this.#active = Number(row.dataset.index);
      this.#retab();
    });
    this.#sizes.observe(this);
  }

  disconnectedCallback() {
    this.#sizes.disconnect();
    this.source?.removeEventListener('change', this.#change);
  }

  /** @param {string} label @param {Source<any>} source @param {Look<any>} look @param {number} [first] row on top */
  show(label, source, look, first = 0) {
    this.source?.removeEventListener('change', this.#change);
    this.source = source;
    source.addEventListener('change', this.#change);
    this.#list.setAttribute('aria-label', label);
    this.#list.replaceChildren();
    this.#shown.clear();
    this.#pool = [];
    this.#look = look;
    this.#active = first;
    this.classList.toggle('covers', look.width > 0);
    this.#layOut();
    this.scrollTop = this.#topOf(first);
    this.update(true);
  }

  /** The first row in view. */
  get first() {
    if (!this.#look) return 0;
    return Math.round(this.#realTop() / this.#lineHeight()) * this.#columns;
  }

  /** Brings a row to the top of the view. @param {number} index */
  jump(index) {
    this.scrollTop = this.#topOf(index);
    this.update(false, true);
  }

  #lineHeight() {
    return this.#look?.height || 1;
  }
  #lines() {
    return Math.ceil(Math.max(0, this.source?.total || 0) / this.#columns);
  }
  #realHeight() {
    return this.#lines() * this.#lineHeight();
  }
  /** Real pixels for each that is scrolled. */
  #scale() {
    const real = this.#realHeight() - this.clientHeight;
    return real > tallest() ? real / (tallest() - this.clientHeight) : 1;
  }
  #realTop() {
    return this.scrollTop * this.#scale();
  }
  /** @param {number} index */
  #topOf(index) {
    return (Math.floor(index / this.#columns) * this.#lineHeight()) / this.#scale();
  }

  #layOut() {
    const width = this.#look?.width || 0;
    this.#columns = width ? Math.max(1, Math.floor(this.#list.clientWidth / width)) : 1;
    this.#list.style.height = `${Math.min(tallest(), this.#realHeight())}px`;
  }

  #soon() {
    if (!this.#frame) {
      this.#frame = requestAnimationFrame(() => {
        this.#frame = 0;
        this.update(false);
      });
    }
  }

  /** @param {boolean} refill whether rows may have changed @param {boolean} [now] reads rows without waiting */
  update(refill, now = refill) {
    if (!this.source || !this.#look || !this.isConnected) return;
    const anchor = refill ? this.first : 0;
    const columns = this.#columns;
    if (refill) this.#layOut();
    if (columns !== this.#columns) this.scrollTop = this.#topOf(anchor);
    const line = this.#lineHeight();
    const top = this.#realTop();
    const total = this.source.total;
    const firstLine = Math.max(0, Math.floor(top / line) - spare);
    const lastLine = Math.ceil((top + this.clientHeight) / line) + spare;
    const end = total < 0 ? (lastLine + 1) * this.#columns : Math.min(total, (lastLine + 1) * this.#columns);
    const first = firstLine * this.#columns;
    this.#needRows(first, Math.max(first, end - 1), now);
    this.#recycle(first, end);
    const shift = this.scrollTop - top;
    for (let index = first; index < end; ++index) this.#place(index, shift, refill);
    this.dispatchEvent(new Event('moved'));
  }

  /**
   * While rows fly by nobody can read them: they are asked for where the list slows down.
   * @param {number} first @param {number} last @param {boolean} now
   */
  #needRows(first, last, now) {
    const moved = Math.abs(this.scrollTop - this.#lastTop);
    this.#lastTop = this.scrollTop;
    clearTimeout(this.#settle);
    if (now || moved < this.clientHeight * 2) this.source?.need(first, last);
    else this.#settle = setTimeout(() => this.source?.need(first, last), 50);
  }

  /** @param {number} first @param {number} end */
  #recycle(first, end) {
    const focused = this.contains(document.activeElement) ? this.#active : -1;
    for (const [index, element] of this.#shown) {
      if ((index >= first && index < end) || (index === focused && index < (this.source?.total || 0))) continue;
      this.#shown.delete(index);
      element.hidden = true;
      this.#pool.push(element);
    }
    for (const extra of this.#pool.splice(60)) extra.remove();
  }

  /** @param {number} index @param {number} shift @param {boolean} refill */
  #place(index, shift, refill) {
    const look = /** @type {Look<any>} */ (this.#look);
    let element = this.#shown.get(index);
    const row = this.source?.get(index);
    const isNew = !element;
    if (!element) {
      element = this.#pool.pop() || this.#makeElement(look);
      const before = this.#shown.get(index - 1); // they are read aloud as they stand in the document
      if (before) before.after(element);
      else this.#list.prepend(element);
      element.hidden = false;
      element.dataset.index = String(index);
      element.setAttribute('aria-posinset', String(index + 1));
      this.#shown.set(index, element);
    }
    element.setAttribute('aria-setsize', String(Math.max(-1, this.source?.total ?? -1)));
    if (isNew || refill || (row && element.classList.contains('waiting'))) {
      element.classList.toggle('waiting', !row);
      look.fill(element, row, index);
      this.#tab(element, index);
    }
    const column = index % this.#columns;
    const y = Math.floor(index / this.#columns) * look.height + shift;
    element.style.transform = `translate(${column * 100}%, ${y}px)`;
    element.style.width = `${100 / this.#columns}%`;
    element.style.height = `${look.height}px`;
  }

  /** @param {Look<any>} look */
  #makeElement(look) {
    const element = look.make();
    element.setAttribute('role', 'listitem');
    return element;
  }

  /** One stop for the Tab key in the whole list. @param {HTMLElement} element @param {number} index */
  #tab(element, index) {
    for (const target of element.querySelectorAll('a, button')) {
      /** @type {HTMLElement} */ (target).tabIndex = index === this.#active ? 0 : -1;
    }
  }

  #retab() {
    for (const [index, element] of this.#shown) this.#tab(element, index);
  }

  /** @param {number} index */
  focusRow(index) {
    const total = this.source?.total || 0;
    if (total <= 0) return;
    this.#active = Math.max(0, Math.min(total - 1, index));
    const line = this.#lineHeight();
    const y = Math.floor(this.#active / this.#columns) * line;
    if (y < this.#realTop()) this.jump(this.#active);
    else if (y + line > this.#realTop() + this.clientHeight) {
      this.scrollTop = (y + line - this.clientHeight) / this.#scale();
      this.update(false, true);
    }
    this.#retab();
    /** @type {HTMLElement|null|undefined} */ (this.#shown.get(this.#active)?.querySelector('a, button'))?.focus({ preventScroll: true });
  }

  /** @param {KeyboardEvent} event */
  #key(event) {
    if (event.altKey || event.ctrlKey || event.metaKey || event.shiftKey) return;
    const page = Math.max(1, Math.floor(this.clientHeight / this.#lineHeight()) - 1) * this.#columns;
    /** @type {Record<string, number>} */
    const steps = {
      ArrowDown: this.#columns, ArrowUp: -this.#columns, PageDown: page, PageUp: -page, Home: -Infinity, End: Infinity,
    };
    if (this.#columns > 1) Object.assign(steps, { ArrowRight: 1, ArrowLeft: -1 });
    const step = steps[event.key];
    if (step === undefined) return;
    event.preventDefault();
    this.focusRow(this.#active + step);
  }
}

customElements.define('row-list', RowList);
