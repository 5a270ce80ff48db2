#!/usr/bin/env python3
"""A web server for tests, on 127.0.0.1 only: http_server.py [CERTIFICATE KEY]

Prints the number of its port, then one line "PATH STATUS" for every answer, before the answer is sent. With a
certificate it speaks TLS. It ends when its standard input is closed, after LIFETIME seconds or after MAX_REQUESTS.
"""

import base64
import hashlib
import http.server
import os
import re
import ssl
import sys
import threading
import time

LIFETIME = 240
MAX_REQUESTS = 1000
MAX_CHALLENGES = 12  # of a realm that changes with each; then the server loses its patience

USER = "gisela"
PASSWORD = "s3cret-passphrase"

BODY = bytes(range(256)) * 4
PIECES = [b"first;", b"second;", b"", b"third\r\n\0"]
BIG_BLOCK = bytes(i * 7 % 251 for i in range(1 << 20))
BIG_BLOCKS = 100
SLOW_STEP = 0.05


def md5(*parts):
    return hashlib.md5(":".join(parts).encode()).hexdigest()


class Handler(http.server.BaseHTTPRequestHandler):
    protocol_version = "HTTP/1.1"
    disable_nagle_algorithm = True
    requests = 0
    challenges = 0
    lock = threading.Lock()

    def log_message(self, *_):
        pass

    def send_response(self, code, message=None):
        with self.lock:
            print(self.path, code, flush=True)
        super().send_response(code, message)

    def answer(self, body=b"", status=200, **headers):
        self.send_response(status)
        for name, value in headers.items():
            self.send_header(name.replace("_", "-"), value)
        self.send_header("Content-Length", str(len(body)))
        self.end_headers()
        self.wfile.write(body)

    def do_GET(self):
        with self.lock:
            Handler.requests += 1
            if Handler.requests > MAX_REQUESTS:
                os._exit(1)
        name, *arguments = self.path.strip("/").split("/")
        getattr(self, "get_" + name.replace("-", "_"))(*arguments)

    # Bodies

    def get_body(self):
        self.answer(BODY)

    def get_any(self, _):
        self.answer(BODY)

    def get_empty(self):
        self.answer()

    def get_status(self, code):
        self.answer(b"the page of status " + code.encode(), int(code))

    def get_headers(self):
        lines = sorted(f"{name}: {value}" for name, value in self.headers.items())
        self.answer("\n".join(lines).encode())

    def get_until_close(self):
        self.send_response(200)
        self.send_header("Connection", "close")
        self.end_headers()
        self.wfile.write(BODY)
        self.close_connection = True

    def get_chunked(self, end="whole"):
        self.send_response(200)
        self.send_header("Transfer-Encoding", "chunked")
        self.end_headers()
        for piece in filter(None, PIECES):
            self.wfile.write(b"%x\r\n%s\r\n" % (len(piece), piece))
            self.wfile.flush()
        if end == "whole":
            self.wfile.write(b"0\r\n\r\n")
        else:
            self.close_connection = True

    def get_cut_off(self):
        self.send_response(200)
        self.send_header("Content-Length", str(2 * len(BODY)))
        self.end_headers()
        self.wfile.write(BODY)
        self.close_connection = True

    def get_slow(self):
        self.send_response(200)
        self.send_header("Content-Length", "20")
        self.end_headers()
        for digit in range(20):
            self.wfile.write(b"%d" % (digit % 10))
            self.wfile.flush()
            time.sleep(SLOW_STEP)

    def get_big(self):
        self.send_response(200)
        self.send_header("Content-Length", str(len(BIG_BLOCK) * BIG_BLOCKS))
        self.end_headers()
        for _ in range(BIG_BLOCKS):
            self.wfile.write(BIG_BLOCK)

    def get_endless(self):
        self.send_response(200)
        self.end_headers()
        self.close_connection = True
        while True:
            self.wfile.write(BIG_BLOCK)

    def get_stall(self):
        """Sends a piece, then nothing until the client goes away."""
        self.send_response(200)
        self.send_header("Content-Length", "1000")
        self.end_headers()
        self.wfile.write(b"a piece")
        self.wfile.flush()
        self.connection.recv(1)
        with self.lock:
            print(self.path, "gone", flush=True)
        self.close_connection = True

    def get_garbage(self):
        print(self.path, "none", flush=True)
        self.wfile.write(b"this is not HTTP\r\n\r\n")
        self.close_connection = True

    # Redirections

    def redirect(self, location, status=302):
        self.answer(b"this way", status, Location=location)

    def get_redirect(self, kind, argument=""):
        host, port = self.server.server_address
        if kind == "absolute":
            self.redirect(f"http://{host}:{port}/body", int(argument))
        elif kind == "relative":
            self.redirect("../../body")
        elif kind == "chain":
            self.redirect("/body" if argument == "1" else f"/redirect/chain/{int(argument) - 1}")
        elif kind == "loop":
            self.redirect("/redirect/loop")
        elif kind == "file":
            self.redirect("file:///etc/hostname")

    # Authentication

    def challenge(self, scheme, realm, nonce=""):
        if scheme == "digest":
            value = f'Digest realm="{realm}", qop="auth", algorithm=MD5, nonce="{nonce}", opaque="0"'
        else:
            value = f'Basic realm="{realm}"'
        self.answer(b"please say who you are", 401, WWW_Authenticate=value)

    def basic_matches(self):
        expected = "Basic " + base64.b64encode(f"{USER}:{PASSWORD}".encode()).decode()
        return self.headers.get("Authorization") == expected

    def digest_matches(self, realm, nonce):
        header = self.headers.get("Authorization", "")
        fields = dict(re.findall(r'(\w+)="?([^",]*)"?', header.partition(" ")[2]))
        if not header.startswith("Digest ") or fields.get("nonce") != nonce:
            return False
        answer = md5(md5(USER, realm, PASSWORD), nonce, fields.get("nc", ""), fields.get("cnonce", ""), "auth",
                     md5("GET", self.path))
        return fields.get("response") == answer

    def get_basic(self, *_):
        if self.basic_matches():
            self.answer(BODY)
        else:
            self.challenge("basic", "the workshop")

    def get_digest(self, *_):
        if self.digest_matches("the workshop", "0123456789abcdef"):
            self.answer(BODY)
        else:
            self.challenge("digest", "the workshop", "0123456789abcdef")

    def get_changing(self, scheme):
        """Never satisfied, and asks in the name of another realm each time."""
        with self.lock:
            Handler.challenges = count = Handler.challenges % (MAX_CHALLENGES + 1) + 1
        if count > MAX_CHALLENGES:
            self.answer(b"enough", 403)
        else:
            self.challenge(scheme, f"realm {count}", f"{count:016x}")


def end_with_standard_input():
    sys.stdin.buffer.read()
    os._exit(0)


def main():
    server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), Handler)
    server.daemon_threads = True
    if len(sys.argv) == 3:
        context = ssl.SSLContext(ssl.PROTOCOL_TLS_SERVER)
        context.load_cert_chain(sys.argv[1], sys.argv[2])
        server.socket = context.wrap_socket(server.socket, server_side=True)
    server.handle_error = lambda *_: None  # clients that go away are part of the tests
    threading.Thread(target=end_with_standard_input, daemon=True).start()
    watchdog = threading.Timer(LIFETIME, os._exit, [1])
    watchdog.daemon = True
    watchdog.start()
    print(server.server_address[1], flush=True)
    server.serve_forever()


if __name__ == "__main__":
    main()
