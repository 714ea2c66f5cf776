import { readRows } from './api.js';

const pageSize = 64;
const mostPages = 16;
const mostRequests = 3;

/**
 * Whether rows may follow the first ones of a node. A count that isn't known (0), or that what
 * came disproves, ends nothing; then the first page that isn't full does.
 * @param {number} rowsCount @param {number} next @param {boolean} isPageFull
 */
export function mayFollow(rowsCount, next, isPageFull) {
  return rowsCount > 0 && next <= rowsCount ? next < rowsCount : isPageFull;
}

/**
 * The rows of one node, read in pages as they come into view; pages far from it are forgotten.
 * Tells "change" when rows have come, "problem" (its detail is an Error) when they haven't.
 * @implements {Source<Row>}
 */
export class NodeRows extends EventTarget {
  total = -1;
  /** @type {Map<number, Row[]>} */
  #pages = new Map();
  /** @type {Map<number, AbortController>} */
  #requests = new Map();
  #first = 0;
  #last = 0;
  #failed = false;

  /** @param {string} path */
  constructor(path) {
    super();
    this.path = path;
  }

  /** @param {number} index */
  get(index) {
    return this.#pages.get(Math.floor(index / pageSize))?.[index % pageSize];
  }

  /** @param {number} first @param {number} last */
  need(first, last) {
    this.#first = Math.floor(first / pageSize);
    this.#last = Math.floor(last / pageSize);
    for (const [page, request] of this.#requests) {
      if (page < this.#first - 1 || page > this.#last + 1) request.abort();
    }
    this.#forgetFar();
    this.#request();
  }

  /** Reads what is in view once more. */
  reload() {
    this.#failed = false;
    this.#pages.clear();
    this.#request();
  }

  stop() {
    for (const request of this.#requests.values()) request.abort();
  }

  #request() {
    if (this.#failed) return;
    for (let page = this.#first; page <= this.#last && this.#requests.size < mostRequests; ++page) {
      const isThere = this.total >= 0 && page * pageSize >= this.total && page > 0;
      if (!isThere && !this.#pages.has(page) && !this.#requests.has(page)) this.#read(page);
    }
  }

  /** @param {number} page */
  async #read(page) {
    const request = new AbortController();
    this.#requests.set(page, request);
    try {
      const answer = await readRows(this.path, page * pageSize, page * pageSize + pageSize - 1, request.signal);
      this.#pages.set(page, answer.rows);
      this.total = this.#totalAfter(page, answer);
      this.dispatchEvent(new Event('change'));
    } catch (error) {
      if (!request.signal.aborted) {
        this.#failed = true;
        this.dispatchEvent(new CustomEvent('problem', { detail: error }));
      }
    }
    this.#requests.delete(page);
    this.#request();
  }

  /** Where the count says nothing, one row more than there are, until the last. @param {number} page @param {RowsAnswer} answer */
  #totalAfter(page, { rows, rowsCount }) {
    const next = page * pageSize + rows.length;
    if (!rows.length) return rowsCount || (this.total < 0 ? next : Math.min(this.total, next));
    if (!mayFollow(rowsCount, next, rows.length === pageSize)) return next;
    return rowsCount > next ? rowsCount : Math.max(this.total, next + 1);
  }

  #forgetFar() {
    const middle = (this.#first + this.#last) / 2;
    const far = [...this.#pages.keys()].sort((a, b) => Math.abs(b - middle) - Math.abs(a - middle));
    for (const page of far.slice(0, Math.max(0, far.length - mostPages))) this.#pages.delete(page);
  }
}

/**
 * Rows that are all here.
 * @template T
 * @implements {Source<T>}
 */
export class GivenRows extends EventTarget {
  /** @param {T[]} rows */
  constructor(rows) {
    super();
    this.rows = rows;
  }
  get total() {
    return this.rows.length;
  }
  /** @param {number} index */
  get(index) {
    return this.rows[index];
  }
  need() {}
}
