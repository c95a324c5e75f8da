#!/usr/bin/env python3
# SPDX-License-Identifier: BSL-1.0
"""http_server.py PROGRAM [ARGUMENT...]: serves HTTP on a free port of 127.0.0.1, runs the program with the port as
its last argument, and checks what the server received and what the program printed. The exit code is 0 when all
is as expected."""

import json
import socket
import subprocess
import sys
import threading
from http.server import BaseHTTPRequestHandler, ThreadingHTTPServer

received = []
closed = socket.socket()  # bound, but not listening: connections to it are refused
closed.bind(("127.0.0.1", 0))


class Handler(BaseHTTPRequestHandler):
    timeout = 20

    def log_message(self, *_):
        pass

    def answer(self, body, content_type="text/plain;charset=UTF-8", length=None, headers=()):
        self.send_response(200)
        self.send_header("Content-Type", content_type)
        self.send_header("Content-Length", str(len(body) if length is None else length))
        for name, value in headers:
            self.send_header(name, value)
        self.end_headers()
        self.wfile.write(body)

    def receive(self):
        body = self.rfile.read(int(self.headers["Content-Length"]))
        # The parser reads headers as Latin-1; what came over the wire is UTF-8.
        headers = {name: value.encode("latin-1").decode("utf-8") for name, value in self.headers.items()}
        received.append((self.command, self.path, headers, body.decode("utf-8")))
        return body

    def do_GET(self):
        self.receive()
        if self.path == "/":
            self.answer(b"hola", headers=[("X-Repetida", "uno"), ("x-repetida", "dos"),
                                          ("X-Ciudad", "C\u00f3rdoba".encode().decode("latin-1")),
                                          ("X-Closed-Port", str(closed.getsockname()[1]))])
        elif self.path == "/corto":
            self.answer(b"diez bytes", length=100)
        else:
            self.send_error(404)

    def do_POST(self):
        self.answer(self.receive(), self.headers["Content-Type"])


def sections(output):
    """The program's report as {title: lines}."""
    parts = {}
    for part in output.replace("\r\n", "\n").split("== ")[1:]:
        title, *lines = part.rstrip("\n").split("\n")
        parts[title] = lines
    return parts


failures = 0


def check(what, seen, expected):
    global failures
    if seen != expected:
        failures += 1
        print(f"{what}: expected {expected!r}, seen {seen!r}")


def header_lines(lines):
    return dict(line[len("header "):].split("=", 1) for line in lines if line.startswith("header "))


def check_requests(port):
    check("number of requests", len(received), 5)
    order = {"cliente": "\u00cd\u00f1igo N\u00fa\u00f1ez & C\u00eda.", "importe": 1250.75,
             "nota": "dos\r\nl\u00edneas, 10 \u20ac y \U0001f600"}
    method, path, headers, body = received[0]
    check("method and path", (method, path), ("POST", "/pedidos?orden=7"))
    check("the order", json.loads(body), order)
    check("headers of the order", headers,
          {"Accept": "*/*", "Content-Length": str(len(body.encode())), "Content-Type": "application/json;charset=UTF-8",
           "Host": f"127.0.0.1:{port}", "X-Cliente": "N\u00fa\u00f1ez"})
    check("a plain request", received[1],
          ("GET", "/", {"Accept": "*/*", "Content-Length": "0", "Content-Type": "text/plain;charset=UTF-8",
                        "Host": f"127.0.0.1:{port}"}, ""))
    check("the large body", received[2][3], "".join(f"\u00f1\u20ac\U0001f600{i}" for i in range(40000)))
    check("the other paths", [r[1] for r in received[3:]], ["/nada", "/corto"])


def check_output(output):
    parts = sections(output)
    check("sections", list(parts), ["post", "get", "large", "missing", "cut", "refused"])
    states = {title: lines[:2] for title, lines in parts.items()}
    check("states", states,
          {"post": ["OK", "code 0"], "get": ["OK", "code 0"], "large": ["OK", "code 0"],
           "missing": ["WRONG", "code 404"], "cut": ["WRONG", "code 12"], "refused": ["WRONG", "code 12"]})
    body = received[0][3]
    check("body of the first answer", parts["post"][-1], "body " + body)
    check("its length in UTF-16", parts["post"][-2], f"length {len(body.encode('utf-16-le')) // 2}")
    check("its type", header_lines(parts["post"])["Content-Type"], "application/json;charset=UTF-8")
    headers = header_lines(parts["get"])
    check("repeated headers", headers["X-Repetida"], "uno, dos")
    check("a header in UTF-8", headers["X-Ciudad"], "C\u00f3rdoba")
    check("body of the second answer", parts["get"][-1], "body hola")


def main():
    server = ThreadingHTTPServer(("127.0.0.1", 0), Handler)
    port = server.server_address[1]
    threading.Thread(target=server.serve_forever, daemon=True).start()
    done = subprocess.run([*sys.argv[1:], str(port)], stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                          timeout=240, check=False)
    server.shutdown()
    output = done.stdout.decode("utf-8")
    check("exit code", done.returncode, 0)
    try:
        check_requests(port)
        check_output(output)
    except (LookupError, ValueError) as error:
        check("the report", repr(error), "complete")
    if failures:
        print("the program printed:", output, sep="\n")
    print(f"http_server.py: {len(received)} requests, {failures} failures")
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
