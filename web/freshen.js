import { readNode } from './api.js';

/**
 * The media server may have moved, or the program been started anew, since the item was queued. What became of its address.
 * @param {QueueItem} item @returns {Promise<'same'|'new'|'unknown'>}
 */
export async function freshen(item) {
  try {
    const row = await readNode(item.path, AbortSignal.timeout(5000));
    const url = row.mediaData?.resources?.[0]?.uri || item.url;
    const isNew = url !== item.url;
    Object.assign(item, { url, icon: row.icon || item.icon });
    return isNew ? 'new' : 'same';
  } catch {
    return 'unknown'; // it may play all the same
  }
}

/** A few at a time; which of them can't be had. @param {QueueItem[]} items */
export async function freshenAll(items) {
  /** @type {Set<QueueItem>} */
  const unknown = new Set();
  const left = [...items];
  const some = async () => {
    for (let item = left.shift(); item; item = left.shift()) if ((await freshen(item)) === 'unknown') unknown.add(item);
  };
  await Promise.all([some(), some(), some(), some()]);
  return unknown;
}
