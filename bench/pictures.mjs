// pictures.mjs ADDRESS PORT: a media server's covers, 320 pixels wide, ready made: /art/NUMBER.
import http from 'node:http';
import zlib from 'node:zlib';

const [address, port] = process.argv.slice(2);

function chunk(kind, data) {
  const body = Buffer.concat([Buffer.from(kind), data]);
  const [length, sum] = [Buffer.alloc(4), Buffer.alloc(4)];
  length.writeUInt32BE(data.length);
  sum.writeUInt32BE(zlib.crc32(body));
  return Buffer.concat([length, body, sum]);
}

/** A PNG of one colour. */
function picture(red) {
  const size = 320;
  const header = Buffer.from([0, 0, size >> 8, size & 255, 0, 0, size >> 8, size & 255, 8, 2, 0, 0, 0]);
  const line = Buffer.concat([Buffer.alloc(1), Buffer.from(Array(size).fill([red, 90, 255 - red]).flat())]);
  return Buffer.concat([Buffer.from('\x89PNG\r\n\x1a\n', 'latin1'), chunk('IHDR', header),
    chunk('IDAT', zlib.deflateSync(Buffer.concat(Array(size).fill(line)))), chunk('IEND', Buffer.alloc(0))]);
}

const pictures = Array.from({ length: 256 }, (_, red) => picture(red));
http.createServer((request, answer) => {
  answer.writeHead(200, { 'Content-Type': 'image/png' });
  answer.end(pictures[Number(request.url.split('/').pop()) % 256] || pictures[0]);
}).listen(Number(port), address);
