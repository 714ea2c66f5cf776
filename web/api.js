import { tr, translateTold } from './text.js';

/** Why something didn't work, as a sentence. */
export class Problem extends Error {
  /** @param {string} sentence @param {number} status @param {string} name */
  constructor(sentence, status, name) {
    super(sentence);
    this.status = status;
    this.name = name;
  }
}

/** @param {string} address @param {RequestInit} [options] */
async function ask(address, options) {
  let answer;
  try {
    answer = await fetch(address, options);
  } catch (error) {
    if (/** @type {Error} */ (error).name === 'AbortError') throw error;
    throw new Problem(tr('The program orka doesn’t answer. Start “orka serve” again; this page waits for it.'), 0, 'away');
  }
  if (answer.ok) return answer;
  const document = await answer.json().catch(() => ({}));
  const tooLong = tr('That is more at once than the program takes, which is 8 MiB. Choose less.');
  const said = document.error?.message || (answer.status === 413 ? tooLong : tr('The program orka answered “{status}”.', { status: String(answer.status) }));
  if (answer.status === 401) dispatchEvent(new Event('locked'));
  throw new Problem(sentence(said), answer.status, document.error?.name || 'error');
}

/** Workers answer in fragments. @param {string} text */
function sentence(text) {
  if (text.startsWith('Failed to retrieve content')) {
    const why = text.slice('Failed to retrieve content: '.length);
    return tr('The media server didn’t give what it was asked for{why}.', { why: why ? ': ' + why.replace(/\.+$/, '') : '' });
  }
  return translateTold(/[.?!]$/.test(text) ? text : text + '.');
}

/** @param {Record<string, string|number>} parameters */
function query(parameters) {
  return Object.entries(parameters).map(([key, value]) => `${key}=${encodeURIComponent(value)}`).join('&');
}

/** @param {unknown} value @returns {RequestInit} */
function post(value) {
  return { method: 'POST', headers: { 'Content-Type': 'application/json' }, body: JSON.stringify(value) };
}

const roles = 'path,title,type,containerType,containerPlayable,mediaData,icon';

/**
 * @param {string} path @param {number} first @param {number} last @param {AbortSignal} [signal]
 * @returns {Promise<RowsAnswer>}
 */
export async function readRows(path, first, last, signal) {
  return (await ask(`/api/rows?${query({ path, first, last, roles })}`, { signal })).json();
}

/** @param {string} path @param {AbortSignal} [signal] @returns {Promise<Row>} */
export async function readNode(path, signal) {
  const answer = await ask(`/api/data?${query({ path, roles })}`, { signal });
  return { ...(await answer.json()).roles, path };
}

/** @param {string} path @param {unknown} value */
export async function setValue(path, value) {
  return (await (await ask(`/api/set?${query({ path })}`, post(value))).json()).value;
}

/** Every track below a node. @param {string} path @returns {Promise<{items: any[], complete: boolean, error?: {message?: string}}>} */
export async function readQueue(path) {
  return (await ask(`/api/queue?${query({ path })}`)).json();
}

/** @param {string} format @param {unknown[]} items */
export async function savePlaylist(format, items) {
  return (await ask(`/api/queue?${query({ format })}`, post({ items }))).blob();
}

/** @param {Record<string, unknown>} command */
export async function commandPlayer(command) {
  await ask('/api/player', post(command));
}

/** @param {string} token */
export async function unlock(token) {
  await ask('/api/session', post({ token }));
}
