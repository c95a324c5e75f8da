#!/usr/bin/env python3
# SPDX-License-Identifier: BSL-1.0
"""Finds helpers of one name in two sources of a folder, which builds compile as one (KESTA_UNITY).

    tests/support/helpers.py    # in the project's folder; prints FILE: NAME is a helper of FILE, too

A helper is a function in an unnamed namespace. The compiler reports two with the same parameters, but chooses between
others without a word: a source would call what is not its own.
"""

import re
import sys
from collections import defaultdict
from pathlib import Path

NOT_CODE = re.compile(r'//(?! namespace\n)[^\n]*|R"(\w*)\(.*?\)\1"|"(?:[^"\\\n]|\\.)*"', re.DOTALL)
UNNAMED = re.compile(r"^namespace \{\n(.*?)^\}  // namespace$", re.DOTALL | re.MULTILINE)
# What begins in the first column and has a parenthesis behind a name is a function, unless the line ends as a variable's.
FUNCTION = re.compile(r"^(?!TEST|using|struct|class|enum|template|#)[a-z][^\n=;(]*[\s*&](\w+)\((?![^\n]*;$)", re.MULTILINE)


def main():
    folders = defaultdict(dict)
    for path in [*Path("src").rglob("*.cpp"), *Path("tests").glob("*/*_test.cpp"), *Path("tests/host").glob("*.cpp")]:
        folders[path.parent][path] = NOT_CODE.sub('""', path.read_text(encoding="utf-8"))
    found = []
    for sources in folders.values():
        owners = {}
        for path, text in sorted(sources.items()):
            for name in {name for part in UNNAMED.findall(text) for name in FUNCTION.findall(part)}:
                if owners.setdefault(name, path) != path:
                    found.append(f"{path}: {name} is a helper of {owners[name]}, too")
    for line in sorted(found):
        print(line)
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
