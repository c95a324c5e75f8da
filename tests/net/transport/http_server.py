#!/usr/bin/env python3
# SPDX-License-Identifier: BSL-1.0
"""http_server.py PROGRAM [ARGUMENT...]: serves HTTP on a free port of 127.0.0.1, runs the program with the port as
its last argument, and checks what the server received and what the program printed. Where the program knows TLS and
openssl makes a certificate, it serves that, too. The exit code is 0 when all is as expected."""

import json
import socket
import subprocess
import sys
import threading
import time
from http.server import BaseHTTPRequestHandler, ThreadingHTTPServer

import certificate

received = []
closed = socket.socket()  # bound, but not listening: connections to it are refused
closed.bind(("127.0.0.1", 0))
secure = {"port": "", "certificate": ""}
elsewhere = 0  # the port of a second server

HEAD = b"HTTP/1.1 200 OK\r\n"
CHUNKS = HEAD + b"Transfer-Encoding: chunked\r\n\r\n"
RAW = {  # what is sent as it stands
    "/trozos": CHUNKS + b"5;a=b\r\nhola \r\n00b\r\nque\r\ntal 12\r\n0\r\nX-Fin: 1\r\n\r\nbehind",
    "/hasta-el-fin": HEAD + b"\r\nup to the end",
    "/latin": HEAD + b"Content-Type: text/plain; charset=ISO-8859-1\r\nContent-Length: 4\r\n\r\n\xf1and",
    "/antes": b"HTTP/1.1 103 Early Hints\r\nX-Early: 1\r\n\r\nHTTP/1.1 100 \r\n\r\n" + HEAD +
              b"X-Folded: a\r\n \tb\r\nContent-Length: 2\r\n\r\nok",
    "/corto": HEAD + b"Content-Length: 100\r\n\r\ndiez bytes",
    "/trozo-corto": CHUNKS + b"ff\r\nabc",
    "/cabeza-corta": HEAD + b"Content-Le",
    "/basura": b"\x00\xff\x15\x03\x01 no es HTTP\r\n\r\n" * 50,
    "/dos": HEAD + b"Content-Length: 2\r\nContent-Length: 3\r\n\r\nabc",
    "/ambos": CHUNKS[:-2] + b"Content-Length: 3\r\n\r\n0\r\n\r\n",
    "/largo": CHUNKS + b"3E9\r\n" + b"x" * 1001 + b"\r\n0\r\n\r\n",
    "/cabeza": HEAD + b"X-Largo: " + b"x" * 70000 + b"\r\n\r\n",
}


class Handler(BaseHTTPRequestHandler):
    timeout = 20

    def log_message(self, *_):
        pass

    def answer(self, body, content_type="text/plain;charset=UTF-8", headers=()):
        self.send_response(200)
        self.send_header("Content-Type", content_type)
        self.send_header("Content-Length", str(len(body)))
        for name, value in headers:
            self.send_header(name, value)
        self.end_headers()
        if self.command != "HEAD":
            self.wfile.write(body)

    def receive(self):
        body = self.rfile.read(int(self.headers.get("Content-Length", "0")))
        # The parser reads headers as Latin-1; what came over the wire is UTF-8.
        headers = {name: value.encode("latin-1").decode("utf-8") for name, value in self.headers.items()}
        received.append((self.command, self.path, headers, body.decode("utf-8")))
        return body

    def redirect(self, code, location):
        self.send_response(code)
        self.send_header("Location", location)
        self.end_headers()

    def do_GET(self):
        body = self.receive()
        path = self.path.partition("?")[0]
        if path == "/":
            self.answer(b"hola", headers=[("X-Repetida", "uno"), ("x-repetida", "dos"),
                                          ("Set-Cookie", "a=1; Path=/"), ("set-cookie", "b=2"),
                                          ("X-Ciudad", "C\u00f3rdoba".encode().decode("latin-1")),
                                          ("X-Closed-Port", str(closed.getsockname()[1])),
                                          ("X-Secure-Port", secure["port"]), ("X-Certificate", secure["certificate"])])
        elif path in RAW:
            self.wfile.write(RAW[path])
            self.close_connection = True
        elif path == "/a/mover":
            self.redirect(int(self.path.partition("?")[2]), "../x/../eco?q=1#there")
        elif path == "/a/otro":
            self.redirect(302, f"http://127.0.0.1:{elsewhere}/eco")
        elif path == "/circulo":
            self.redirect(301, "circulo")
        elif path == "/mudo":
            time.sleep(4)
        elif path == "/eco":
            self.answer(body or b"empty", self.headers.get("Content-Type", "text/plain"))
        else:
            self.send_error(404)

    do_HEAD = do_GET

    def do_POST(self):
        if self.path.startswith("/a/"):
            self.do_GET()
        else:
            self.answer(self.receive(), self.headers["Content-Type"])


class SecureHandler(Handler):
    def do_GET(self):
        self.answer(b"segura " * 9000)


class QuietServer(ThreadingHTTPServer):
    def handle_error(self, *_):
        pass  # clients hang up on what they refuse


def serve(handler, context=None):
    server = QuietServer(("127.0.0.1", 0), handler)
    if context:
        server.socket = context.wrap_socket(server.socket, server_side=True)
    threading.Thread(target=server.serve_forever, daemon=True).start()
    return server.server_address[1]


def serve_securely():
    context, secure["certificate"] = certificate.made()
    if context:
        secure["port"] = str(serve(SecureHandler, context))


def sections(output):
    """The program's report as {title: lines}."""
    parts = {}
    for part in output.replace("\r", "").split("== ")[1:]:
        title, *lines = part.rstrip("\n").split("\n")
        parts[title] = lines
    return parts


failures = 0


def check(what, seen, expected):
    global failures
    if seen != expected:
        failures += 1
        print(f"{what}: expected {expected!r}, seen {seen!r}")


def lines_of(lines, kind):
    return [line[len(kind) + 1:] for line in lines if line.startswith(kind + " ")]


def check_requests(port):
    order = {"cliente": "\u00cd\u00f1igo N\u00fa\u00f1ez & C\u00eda.", "importe": 1250.75,
             "nota": "dos\r\nl\u00edneas, 10 \u20ac y \U0001f600"}
    method, path, headers, body = received[0]
    check("method and path", (method, path), ("POST", "/pedidos?orden=7"))
    check("the order", json.loads(body), order)
    always = {"Accept": "*/*", "Connection": "close", "Host": f"127.0.0.1:{port}"}
    check("headers of the order", headers,
          {**always, "Content-Length": str(len(body.encode())), "Content-Type": "application/json;charset=UTF-8",
           "X-Cliente": "N\u00fa\u00f1ez"})
    check("the large body", received[1][3], "".join(f"\u00f1\u20ac\U0001f600{i}" for i in range(40000)))
    plain = {**always, "Content-Type": "text/plain;charset=UTF-8"}
    check("a plain request", received[2], ("GET", "/", plain, ""))
    secret = {"Authorization": "Bearer secret"}
    moved = [(r[0], r[1], r[2], r[3]) for r in received if r[1] == "/eco?q=1"]
    check("redirects", moved, [("GET", "/eco?q=1", {**always, **secret}, ""),
                               ("POST", "/eco?q=1", {**plain, **secret, "Content-Length": "6"}, "a body")])
    away = [r for r in received if r[2]["Host"] == f"127.0.0.1:{elsewhere}"]
    check("another server", [r[2].get("Authorization") for r in away], [None])
    check("the circle", [r[1] for r in received].count("/circulo"), 6)


def check_output(output):
    parts = sections(output)
    bodies = {title: lines_of(lines, "body")[0] for title, lines in parts.items() if lines[0] == "OK"}
    secure_bodies = [bodies.pop(title) for title in list(bodies) if title.startswith("secure")]
    if secure["port"]:
        check("secure", (secure_bodies, len([title for title in parts if title.startswith("secure")])), (["segura " * 9000], 3))
    check("what is well", bodies,
          {"post": received[0][3], "large": "", "get": "hola", "head": "", "chunks": "hola que",
           "to the end": "up to the end", "latin": "\u00f1and", "interim": "ok", "moved": "empty", "kept": "a body",
           "elsewhere": "empty"})
    reasons = {title: lines_of(lines, "reason")[0] for title, lines in parts.items() if lines[0] == "WRONG"}
    refused = reasons.pop("refused")
    check("refused", refused.startswith("no connection to 127.0.0.1:"), True)
    check("what is wrong", {title: reason for title, reason in reasons.items() if not title.startswith("secure")},
          {"split": "Argumento incorrecto: X-Split", "missing": "404 Not Found", "circle": "too many redirects",
           "cut": "the stream ended too early", "cut chunk": "the stream ended too early",
           "cut head": "the stream ended too early", "rubbish": "no status line", "two lengths": "two lengths",
           "both lengths": "a length beside chunks", "too long": "the body is too long",
           "endless head": "the head is too long", "silent": "the other side is silent"})
    check("its length", lines_of(parts["post"], "length"), [str(len(received[0][3].encode()))])
    check("the length of chunks", lines_of(parts["chunks"], "length"), [str(len("hola que\r\ntal 12"))])
    headers = lines_of(parts["get"], "header")
    check("repeated headers", [h for h in headers if h.startswith("X-Re")], ["X-Repetida=uno, dos"])
    check("a header in UTF-8", "X-Ciudad=C\u00f3rdoba" in headers, True)
    check("fields apart", [f for f in lines_of(parts["get"], "field") if "repetida" in f.lower()],
          ["X-Repetida=uno", "x-repetida=dos"])
    check("cookies apart", (lines_of(parts["get"], "cookie"), [h for h in headers if h.lower().startswith("set-")]),
          (["a=1; Path=/", "b=2"], []))
    check("a folded field", lines_of(parts["interim"], "field"), ["X-Folded=a b", "Content-Length=2"])


def main():
    global elsewhere
    port, elsewhere = serve(Handler), serve(Handler)
    serve_securely()
    done = subprocess.run([*sys.argv[1:], str(port)], stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                          timeout=240, check=False)
    output = done.stdout.decode("utf-8")
    check("exit code", done.returncode, 0)
    try:
        check_requests(port)
        check_output(output)
    except (LookupError, ValueError) as error:
        check("the report", repr(error), "complete")
    if failures:
        print("the program printed:", output[:20000], sep="\n")
    print(f"http_server.py: {len(received)} requests, {'with' if secure['port'] else 'without'} TLS, {failures} failures")
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
