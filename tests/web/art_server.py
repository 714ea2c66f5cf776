"""Pictures, and things that mean harm instead: art_server.py ADDRESS PORT LOG. Logs each path that is asked for."""
import http.server
import struct
import sys
import zlib

address, port, log = sys.argv[1], int(sys.argv[2]), sys.argv[3]


def png(width, height, colour):
    def chunk(kind, data):
        return struct.pack('>I', len(data)) + kind + data + struct.pack('>I', zlib.crc32(kind + data))
    line = b'\0' + bytes(colour) * width
    packer = zlib.compressobj(9)
    body = b''.join(packer.compress(line) for _ in range(height)) + packer.flush()
    return (b'\x89PNG\r\n\x1a\n' + chunk(b'IHDR', struct.pack('>IIBBBBB', width, height, 8, 2, 0, 0, 0))
            + chunk(b'IDAT', body) + chunk(b'IEND', b''))


places = {'/redirect-port': f'http://{address}:22/', '/redirect-host': 'http://127.0.0.1:8770/',
          '/redirects': '/redirects'}
bodies = {'/svg': b'<svg xmlns="http://www.w3.org/2000/svg"><script>alert(1)</script></svg>',
          '/html': b'<script>alert(1)</script>' * 9, '/fine': png(640, 640, (200, 30, 30))}


class Handler(http.server.BaseHTTPRequestHandler):
    def do_GET(self):
        with open(log, 'a') as file:
            print(self.path, file=file)
        self.send_response(302 if self.path in places else 200)
        self.send_header('Content-Type', 'image/png')
        if self.path in places:
            self.send_header('Location', places[self.path])
        self.end_headers()
        if self.path == '/bomb':
            self.wfile.write(png(20000, 20000, (0, 0, 0)))
        elif self.path == '/endless':
            self.wfile.write(bodies['/fine'])
            while True:
                self.wfile.write(b'\0' * 65536)
        elif self.path.startswith('/art/'):
            number = int(self.path[5:])
            self.wfile.write(png(320, 320, (number % 256, 90, 255 - number % 256)))
        else:
            self.wfile.write(bodies.get(self.path, b''))

    def log_message(self, *_):
        pass


http.server.ThreadingHTTPServer((address, port), Handler).serve_forever()
