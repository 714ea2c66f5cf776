// page.mjs ADDRESS PROCESS PLACE KIND…: measures the program behind the page; a line {"name","value"} for each figure.
import { readFileSync } from 'node:fs';
import http from 'node:http';
import net from 'node:net';

const [address, program, place, ...kinds] = process.argv.slice(2);
const url = new URL(address);
const figure = (name, value) => console.log(JSON.stringify({ name: `page_${name}`, value }));
const pause = (milliseconds) => new Promise((resolve) => setTimeout(resolve, milliseconds));
const megabytes = () => Number(/VmRSS:\s+(\d+)/.exec(readFileSync(`/proc/${program}/status`, 'utf8'))[1]) / 1024;
const at = (times, share) => times.sort((a, b) => a - b)[Math.min(times.length - 1, Math.floor(times.length * share))];

/** The answer to a GET, and how long it took, in milliseconds. */
const get = (path, agent) => new Promise((resolve, reject) => {
  const begun = performance.now();
  http.get({ host: url.hostname, port: url.port, path, agent, timeout: 20000 }, (answer) => {
    const parts = [];
    answer.on('data', (part) => parts.push(part));
    answer.on('end', () => resolve({
      status: answer.statusCode, headers: answer.headers, body: Buffer.concat(parts), took: performance.now() - begun }));
  }).on('error', reject).on('timeout', function stop() { this.destroy(new Error('no answer in 20 s')); });
});
const browser = () => new http.Agent({ keepAlive: true, maxSockets: 6 });
const rowsAt = (path, first, agent) => get(
  `/api/rows?path=${encodeURIComponent(path)}&first=${first}&last=${first + 49}&roles=path,title,type,icon`, agent);
/** The times of so many requests for 50 rows on one connection. */
async function timesOf(path, count, agent = browser()) {
  const times = [];
  for (let i = 0; i < count; ++i) times.push(await rowsAt(path, (i * 37) % 900, agent));
  agent.destroy();
  return times;
}

const measures = {
  /** 50 rows, over the time that the worker takes for them. */
  async rows(list) {
    const ratios = (await timesOf(list, 300)).map(({ headers, took }) => took / /worker;dur=([\d.]+)/.exec(headers['server-timing'])[1]);
    figure('rows_over_worker', at(ratios, 0.5));
  },
  /** Memory with 50 open pages, each with rows before it and listening for servers. */
  async pages(list) {
    const open = Array.from({ length: 50 }, () => ({ agent: browser(), events: net.connect(url.port, url.hostname) }));
    for (const { agent, events } of open) {
      events.write(`GET /api/servers HTTP/1.1\r\nHost: ${url.host}\r\n\r\n`);
      events.on('data', () => {});
      await rowsAt(list, 0, agent);
    }
    await pause(1000);
    figure('memory_50_pages', megabytes());
    for (const { agent, events } of open) { agent.destroy(); events.destroy(); }
  },
  /** What others wait, while 100 clients ask for 1,000 rows and don't read them, over what they wait else; memory. */
  async slow(list) {
    const alone = at((await timesOf(list, 100)).map(({ took }) => took), 0.5);
    const slow = Array.from({ length: 100 }, () => {
      const socket = net.connect(url.port, url.hostname);
      socket.pause();
      socket.on('error', () => {});
      socket.write(`GET /api/rows?path=${encodeURIComponent(list)}&first=0&last=999 HTTP/1.1\r\nHost: ${url.host}\r\n\r\n`);
      return socket;
    });
    await pause(10000);
    figure('others_beside_slow_clients', at((await timesOf(list, 100)).map(({ took }) => took), 0.5) / alone);
    figure('memory_100_slow_clients', megabytes());
    for (const socket of slow) socket.destroy();
  },
  /** 50 clients scroll: 50 rows and 12 covers about once a second. */
  async scroll(list, seconds) {
    const rowTimes = [];
    const coverTimes = [];
    let errors = 0;
    const expect = async (answer, times) => {
      const { status, took, body } = await answer;
      if (status !== 200) throw new Error(`${status}: ${body}`);
      times.push(took);
      return body;
    };
    const end = Date.now() + seconds * 1000;
    const client = async () => {
      const agent = browser();
      while (Date.now() < end) {
        await (async () => {
          const { rows } = JSON.parse(await expect(rowsAt(list, Math.floor(Math.random() * 99950), agent), rowTimes));
          if (rows.length !== 50) throw new Error(`${rows.length} rows`);
          await Promise.all(rows.slice(0, 12).map(({ icon }) => expect(
            get(`/proxy/${encodeURIComponent(Buffer.from(icon).toString('base64'))}?w=160`, agent), coverTimes)));
        })().catch((error) => { if (errors++ === 0) console.error(`The first error: ${error.message}`); });
        await pause(500 + Math.random() * 1000);
      }
      agent.destroy();
    };
    await Promise.all(Array.from({ length: 50 }, client));
    figure('scroll_requests', rowTimes.length + coverTimes.length);
    figure('scroll_errors', errors);
    figure('scroll_rows_99th', at(rowTimes, 0.99));
    figure('scroll_covers_99th', at(coverTimes, 0.99));
    figure('memory_scrolled', megabytes());
  },
};

/** The path of a place named by titles; the media server may take a while to show up. */
async function pathOf(place) {
  const end = Date.now() + 20000;
  for (;;) {
    let path = 'upnp:';
    for (const title of place.split('/'))
      path &&= JSON.parse((await rowsAt(path, 0)).body).rows.find((row) => row.title === title)?.path;
    if (path || Date.now() > end) return path;
    await pause(200);
  }
}

const list = await pathOf(place);
if (!list) throw new Error(`There is no ${place}.`);
for (const kind of kinds) {
  const [name, argument] = kind.split('=');
  await measures[name](list, Number(argument));
}
process.exit(0);
