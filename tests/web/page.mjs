// The page over a real media server, as a person uses it.
import { address, check, findings, finish, newPage, picture, until, world } from './browser.mjs';

const page = await newPage();
const shows = (text) => page.getByText(text).first().isVisible();
const row = (text) => page.locator('li', { hasText: text }).first();
const choose = async (text, entry) => {
  await row(text).locator('button').click();
  await findings(page, 'a menu');
  await page.getByRole('menuitem', { name: entry }).click();
};
const queued = () => page.evaluate(() => JSON.parse(localStorage.getItem('orka.queue') || '{}').items || []);

await page.goto(address);
await until('the media server is there', () => shows('Test Music'));
await findings(page, 'media servers');
await row('Test Music').locator('a').click();
await row('Music').locator('a').click();
await row('Album').locator('a').click();
await until('the albums', () => shows('Glass Rivers'));
await until('a cover, in its colour', () => page.evaluate(() => {
  const image = [...document.querySelectorAll('li')].find((li) => li.textContent.includes('Glass Rivers')).querySelector('img');
  const canvas = Object.assign(document.createElement('canvas'), { width: 9, height: 9 });
  const context = canvas.getContext('2d');
  context.drawImage(image, 0, 0, 9, 9);
  const [red, green, blue] = context.getImageData(4, 4, 1, 1).data;
  return red < 20 && Math.abs(green - 128) < 12 && Math.abs(blue - 128) < 12; // teal
}));
await picture(page, 'covers');
await findings(page, 'covers');
await row('Punctuation').locator('a').press('Enter');
await until('titles are text', () => shows('Rock & Roll <live>'));
check('the focus is on the place', await page.evaluate(() => document.activeElement.tagName === 'H1'));
await page.reload();
await until('a reload keeps the place', () => shows('back\\slash'));
await page.locator('row-list a').first().focus();
for (const key of ['ArrowDown', 'ArrowDown', 'End']) await page.keyboard.press(key);
check('by keyboard', await page.evaluate(() => document.activeElement.closest('li')?.dataset.index === '4'));

await page.goBack();
await until('back', () => shows('Nightfall'));
await choose('Nightfall', 'Add to queue');
await until('a folder is queued', async () => (await queued()).length === 2);
await choose('Glass Rivers', 'Play now');
await until('it plays here', async () => (await page.locator('.seek input').inputValue()) > 0);
check('what plays is named', (await page.locator('.playing bdi').textContent()).length > 0);
await page.locator('#queue-button').click();
await until('the queue', async () => (await page.locator('.queued:visible').count()) === 5);
const before = (await queued()).map((item) => item.title);
await page.locator('.queued a').first().focus();
await page.keyboard.press('Alt+ArrowDown');
const after = (await queued()).map((item) => item.title);
check('the queue’s order, by keyboard', before[0] === after[1] && before[1] === after[0]);
const [file] = await Promise.all([page.waitForEvent('download'), page.getByText('Save as M3U8').click()]);
check('saved', file.suggestedFilename() === 'queue.m3u8');
await findings(page, 'queue and player');
await picture(page, 'queue');
await page.reload();
check('the queue survives a reload', (await queued()).length === 5);

await until('mpv can be chosen', () => page.locator('.output option').nth(1).isEnabled());
await page.selectOption('.output select', 'machine');
await page.getByRole('button', { name: 'Queue' }).click();
await page.locator('.queued a').first().click();
const other = await newPage();
await other.addInitScript(() => Object.defineProperty(window, 'localStorage', { get: () => { throw new Error('forbidden'); } }));
await other.goto(address);
await other.selectOption('.output select', 'machine').catch(() => {});
await until('the machine plays, every page shows it', async () => (await other.locator('.seek input').inputValue()) > 0);
const playing = await other.locator('.playing bdi').textContent();
await page.locator('.queued [aria-current] + button').click();
await until('what plays is removed, for every page and the machine', async () => (await other.locator('.playing bdi').textContent()) !== playing
  && (await other.locator('#queue-button').textContent()) === 'Queue 4');
await other.close();
await page.bringToFront();
await page.selectOption('.output select', 'here');

await page.fill('#find-text', 'ber');
await until('a search', () => shows('Größenwahn'));
await findings(page, 'search');
await picture(page, 'search');
await page.fill('#find-text', 'zzzz');
await until('a search that finds nothing', () => shows('Nothing matches'));

await world('stop_server nas');
await until('a server that leaves is told of', () => shows('has left the network'));
await world('start_again');
await until('and is back by itself', async () => !(await shows('has left the network')), 40000);
await world('stop_page');
await until('a program that stops is told of', () => shows('has stopped or can’t be reached'));
await world('start_page');
await until('and is back by itself', async () => !(await shows('can’t be reached')), 20000);

await page.emulateMedia({ colorScheme: 'dark' });
await page.setViewportSize({ width: 390, height: 780 });
await page.goto(address);
await row('Test Music').locator('a').click();
await row('Music').locator('a').click();
await row('Album').locator('a').click();
await until('on a phone', () => shows('Nightfall'));
await choose('Punctuation', 'Add to queue');
await page.waitForTimeout(500);
await findings(page, 'a phone, dark');
await picture(page, 'phone');
await page.locator('#queue-button').click();
await page.getByRole('button', { name: 'Clear' }).press('Escape');
await until('Escape closes the queue', () => page.locator('#queue').isHidden());
await page.keyboard.press('Enter');
await page.getByRole('button', { name: 'Clear' }).click();
await page.getByRole('button', { name: 'Undo' }).click();
await until('nothing lies over what is to be touched', async () => (await queued()).length > 0);

await page.addInitScript(() => Object.defineProperty(navigator, 'languages', { value: ['de-AT', 'en'] }));
await page.goto(address);
await until('in German', () => shows('Medienserver'));
await row('Test Music').locator('a').click();
await row('Music').locator('a').click();
await row('Album').locator('button').click();
await until('what the program says, too', () => shows('Als Nächstes abspielen'));
await findings(page, 'in German');
await finish();
