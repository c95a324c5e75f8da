#!/usr/bin/env python3
# SPDX-License-Identifier: BSL-1.0
"""Holds the includes of the sources against src/layers.txt, and the table in docs/ARCHITECTURE.md against it too.

    tests/support/layers.py    # in the project's folder; prints what does not fit
"""

import re
import sys
from pathlib import Path

INCLUDE = re.compile(r'^#\s*include\s*(?:<ruvo/([^>]+)\.hpp>|"(\w+)/)', re.MULTILINE)


def read_rows(text):
    """{room: (rooms below, public headers)} in the order of the file."""
    rows = {}
    for line in text.splitlines():
        line = line.split("#")[0].strip()
        if line:
            room, rest = line.split(":")
            below, _, headers = rest.partition("|")
            rows[room] = (below.split(), headers.split())
    return rows


def main():
    rows = read_rows(Path("src/layers.txt").read_text())
    faults = []
    room_of = {}
    for room, (_, headers) in rows.items():
        for header in headers:
            if header in room_of:
                faults.append(f"{header}: in two rooms")
            room_of[header] = room

    files = [(path, path.parts[1]) for path in sorted(Path("src").glob("*/**/*.[ch]pp"))]
    for path in sorted(Path("include/ruvo").glob("**/*.hpp")):
        name = path.relative_to("include/ruvo").with_suffix("").as_posix()
        if name in room_of:
            files.append((path, room_of.pop(name)))
        else:
            faults.append(f"{path}: in no room")
    faults += [f"src/layers.txt: there is no header {name}" for name in room_of]

    rooms = list(rows)
    headers = {name: room for room, (_, names) in rows.items() for name in names}
    used = {room: set() for room in rooms}
    for path, room in files:
        if room not in rows:
            faults.append(f"{path}: src/layers.txt knows no room {room}")
            continue
        for public, private in INCLUDE.findall(path.read_text(encoding="utf-8")):
            other = headers.get(public) if public else private
            if other == room or rows[room][0] == ["*"]:
                continue
            used[room].add(other)
            if other not in rows[room][0]:
                faults.append(f"{path}: {room} may not include {other} ({public or private})")

    for at, (room, (below, _)) in enumerate(rows.items()):
        if below == ["*"]:
            continue
        faults += [f"src/layers.txt: {room} names {other}, which is not above it" for other in below
                   if other not in rooms[:at]]
        faults += [f"src/layers.txt: {room} does not need {other}" for other in below if other not in used[room]]

    shown = re.findall(r"^\| `(\w+)` \|[^|]*\|([^|]*)\|$", Path("docs/ARCHITECTURE.md").read_text(encoding="utf-8"), re.M)
    if [(room, below.replace(",", " ").split()) for room, below in shown] != [
            (room, below) for room, (below, _) in rows.items() if below != ["*"]]:
        faults.append("docs/ARCHITECTURE.md: its table of rooms is not that of src/layers.txt")

    print("\n".join(faults), end="\n" if faults else "")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
