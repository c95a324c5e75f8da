#!/usr/bin/env python3
# SPDX-License-Identifier: BSL-1.0
"""demo_servers.py [WRAPPER] PROGRAM FILE...: serves HTTP and SMTP on free ports of 127.0.0.1, posts a form to the
former, and runs the demo with both servers on the documents; then without them, on settings that somebody wrote.
The exit code is the demo's; where what it printed, what the servers received or what it stored is not what the
form, the orders and the settings call for, it is 1."""

import email
import email.policy
import io
import json
import pathlib
import re
import socketserver
import subprocess
import sys
import tempfile
import threading
import urllib.parse
import urllib.request
import zipfile
from http.server import BaseHTTPRequestHandler, ThreadingHTTPServer

FORM = [("cliente", "Ñandú & Cía."), ("nota", "dos\r\nlíneas = 10 €"), ("nota", ""), ("Nota", "+1%")]
# Settings as people write them, and what the demo is to show of them.
SETTINGS = """# Caja 3: no tocar sin avisar\r
[Pedidos]\r
; el de Canarias\r
  IVA =  7   \r
\r
[remitente]\r
nombre="Tienda ; 2"\r
[ultimo]\r
; lo apunta el programa\r
Pedido   = ninguno\r
# fin"""
SHOWN = ["envio.http =  («programa»)", "remitente.nombre = Tienda ; 2 («fichero»)", "pedidos.iva = 7 («fichero»)",
         "pedidos.plazo_dias = 9 («argumentos»)", "ultimo.pedido = ninguno («fichero»)"]
orders, forms, mails = [], [], []


class Web(BaseHTTPRequestHandler):
    def log_message(self, *_):
        pass

    def answer(self, body, kind):
        self.send_response(200)
        self.send_header("Content-Type", kind)
        self.send_header("Content-Length", str(len(body)))
        self.end_headers()
        self.wfile.write(body)

    def do_POST(self):
        body = self.rfile.read(int(self.headers["Content-Length"]))
        if self.path == "/pedidos":
            orders.append(json.loads(body))
            self.answer(f"pedido n.º {len(orders)}".encode(), "text/plain; charset=UTF-8")
        else:
            forms.append((body, self.headers["Content-Type"]))
            self.answer(b"", "text/plain")

    def do_GET(self):
        self.answer(*forms[0])


class Mail(socketserver.StreamRequestHandler):
    """As little as a client needs that keeps to the rules."""

    def handle(self):
        self.say("220 here")
        while line := self.rfile.readline().decode().strip():
            if line == "DATA":
                self.say("354 go on")
                lines = []
                while (each := self.rfile.readline()) not in (b".\r\n", b""):
                    lines.append(each.removeprefix(b"."))
                mails.append(email.message_from_bytes(b"".join(lines), policy=email.policy.default))
            self.say("221 bye" if line == "QUIT" else "250 ok")

    def say(self, text):
        self.wfile.write(text.encode() + b"\r\n")


def unpacked(mail):
    """The answer that the mail brings along in an archive."""
    archive = next(part for part in mail.iter_attachments() if part.get_filename().endswith(".zip"))
    with zipfile.ZipFile(io.BytesIO(archive.get_content())) as files:
        return json.loads(files.read("respuesta.json"))


def serve(server):
    threading.Thread(target=server.serve_forever, daemon=True).start()
    return server.server_address[1]


def run(command, *arguments):
    done = subprocess.run([*command, *arguments], stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, timeout=120,
                          check=False)
    return done.returncode, done.stdout.decode("utf-8").replace("\r", "")


def settings_faults(command, option, documents, file, last):
    """What is wrong with the settings that a run has written, and with what two more make of others."""
    written = file.read_text(encoding="utf-8")
    print(written)
    faults = [] if f"el último pedido que atendió\npedido={last}\n" in written else ["the settings written"]
    file.write_bytes(SETTINGS.encode())
    _, output = run(command, option, "--pedidos.plazo_dias=9", *documents)
    faults += [line for line in SHOWN if f"  {line}\n" not in output]
    if mails and "\nFrom: Tienda ; 2 <almacen@example.org>\n" not in output:
        faults.append("the sender")
    kept, stored = file.read_bytes().decode(), SETTINGS.replace("ninguno", last)
    if re.sub("fecha = [0-9-]+\r\n", "", kept, count=1) != stored or kept == stored:
        faults.append("settings stored as " + kept)
    code, output = run(command, option, "--pedidos.iba=4", "--pedidos.iva=poco", *documents)
    if code != 2 or "no se conoce  pedidos.iba" not in output or "no sirve      pedidos.iva" not in output:
        faults.append("settings of no use: " + output)
    return faults


def main():
    web = f"http://127.0.0.1:{serve(ThreadingHTTPServer(('127.0.0.1', 0), Web))}"
    mail = f"127.0.0.1:{serve(socketserver.ThreadingTCPServer(('127.0.0.1', 0), Mail))}"
    urllib.request.urlopen(web + "/formulario", urllib.parse.urlencode(FORM).encode(), timeout=20).close()
    at = next(n for n, argument in enumerate(sys.argv) if n and argument.endswith(".json"))
    command, documents = sys.argv[1:at], sys.argv[at:]
    with tempfile.TemporaryDirectory() as folder:
        file = pathlib.Path(folder, "demo.ini")
        option = f"--ajustes={file}"
        code, output = run(command, option, f"--envio.http={web}", f"--envio.correo={mail}", *documents)
        print(output)
        numbers = [order["pedido"] for order in orders if order["pedido"]]
        faults = settings_faults(command, option, documents, file, numbers[-1]) if numbers else []
    form = "".join(f"  formulario    {name} = {value}".replace("\r", "").rstrip() + "\n" for name, value in FORM)
    faults += [] if form in output else ["the form"]
    confirmed = {mail["Subject"].removeprefix("Pedido "): mail for mail in mails}
    for order in orders:
        mail = confirmed.pop(order["pedido"], None)
        if (mail is None) != (order["cliente"]["avisar"] == "por carta"):
            faults.append("no mail for " + order["pedido"])
        elif mail and order["aceptado"] != ("aceptado" in mail.get_body(("plain",)).get_content()):
            faults.append("the mail for " + order["pedido"])
        elif mail and unpacked(mail) != order:
            faults.append("the archive for " + order["pedido"])
    faults += confirmed
    if faults or not orders:
        print("demo_servers.py: not as it should be:", faults, orders, mails)
        return 1
    print(f"demo_servers.py: {len(orders)} orders, {len(mails)} mails received")
    return code


if __name__ == "__main__":
    sys.exit(main())
