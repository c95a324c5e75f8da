# SPDX-License-Identifier: BSL-1.0
"""A mail server that is well or badly behaved, as the client's name in EHLO calls for."""

import base64
import socketserver
import threading
import time

from mail_server import REFUSAL, refused

EXTENSIONS = {  # what is offered behind the greeting, by the client's name
    "piped": ["PIPELINING", "8BITMIME"],
    "piped8": ["PIPELINING", "8bitmime", "smtputf8"],
    "slow": ["SIZE 1000"],
    "slow8": ["8BITMIME"],
    "login": ["AUTH PLAIN LOGIN"],
    "loginold": ["AUTH LOGIN"],
    "nologin": ["AUTH CRAM-MD5"],
    "clear": ["AUTH PLAIN"],
    "early": ["STARTTLS"],
    "tls": ["STARTTLS"],
}
seen = {}  # by name: the commands of each read, then the content


class Handler(socketserver.BaseRequestHandler):
    context = None
    name = ""

    def say(self, text):
        self.request.sendall(text.encode() + b"\r\n")

    def handle(self):
        self.buffer = b""
        self.say("220 here")
        try:
            while self.command(self.line()):
                pass
        except (OSError, EOFError):
            pass

    def line(self):
        while b"\r\n" not in self.buffer:
            got = self.request.recv(1 << 16)
            if not got:
                raise EOFError
            self.buffer += got
            seen.setdefault(self.name, []).append(got.decode())
        line, _, self.buffer = self.buffer.partition(b"\r\n")
        return line.decode()

    def greet(self, verb, name):
        """What only a greeting can do wrong."""
        self.name = name.removesuffix(".example")
        if self.name == "rubbish":
            self.say("\x16\x03\x01 hola")
        elif self.name == "endless":
            self.say("250-" + "x" * 100000)
        elif self.name == "silent":
            time.sleep(4)
        elif self.name == "helo" and verb == "EHLO":
            self.say("502 no")
        else:
            offered = ["here", *EXTENSIONS.get(self.name, [])]
            if self.name == "tls" and self.secure:
                offered = ["here", "AUTH PLAIN", "PIPELINING"]
            for n, each in enumerate(offered):
                self.say(f"250{' ' if n == len(offered) - 1 else '-'}{each}")

    secure = False

    def command(self, line):
        verb, _, rest = line.partition(" ")
        if verb in ("EHLO", "HELO"):
            self.greet(verb, rest)
        elif verb == "STARTTLS":
            self.request.sendall(b"220 go\r\n" + (b"250 injected\r\n" if self.name == "early" else b""))
            if self.name == "tls":
                self.request = self.context.wrap_socket(self.request, server_side=True)
                self.secure = True
        elif verb == "AUTH":
            self.log_in(rest)
        elif verb == "RCPT":
            self.say(REFUSAL if refused(rest) or self.name == "none" else "250 ok")
        elif verb == "DATA":
            return self.data()
        else:
            self.say("250 ok")
        return verb != "QUIT"

    def log_in(self, rest):
        kind, _, given = rest.partition(" ")
        if kind == "LOGIN":
            parts = []
            for question in (b"Username:", b"Password:"):
                self.say("334 " + base64.b64encode(question).decode())
                parts.append(base64.b64decode(self.line()).decode())
        else:
            parts = base64.b64decode(given).decode().split("\0")[1:]
        self.say("235 ok" if parts == ["ana", "contrase\u00f1a"] else "535 who?")

    def data(self):
        if self.name == "cut":
            return False
        self.say("354 go")
        if self.name == "cutdata":
            self.line()
            return False
        lines = []
        while (line := self.line()) != ".":
            lines.append(line.removeprefix("."))
        seen[self.name].append("\n".join(lines))
        self.say("554 too late" if self.name == "late" else "250 ok")
        return True


class Server(socketserver.ThreadingTCPServer):
    daemon_threads = True

    def handle_error(self, *_):
        pass  # clients hang up on what they refuse


def serve(context):
    Handler.context = context
    server = Server(("127.0.0.1", 0), Handler)
    threading.Thread(target=server.serve_forever, daemon=True).start()
    return server.server_address[1]


def check_all(check, met, with_tls):
    """What became of the messages, by the client's name."""
    good, ana, nobody = ["ana@ejemplo.es"], ["ana@ejemplo.es"], []
    refusal = ["rechazado@ejemplo.es " + REFUSAL[4:]]
    late = ["ana@ejemplo.es too late"]
    expected = {
        "piped": (good, refusal, ""), "slow": (good, refusal, ""), "helo": (good, refusal, ""),
        "piped8": (ana + ["\u00f1and\u00fa@ejemplo.es"], refusal, ""), "login": (good, refusal, ""),
        "loginold": (good, refusal, ""), "late": (nobody, refusal + late, "too late"),
        "none": (nobody, ["ana@ejemplo.es " + REFUSAL[4:]] + refusal, "no recipient was accepted"),
        "cut": (nobody, refusal, "the stream ended within a line"),
        "cutdata": (nobody, refusal, "the stream ended within a line"),
        "slow8": (nobody, nobody, "Argumento incorrecto: To: \u00f1and\u00fa@ejemplo.es"),
        "rubbish": "that is no mail server", "endless": "a line is too long", "silent": "the other side is silent",
        "nologin": "the server offers no login that is known here", "clear": "no login without TLS",
        "notls": "the server offers no TLS", "early": "something came before TLS"}
    if with_tls:
        expected["tls"] = (good, refusal, "")
    outcomes = {}
    for name, told in met.items():
        if "thrown" in told:
            outcomes[name] = told["thrown"]
        else:
            report = told["report"]
            outcomes[name] = ([entry["email"] for entry in report["accepted"]],
                              [f"{entry['address']['email']} {entry['message']}" for entry in report["refused"]],
                              told["failure"])
    for name in {*expected, *outcomes}:
        seen_one, wanted = outcomes.get(name), expected.get(name)
        if name in ("cut", "cutdata") and isinstance(seen_one, tuple):  # an end or an error, as the system has it
            seen_one = (*seen_one[:2], wanted[2] if seen_one[2] else "")
        check(name, seen_one, wanted)
    afterwards = {name: told["second"] for name, told in met.items() if told.get("second", "OK") != "OK"}
    check("afterwards", afterwards, {
        **dict.fromkeys(["cut", "cutdata"], "the session broke before"),
        **dict.fromkeys(["slow", "helo", "late", "none", "login", "loginold", *(["tls"] if with_tls else [])],
                        "the server takes ASCII only")})
    check("odd messages", met["piped"]["odd"],
          "Argumento incorrecto: jose@ruvo.es> SIZE=1|a line of the message does not end with CRLF")
    check_seen(check)


def check_seen(check):
    def commands(name):
        return [part.split("\r\n")[:-1] for part in seen[name] if part.startswith(("MAIL", "RCPT"))]

    mail, ana, other = "MAIL FROM:<jose@ruvo.es>", "RCPT TO:<ana@ejemplo.es>", "RCPT TO:<rechazado@ejemplo.es>"
    check("in one piece", commands("piped")[0], [mail, ana, other])
    check("one by one", commands("slow")[:3], [[mail], [ana], [other]])
    check("beyond ASCII", commands("piped8")[0], [mail + " BODY=8BITMIME SMTPUTF8", ana, other, "RCPT TO:<\u00f1and\u00fa@ejemplo.es>"])
    check("points and bytes", seen["piped"][-1], "Subject: a\n\n.\n..\n\u00f1")
    check("announced", commands("piped")[-1][0], mail + " BODY=8BITMIME")
    check("no password", [name for name in ("clear", "nologin", "notls") if "AUTH" in str(seen.get(name))], [])
