#!/usr/bin/env python3
# SPDX-License-Identifier: BSL-1.0
"""peer.py PROGRAM [ARGUMENT...]: draws requests and bytes, has the program sign and digest them (main.cpp), and
compares with hashlib and oauthlib, which is looked for in the system's Python as well. The exit code is 0 when all
agree, and 77 where there is no oauthlib. KESTA_ROUNDS times 1,000 of each are drawn."""

import base64
import hashlib
import hmac
import json
import os
import random
import subprocess
import sys
import urllib.parse

try:
    from oauthlib import oauth1
    from oauthlib.oauth1.rfc5849 import signature, utils
except ImportError:
    debian = "/usr/bin/python3"
    if os.path.exists(debian) and os.path.realpath(sys.executable) != os.path.realpath(debian):
        os.execv(debian, [debian, *sys.argv])
    print("peer.py: there is no oauthlib")
    sys.exit(77)

METHODS = (oauth1.SIGNATURE_HMAC_SHA1, oauth1.SIGNATURE_HMAC_SHA256, oauth1.SIGNATURE_PLAINTEXT)
FORM = "application/x-www-form-urlencoded"
WORDS = ["a", "b", "a2", "A", "-._~", "ñ", "€", "\U0001f600", " ", "+", "&", "=", "%", "%41", "/", "?", "!", "*'()", "\"", "\\",
         "z" * 40]
draw = random.Random(20240229)


def text(most, least=0):
    return "".join(draw.choice(WORDS) for _ in range(draw.randint(least, most)))


def form():
    fields = [(text(2, 1), text(3)) for _ in range(draw.randint(0, 5))]
    fields += draw.sample(fields, draw.randint(0, len(fields)))
    quote = draw.choice([urllib.parse.quote, urllib.parse.quote_plus])
    return "&".join(quote(name) + ("=" + quote(value, safe="") if value or draw.random() < 0.5 else "")
                    for name, value in fields)


def request():
    host = draw.choice(["example.com", "EXAMPLE.com", "a.b.example", "127.0.0.1", "[::1]"])
    port = draw.choice(["", "", ":80", ":443", ":8080"])
    path = draw.choice(["", "/", "/a/b", "/%C3%B1/x;p=1", "/~a/1%2F2", "/a//b"])
    query = draw.choice(["", "?" + form()])
    with_form = draw.random() < 0.5
    body = form() if with_form else draw.choice(["", "no=form", '{"a": 1}'])
    token, token_secret = (text(3, 1), text(3)) if draw.random() < 0.7 else ("", "")
    return ["sign", draw.choice(["POST", "put", "DELETE"] if with_form else ["GET", "POST"]), draw.choice(["http", "HTTPS"]) + "://" + host + port +
            (path or ("/" if query else "")) + query, body,
            draw.choice([FORM, FORM + ";charset=UTF-8"]) if with_form else "text/plain", text(3, 1), text(3), token,
            token_secret, str(draw.randrange(3)), "%032x" % draw.getrandbits(128), str(draw.randrange(2 * 10**9)),
            draw.choice(["", "oob", "https://example.com/ñ?a=b&c"])]


def expected_signature(row):
    """The base string and the parameters of the field."""
    _, verb, url, body, kind, key, key_secret, token, token_secret, how, nonce, seconds, callback = row
    client = oauth1.Client(key, client_secret=key_secret, resource_owner_key=token or None,
                           resource_owner_secret=token_secret, signature_method=METHODS[int(how)], nonce=nonce,
                           timestamp=seconds, callback_uri=callback or None)
    _, headers, _ = client.sign(url, verb, body if kind.startswith(FORM) else None,
                                {"Content-Type": FORM} if kind.startswith(FORM) else {})
    field = headers["Authorization"]
    counted = signature.collect_parameters(urllib.parse.urlsplit(url).query, body if kind.startswith(FORM) else [],
                                           {"Authorization": field})
    base = signature.signature_base_string(verb, signature.base_string_uri(url),
                                           signature.normalize_parameters(counted))
    return base, dict(utils.parse_authorization_header(field)), callback


def block():
    return draw.randbytes(draw.choice([draw.randrange(300), draw.randrange(20), 64 * draw.randrange(40)]))


def digest_row():
    data, key = block(), block()
    cuts = sorted(draw.randint(0, len(data)) for _ in range(draw.randrange(6)))
    line = " ".join(f(kind) for kind in ("sha1", "sha256") for f in (
        lambda kind: hashlib.new(kind, data).hexdigest(), lambda kind: hmac.new(key, data, kind).hexdigest()))
    return ["digest", base64.b64encode(data).decode(), base64.b64encode(key).decode(), *map(str, cuts)], line


def main():
    count = 1000 * max(1, int(os.environ.get("KESTA_ROUNDS", "1")))
    requests = [request() for _ in range(count)]
    digests = [digest_row() for _ in range(count)]
    with open("rows.txt", "w", encoding="utf-8") as out:
        out.writelines(json.dumps(row) + "\n" for row in requests + [row for row, _ in digests])
    done = subprocess.run([*sys.argv[1:], "rows.txt"], stdout=subprocess.PIPE, check=True, timeout=600)
    lines = done.stdout.decode().splitlines()
    faults = [] if len(lines) == 2 * count else [f"{len(lines)} lines"]
    for row, line in zip(requests, lines):
        base, verified, field = line.split(" ", 2)
        wanted, parameters, realm = expected_signature(row)
        seen = dict(utils.parse_authorization_header(field))
        if (base, verified, seen.pop("realm", "")) != (wanted, "yes", realm) or seen != parameters:
            faults.append(f"{row}\n  {line}\n  {wanted} {parameters}")
    faults += [f"{row}\n  {line}\n  {wanted}" for (row, wanted), line in zip(digests, lines[count:]) if line.strip() != wanted]
    print("\n".join(faults[:5]))
    print(f"peer.py: {count} requests, {count} digests, {len(faults)} faults")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
