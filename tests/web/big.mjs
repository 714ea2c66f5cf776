// 100,000 rows, and rows that mean harm. Prints the figures that it measures.
import { address, browser, check, findings, finish, newPage, picture, until } from './browser.mjs';

const page = await newPage();
const middle = (numbers) => numbers.sort((a, b) => a - b)[numbers.length >> 1];
/** Milliseconds from a click to its rows on screen, beyond what the program took to answer. */
const click = () => page.evaluate(async () => {
  performance.clearResourceTimings();
  const begun = performance.now();
  [...document.querySelectorAll('row-list a')].find((link) => link.textContent.includes('Big')).click();
  while (performance.now() - begun < 10000) {
    await new Promise(requestAnimationFrame);
    const row = document.querySelector('row-list li:not([hidden]):not(.waiting)');
    if (row?.textContent.includes('A 000000')) break;
  }
  const [asked] = performance.getEntriesByType('resource').filter(({ name }) => name.includes('/api/rows'));
  return performance.now() - begun - asked.duration;
});
const clicks = [];
for (let i = 0; i < 9; ++i) {
  await page.goto(address);
  await page.getByText('Big').first().waitFor();
  clicks.push(await click());
}
console.log(`figure click: rows after ${middle(clicks).toFixed(0)} ms beyond the answer, in the median`);
await until('the first rows', () => page.getByText('A 000000').isVisible());
await until('the index', async () => (await page.locator('scroll-index button').count()) === 26);
await findings(page, 'a long list');

/** Milliseconds until a frame shows rows in the whole view, and until it shows their covers, too. */
const jumpTo = (label) => page.evaluate(async (label) => {
  const list = document.querySelector('row-list');
  const box = list.getBoundingClientRect();
  const begun = performance.now();
  [...document.querySelectorAll('scroll-index button')].find((button) => button.textContent === label).click();
  const inView = () => [...list.querySelectorAll('li:not([hidden])')].filter((li) => {
    const place = li.getBoundingClientRect();
    return place.bottom > box.top && place.top < box.bottom;
  });
  const after = async (isShown) => {
    while (performance.now() - begun < 10000) {
      await new Promise(requestAnimationFrame);
      if (inView().length && inView().every(isShown)) return performance.now() - begun;
    }
    return Infinity;
  };
  const rows = await after((li) => !li.classList.contains('waiting'));
  return { rows, covers: await after((li) => li.querySelector('img.there')) };
}, label);
const jumps = [];
for (const label of [...'MZCTH']) jumps.push(await jumpTo(label));
const median = (kind) => middle(jumps.map((jump) => jump[kind])).toFixed(0);
console.log(`figure jump: rows after ${median('rows')} ms, covers after ${median('covers')} ms, in the median`);
await jumpTo('M');
await until('the index finds a letter’s first row', () => page.getByText('M 046154').isVisible());
await page.waitForTimeout(300);
await picture(page, 'index');

const scroll = await page.evaluate(async () => {
  const list = document.querySelector('row-list');
  const memory = () => (gc(), performance.memory.usedJSHeapSize);
  let longest = 0;
  let last = 0;
  const pass = async () => {
    for (let i = 0; i <= 100; ++i) {
      list.scrollTop = (list.scrollHeight * i) / 100;
      const now = await new Promise(requestAnimationFrame);
      if (last && i > 1) longest = Math.max(longest, now - last);
      last = now;
    }
  };
  await pass();
  const before = memory();
  await pass();
  await new Promise((resolve) => setTimeout(resolve, 500));
  return { grown: (memory() - before) / 1e6, longest, elements: document.querySelectorAll('*').length,
    order: String([...list.querySelectorAll('li:not([hidden])')].map((li) => li.dataset.index)) };
});
console.log(`figure scroll: ${scroll.grown.toFixed(1)} MB grown, longest frame ${scroll.longest.toFixed(0)} ms, ${scroll.elements} elements`);
check('memory stays flat over 100,000 rows', scroll.grown < 10, `${scroll.grown} MB`);
check('read aloud in order', scroll.order === String(scroll.order.split(',').sort((a, b) => a - b)), scroll.order);
check('few elements', scroll.elements < 1500, scroll.elements);
check('a jump is quick, covers come', median('rows') < 5000 && jumps.every((jump) => jump.covers < 10000), JSON.stringify(jumps));

await page.locator('#home').click();
await page.getByText('Uncounted').click();
const toEnd = () => page.evaluate(() => { const list = document.querySelector('row-list'); list.scrollTop = list.scrollHeight; });
await until('the last row of a place that isn’t counted', async () => (await toEnd(), page.getByText('A 000149').isVisible()));
await until('its number of rows', () => page.getByText('150 rows').isVisible());
const queued = await page.evaluate(async () => (await (await fetch('/api/queue?path=upnp:/Uncounted%3FitemType%3Dserver')).json()).items.length);
check('its queue is whole', queued === 150, queued);

await page.locator('#home').click();
await page.getByText('Empty').click();
await until('an empty place is said to be', () => page.getByText('This folder is empty.').isVisible(), 5000);

await page.locator('#home').click();
await page.getByText('Hostile').click();
await until('markup in a title is text', () => page.getByText('<img src=x').isVisible());
await page.waitForTimeout(1500);
check('and does nothing', !(await page.title()).includes('harmed'));
const statuses = await page.evaluate(async () => {
  const { rows } = await (await fetch('/api/rows?path=upnp:/Hostile%3FitemType%3Dserver&last=8')).json();
  return Promise.all(rows.map(async (row) => {
    const answer = await fetch(`/proxy/${encodeURIComponent(btoa(row.icon))}?w=160`);
    return `${row.icon.split(/[:/]/).at(-1)} ${answer.status} ${answer.headers.get('Content-Type')}`;
  }));
});
const json = 'application/json';
check('pictures that mean harm', statuses.join() === [`redirect-port 502 ${json}`, `redirect-host 502 ${json}`, `redirects 502 ${json}`,
  `bomb 502 ${json}`, `endless 502 ${json}`, `svg 502 ${json}`, `html 502 ${json}`, `passwd 404 ${json}`, 'fine 200 image/jpeg'].join(), statuses.join());
for (const kind of ['proxy', 'media']) {
  const status = await page.evaluate(async (kind) => (await fetch(`/${kind}/${btoa('http://10.77.0.1:9000/secret')}`)).status, kind);
  check(`/${kind}/ for what no row has named`, status === 404, status);
}
await browser.pages()[0].close();
await finish();
