// What the browser keeps from visit to visit. Where it keeps nothing, being forbidden to or full, this page remembers it itself.

/** @type {Map<string, string>} */
const memory = new Map();

/** An empty text where nothing was kept. @param {string} name */
export function kept(name) {
  try {
    return memory.get(name) ?? localStorage.getItem(`orka.${name}`) ?? '';
  } catch {
    return '';
  }
}

/** Whether the browser keeps it; an empty text gives its room back. @param {string} name @param {string} value */
export function store(name, value) {
  try {
    if (value) localStorage.setItem(`orka.${name}`, value);
    else localStorage.removeItem(`orka.${name}`);
    return true;
  } catch {
    return false;
  }
}

/** @param {string} name @param {string} value */
export function keep(name, value) {
  if (store(name, value)) memory.delete(name);
  else memory.set(name, value);
}

/** What was kept where it is one of these, else nothing. @template {string} T @param {string} name @param {T[]} known @returns {T|undefined} */
export function keptOneOf(name, ...known) {
  return known.find((one) => one === kept(name));
}
