#!/usr/bin/env python3
# SPDX-License-Identifier: BSL-1.0
"""mail_server.py PROGRAM [ARGUMENT...]: serves SMTP on a free port of 127.0.0.1, runs the program with the port as
its last argument, and checks the message that came in, read by Python's own parser, against what the program
printed. The exit code is 0 when all is as expected, and 77 where Python has no mail server."""

import email
import email.policy
import email.utils
import html
import json
import re
import subprocess
import sys
import threading
import warnings

REFUSAL = "550 5.1.1 no such mailbox"
received = []  # (sender, recipients, bytes)


def refused(recipient):
    return "rechazado@" in recipient


def serve_with_aiosmtpd():
    from aiosmtpd.controller import Controller

    class Handler:
        async def handle_RCPT(self, _server, _session, envelope, address, _options):
            if refused(address):
                return REFUSAL
            envelope.rcpt_tos.append(address)
            return "250 OK"

        async def handle_DATA(self, _server, _session, envelope):
            received.append((envelope.mail_from, envelope.rcpt_tos, envelope.original_content))
            return "250 OK"

    class FreePort(Controller):
        def _trigger_server(self):  # at start: tries the port that was asked for, and here it was any
            self.port = self.server.sockets[0].getsockname()[1]
            super()._trigger_server()

    controller = FreePort(Handler(), hostname="127.0.0.1", port=0)
    controller.start()
    return controller.port, controller.stop


def serve_with_smtpd():
    with warnings.catch_warnings():
        warnings.simplefilter("ignore", DeprecationWarning)
        import asyncore
        import smtpd

    class Channel(smtpd.SMTPChannel):
        def smtp_RCPT(self, arg):
            if refused(arg or ""):
                self.push(REFUSAL)
            else:
                super().smtp_RCPT(arg)

    class Server(smtpd.SMTPServer):
        channel_class = Channel

        def process_message(self, _peer, mailfrom, rcpttos, data, **_options):
            received.append((mailfrom, rcpttos, data))

    server = Server(("127.0.0.1", 0), None)
    loop = threading.Thread(target=asyncore.loop, kwargs={"timeout": 0.1}, daemon=True)
    loop.start()
    return server.socket.getsockname()[1], lambda: None


def serve():
    for start in (serve_with_aiosmtpd, serve_with_smtpd):
        try:
            return start.__name__, *start()
        except ImportError:
            pass
    print("mail_server.py: neither aiosmtpd nor smtpd is there")
    sys.exit(77)


failures = 0


def check(what, seen, expected):
    global failures
    if seen != expected:
        failures += 1
        print(f"{what}: expected {expected!r}, seen {seen!r}")


def people(field):
    return [(a.display_name, a.addr_spec) for a in field.addresses] if field else []


def lines(text):
    return text.replace("\r\n", "\n").strip("\n")


def check_message(told):
    check("number of messages", len(received), 1)
    sender, recipients, data = received[0]
    check("envelope: sender", sender, "tienda@ruvo.es")
    check("envelope: recipients", sorted(recipients),
          ["ana@ejemplo.es", "oculta@ejemplo.es", "sin-nombre@ejemplo.es", "taro@ejemplo.es"])
    data = data.replace(b"\r\n", b"\n")  # as smtpd has it
    body = data.partition(b"\n\n")[2]
    message = email.message_from_bytes(data, policy=email.policy.default)
    check("defects", [d for part in message.walk() for d in part.defects], [])
    check("From", people(message["From"]), [("José Núñez", "jose@ruvo.es")])
    check("Sender", people(message["Sender"]), [("Tienda «Ruvo»", "tienda@ruvo.es")])
    check("To", people(message["To"]), [("Ana Íñiguez, hija", "ana@ejemplo.es"), ("山田 太郎", "taro@ejemplo.es")])
    check("Cc", people(message["Cc"]), [("Rechazado", "rechazado@ejemplo.es"), ("", "sin-nombre@ejemplo.es")])
    check("blind recipients", [name for name in ("Cco", "Bcc") if message[name]] + re.findall(b"[Oo]culta", data), [])
    check("Subject", message["Subject"], "Factura de año nuevo: 10 €, nº 7")
    check("Date", email.utils.parsedate_to_datetime(message["Date"]).timestamp(), told["message"]["date"])
    check("Message-ID", message["Message-ID"], told["id"])
    check("form of the identifier", bool(re.fullmatch(r"<[0-9A-F-]+@ruvo\.es>", told["id"])), True)
    check("lines beyond the limit of RFC 5321", [line for line in data.splitlines() if len(line) > 998], [])
    check("lines beyond that of its encodings", [line for line in body.splitlines() if len(line) > 76], [])
    check_bodies(message, told)


def check_bodies(message, told):
    page = message.get_body(("html",)).get_content()
    check("the page", lines(page), lines(told["html"]))
    text = html.unescape(page)
    for part in ("<h1>Factura nº 7 de José</h1>", "\n.una línea que empieza por un punto", "\n..y otra por dos",
                 "\n.\n", "Importe: 10 € \U0001f600", "línea muy larga " * 500, "<p>--</p><div>José Núñez<br/>Atención"):
        check(f"the page has {part[:40]!r}", part in text.replace("\r\n", "\n"), True)
    check("heads and bodies", [text.count(tag) for tag in ("<head>", "<title>", "<body>", "</html>")], [1, 0, 1, 1])
    plain = message.get_body(("plain",)).get_content()
    check("the plain text", lines(plain), lines(told["plain"]))
    check("its signature", lines(plain).endswith("\n--\nJosé Núñez\nAtención al cliente"), True)
    check("its markup", "<" in plain, False)


def check_report(told, failed):
    report = told["report"]
    check("outcome", (told["ok"], failed["ok"]), (True, False))
    check("accepted", [entry["email"] for entry in report["accepted"]],
          ["ana@ejemplo.es", "oculta@ejemplo.es", "sin-nombre@ejemplo.es", "taro@ejemplo.es"])
    check("names in the report", report["accepted"][3]["name"], "山田 太郎")
    refusal = {"code": (0xE0000000 | 3000 << 16 | 550), "message": REFUSAL[4:]}
    check("refused", report["refused"][1:],
          [{"address": {"email": "rechazado@ejemplo.es", "name": "Rechazado"}, **refusal}])
    check("without a mail", report["refused"][0]["address"]["email"], "esto no es un correo")
    check("the message to nobody", failed["report"],
          {"accepted": [], "refused": [{"address": {"email": "rechazado@ejemplo.es", "name": ""}, **refusal}]})


def main():
    name, port, stop = serve()
    context, fingerprint = certificate.made()
    more = [str(odd_servers.serve(context)), *([fingerprint] if context else [])]
    done = subprocess.run([*sys.argv[1:], str(port), *more], stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                          timeout=240, check=False)
    stop()
    output = done.stdout.decode("utf-8")
    check("exit code", done.returncode, 0)
    try:
        told = json.loads(output)
        check_message(told["sent"])
        check_report(told["sent"], told["failed"])
        odd_servers.check_all(check, told["met"], context is not None)
    except (LookupError, ValueError) as error:
        check("the report", repr(error), "complete")
    if failures:
        print("the program printed:", output, sep="\n")
    print(f"mail_server.py: {name}, {'with' if context else 'without'} TLS, {len(received)} message, {failures} failures")
    return 1 if failures else 0


if __name__ == "__main__":
    import certificate
    import odd_servers
    sys.exit(main())
