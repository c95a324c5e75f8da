# SPDX-License-Identifier: BSL-1.0
"""A certificate for localhost that nobody trusts, made by openssl."""

import hashlib
import os
import shutil
import ssl
import subprocess
import sys


def made():
    """The context of a server and the SHA-256 of its certificate, or nothing where there is no openssl, or the program
    that is tested is none for Windows and knows no TLS."""
    if not any(argument.endswith(".exe") for argument in sys.argv) or not shutil.which("openssl"):
        return None, ""
    subprocess.run(["openssl", "req", "-x509", "-newkey", "rsa:2048", "-nodes", "-days", "2", "-subj", "/CN=localhost",
                    "-addext", "subjectAltName=DNS:localhost", "-keyout", "key.pem", "-out", "certificate.pem"], check=True,
                   stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, timeout=60)
    context = ssl.SSLContext(ssl.PROTOCOL_TLS_SERVER)
    context.load_cert_chain("certificate.pem", "key.pem")
    os.remove("key.pem")
    with open("certificate.pem", encoding="ascii") as certificate:
        return context, hashlib.sha256(ssl.PEM_cert_to_DER_cert(certificate.read())).hexdigest()
