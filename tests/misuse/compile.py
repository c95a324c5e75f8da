#!/usr/bin/env python3
# SPDX-License-Identifier: BSL-1.0
"""Compiles the rows of table.txt: what is right is accepted, what can only be a mistake is refused in few words.

    tests/misuse/compile.py COMPILER INCLUDE FOLDER

Nothing is linked. Besides: macros of the headers' own capital names, and of windows.h, in front of the headers change
nothing; one header of a namespace brings the namespace; an older C++ is refused once.
"""

import os
import re
import subprocess
import sys
from pathlib import Path

LINES = 14  # of a message: the error, what was deleted, and the place of each
WARNINGS = ["-Wall", "-Wextra", "-Wpedantic", "-Werror"]
HEAD = """\
#include <ruvo/ruvo.hpp>

#include <map>
#include <string>
#include <utility>
#include <vector>

extern ruvo::var plain;
extern ruvo::xvar v;
extern ruvo::list l;
extern ruvo::bundle b;
extern ruvo::memo m;
extern ruvo::date day;
extern ruvo::velda::date velda;
extern ruvo::time hour;
extern ruvo::datetime moment;
extern ruvo::color c;
extern ruvo::file path;
extern ruvo::exception err;
extern std::wstring text;
extern const wchar_t* made;
extern const char* narrow_made;
extern int* pointer;
extern int number;
extern bool found;
"""
FOREIGN = "CONST DELETE ERROR FALSE IN OPTIONAL OUT TRUE VOID far interface near small".split()
SIGNS = {"refused": r"use of deleted function|call to deleted|overload resolution selected deleted",
         "ignored": r"nodiscard"}


def rows(path):
    """(name, what is said, code) of each row."""
    for line in path.read_text(encoding="utf-8").splitlines():
        if not line or line.startswith("#"):
            continue
        name, said, code, *words = line.split(" | ")
        for word in words[0].split() if words else [None]:
            yield (name, said, code) if word is None else (f"{name}: {word}", said, code.replace("@", word))


def capital_names(include):
    """The names of capitals in the headers, without the project's own macros."""
    text = "".join(path.read_text(encoding="utf-8") for path in sorted(include.rglob("*.hpp")))
    text = re.sub(r'//.*|L?"(?:\\.|[^"\\\n])*"|L?\'(?:\\.|[^\'\\\n])*\'|^\s*#(?:[^\n]*\\\n)*[^\n]*', " ", text, flags=re.M)
    return sorted(set(re.findall(r"\b(?!KESTA_)[A-Z](?:[A-Z0-9]|_(?!_))*\b", text)))


class Compiler:
    def __init__(self, command, include, folder):
        self.command, self.include, self.folder = command, include, folder

    def run(self, name, text, *options):
        """What the compiler says of a source."""
        path = self.folder / name
        path.write_text(text, encoding="utf-8")
        told = subprocess.run([self.command, "-std=c++20", f"-I{self.include}", *options, str(path)], check=False,
                              stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, encoding="utf-8",
                              env=os.environ | {"LC_ALL": "C"}, timeout=120)
        return told.returncode, told.stdout


def main():
    compiler = Compiler(sys.argv[1], Path(sys.argv[2]), Path(sys.argv[3]))
    compiler.folder.mkdir(parents=True, exist_ok=True)
    faults, current = [], None

    def expect(name, fine, told):
        if not fine:
            faults.append(f"--- {name}\n{told}")

    table = list(rows(Path(__file__).with_name("table.txt")))
    right = [(name, code) for name, said, code in table if said == "right"]
    body = "".join(f'#line 1 "{name}"\nvoid right_{i}() {{ {code} }}\n' for i, (name, code) in enumerate(right))
    macros = "".join(f"#define {name} 1 +\n" for name in capital_names(compiler.include) + FOREIGN)
    xml = "#include <ruvo/serializer.hpp>\nruvo::serializer::xml* x;\nint n = sizeof *x;\n"
    for name, text in ("right.cpp", HEAD + body), ("macros.cpp", macros + HEAD), ("namespace.cpp", xml):
        code, told = compiler.run(name, text, "-fsyntax-only", *WARNINGS)
        expect(name, code == 0, told)
    code, told = compiler.run("older.cpp", HEAD, "-fsyntax-only", "-std=c++17")
    expect("older.cpp", code != 0 and "kesta needs C++20" in told and len(told.splitlines()) <= LINES, told)

    wrong = [row for row in table if row[1] != "right"]
    body = "".join(f'#line 1 "misuse {i}"\nvoid misuse_{i}() {{ {code} }}\n' for i, (_, _, code) in enumerate(wrong))
    code, told = compiler.run("wrong.cpp", HEAD + body, "-fsyntax-only", "-Werror=unused-result")
    blocks = {}  # what is said of each, from the first line that names it
    for line in told.splitlines():
        start = re.match(r"misuse (\d+):", line)
        current = int(start.group(1)) if start else current
        blocks.setdefault(current, []).append(line)
    for i, (name, said, _) in enumerate(wrong):
        told = "\n".join(blocks.get(i, ["accepted"])) + "\n"
        errors = re.findall(r"\berror:.*", told)
        expect(name, len(errors) == 1 and re.search(SIGNS[said], errors[0]) and len(blocks[i]) <= LINES, told)
    print("\n".join(faults) or f"{len(right)} right, {len(wrong)} refused")
    sys.exit(1 if faults else 0)


main()
