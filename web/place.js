// Node paths, and the addresses made of them.

/** The part of a path that names its media server: "upnp:/uuid:4d69". @param {string} path */
export function serverOf(path) {
  const bare = path.split('?')[0];
  const slash = bare.indexOf('/', bare.indexOf('/') + 1);
  return slash < 0 ? bare : bare.slice(0, slash);
}

/** @param {string} path @param {string} key @param {string} value */
export function withParameter(path, key, value) {
  const [bare, parameters] = path.split('?');
  const all = (parameters || '').split('&').filter((part) => part && !part.startsWith(key + '='));
  return `${bare}?${[...all, `${key}=${encodeURIComponent(value)}`].sort().join('&')}`;
}

/** @param {Row} row */
export const isFolder = (row) => row.type === 1;
/** @param {Row} row */
export const isTrack = (row) => row.type === 2;

/** @param {string} text */
function base64(text) {
  let bytes = '';
  for (const byte of new TextEncoder().encode(text)) bytes += String.fromCharCode(byte);
  return btoa(bytes);
}

/** The address of a picture here, by the program's own proxy. @param {string|undefined} icon @param {number} width */
export function artAddress(icon, width) {
  if (!icon) return '';
  const proxied = /^https:\/\/[^/]*\/proxy\/(.*)$/.exec(icon);
  if (!proxied && !icon.startsWith('http://')) return '';
  return `/proxy/${encodeURIComponent(proxied ? proxied[1] : base64(icon))}?w=${width}`;
}

/** @param {string} uri */
export function mediaAddress(uri) {
  return `/media/${encodeURIComponent(base64(uri))}`;
}

/** @param {string} path */
export const placeHash = (path) => `#/at/${encodeURIComponent(path)}`;
/** @param {string} path @param {string} text */
export const findHash = (path, text) => `#/find/${encodeURIComponent(path)}/${encodeURIComponent(text)}`;

/** @param {string} hash @returns {{view: 'servers'|'place'|'find', path: string, text: string}} */
export function parseHash(hash) {
  const [, view, path, text] = hash.split('/').map((part) => {
    try {
      return decodeURIComponent(part);
    } catch {
      return '';
    }
  });
  if (view === 'at' && path) return { view: 'place', path, text: '' };
  if (view === 'find' && path) return { view: 'find', path, text: text || '' };
  return { view: 'servers', path: '', text: '' };
}
