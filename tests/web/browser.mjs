import { mkdtempSync } from 'node:fs';
import { createRequire } from 'node:module';
import { createInterface } from 'node:readline';

const require = createRequire(import.meta.url);
const { chromium } = require('playwright-core');
export const axe = require('fs').readFileSync(require.resolve('axe-core/axe.min.js'), 'utf8');
export const address = process.argv[2];
const flags = ['--no-sandbox', '--disable-gpu', '--disable-quic', '--no-first-run', '--disable-background-networking',
  '--disable-component-update', '--disable-sync', '--autoplay-policy=no-user-gesture-required', '--enable-precise-memory-info',
  '--js-flags=--expose-gc'];
const folder = mkdtempSync(`${process.env.WORLD_DIR || '/tmp'}/browser-`);
export const browser = await chromium.launchPersistentContext(folder,
  { executablePath: '/usr/bin/chromium', args: flags, viewport: { width: 1200, height: 760 }, bypassCSP: false });

let failures = 0;
export function check(what, condition, detail = '') {
  if (!condition) ++failures;
  console.log(`${condition ? 'ok   ' : 'FAIL '} ${what}${condition || !detail ? '' : `: ${detail}`}`);
}
/** Until it is true, as long as a busy machine may need. */
export async function until(what, test, limit = 30000) {
  const end = Date.now() + limit;
  let value = false;
  while (!value && Date.now() < end) {
    value = await test().catch(() => false);
    if (!value) await new Promise((resolve) => setTimeout(resolve, 50));
  }
  check(what, value);
}
const answers = createInterface({ input: process.stdin })[Symbol.asyncIterator]();
/** Something in the world around the browser. */
export async function world(command) {
  console.log(`do ${command}`);
  await answers.next();
}
export async function newPage() {
  const page = await browser.newPage();
  page.on('pageerror', (error) => check('the page’s scripts', false, error.stack));
  page.on('console', (said) => {
    if (/Content Security Policy|TrustedHTML/.test(said.text())) check('the page’s policy', false, said.text());
  });
  return page;
}
export async function picture(page, name) {
  if (process.env.ORKA_PICTURES) await page.screenshot({ path: `${process.env.ORKA_PICTURES}/${name}.png` });
}
export async function findings(page, where) {
  await page.evaluate(axe);
  const { violations } = await page.evaluate(() => window.axe.run());
  check(`axe: ${where}`, !violations.length, violations.map((one) => `${one.id}: ${one.nodes[0].html}`).join('; '));
}
export async function finish() {
  await browser.close();
  process.exit(failures ? 1 : 0);
}
