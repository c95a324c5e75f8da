#!/usr/bin/env python3
# SPDX-License-Identifier: BSL-1.0
"""peer.py PROGRAM [ARGUMENT...]: draws settings, has the program read and change them (main.cpp), and compares with
configparser. The exit code is 0 when all agree. KESTA_ROUNDS times 5,000 are drawn."""

import configparser
import json
import os
import random
import subprocess
import sys

WORDS = ["a", "b2", "clave larga", "Ñandú", "x.y", "ruta", "€", "\U0001f600", "%(a)s", "\"q\"", "a;b", "c #d", "[e]"]
NAMES = ["uno", "Dos", "tres 3", "Ñu", "a]b", "uno"]
draw = random.Random(20261122)


def value():
    return draw.choice(["", " ".join(draw.choices(WORDS + ["=", ":", "="], k=draw.randint(1, 3)))])


def lines():
    """The lines of a text, most of them right."""
    yield from draw.choices(["", "# cabecera", "; otra", "  "], k=draw.randrange(3))
    for _ in range(draw.randint(1, 4)):
        indent = draw.choice(["", "", "", "  "])
        yield indent + "[" + draw.choice(NAMES) + "]" + draw.choice(["", " resto"])
        for _ in range(draw.randrange(5)):
            key = draw.choice(["a", "B", "c d", "Ñ", "e", "f", "g", "h", "i", "j"])
            yield indent + key + draw.choice(["=", " = ", ": ", ":", "\t=\t"]) + value() + draw.choice(["", " ", "\t"])
            for _ in range(draw.choice([0, 0, 0, 1, 3])):
                yield draw.choice([indent + "   " + value(), indent + "\t" + value(), "", "# nota", "   ; nota", indent + " x=1"])
        if draw.random() < 0.05:
            yield draw.choice(["sola", "=1", "   sola", "[abierta"])


def read(text):
    """All that configparser finds, None where it refuses."""
    peer = configparser.RawConfigParser(default_section="\0")
    try:
        peer.read_string(text)
    except configparser.Error:
        return None
    return [row for name in peer.sections() for row in [[name], *([name, key, peer[name][key]] for key in peer[name])]]


def changed(rows, section, key, new):
    """The rows with the key set."""
    there = [n for n, row in enumerate(rows) if row[0] == section]
    if not there:
        return rows + [[section], [section, key, new]]
    for n in there:
        if rows[n][1:2] == [key]:
            return rows[:n] + [[section, key, new]] + rows[n + 1:]
    return rows[:there[-1] + 1] + [[section, key, new]] + rows[there[-1] + 1:]


def fault(row, answer):
    text, section, key, new = row
    expected = read(text)
    if (expected is None) != (not answer[0]):
        return "one of the two refuses it"
    if expected is None:
        return None
    if [[*each[:1], *(name.lower() for name in each[1:2]), *each[2:]] for each in answer[1]] != expected:
        return f"read: {expected}"
    if answer[2] is None:  # what no line can hold, or where indented lines would become a part of the value
        return None if new != new.strip() or "\n" in new or "\n " in text else "refused"
    return None if read(answer[2]) == changed(expected, section, key, new) else f"changed: {read(answer[2])}"


def main():
    count = 5000 * max(1, int(os.environ.get("KESTA_ROUNDS", "1")))
    rows = [[draw.choice(["\n", "\r\n"]).join(lines()) + draw.choice(["", "\n"]), draw.choice(NAMES[:4]),
             draw.choice(["a", "b", "nueva"]), draw.choice([value(), value() + "\n" + value(), " x"])] for _ in range(count)]
    rows = [[text.replace("\r\n", "\n") if draw.random() < 0.5 else text, *rest] for text, *rest in rows]
    with open("rows.txt", "w", encoding="utf-8") as out:
        out.writelines(json.dumps(row) + "\n" for row in rows)
    done = subprocess.run([*sys.argv[1:], "rows.txt"], stdout=subprocess.PIPE, check=True, timeout=300)
    answers = [json.loads(line) for line in done.stdout.decode().splitlines()]
    faults = [] if len(answers) == count else [f"{len(answers)} answers"]
    for row, answer in zip(rows, answers):
        what = fault(row, answer)
        if what:
            faults.append(f"{row}\n  {answer}\n  {what}")
    good = sum(1 for answer in answers if answer[0])
    set_ones = sum(1 for answer in answers if answer[0] and answer[2] is not None)
    print("\n".join(faults[:5]))
    print(f"peer.py: {count} texts, {good} of them right, {set_ones} changed, {len(faults)} faults")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
