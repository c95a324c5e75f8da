#!/usr/bin/env python3
# SPDX-License-Identifier: BSL-1.0
"""Doxygen's input filter: docs/site/filter.py FILE writes the file as Doxygen is to read it."""

import sys
from pathlib import Path

sys.dont_write_bytecode = True
sys.path.insert(0, str(Path(__file__).parent))
import benchmarks  # noqa: E402
import cpp  # noqa: E402
import exceptions  # noqa: E402
import markdown  # noqa: E402

ROOT = Path(__file__).parent.parent.parent


def read(path):
    return path.read_text(encoding="utf-8")


def main():
    path = Path(sys.argv[1])
    text = read(path)
    if path.suffix == ".md":
        text = markdown.page(text, path.stem)
        record = ROOT / "docs/benchmarks.txt"
        if path.name == "BENCHMARKS.md" and record.exists():
            text += f"\n@htmlonly\n{benchmarks.fragment(read(record))}\n@endhtmlonly\n"
    else:
        text = markdown.comments(text)
        if path.name == "exc.hpp":
            text = exceptions.written_out(text, read(ROOT / "include/ruvo/exc_catalogue.hpp"),
                                          read(ROOT / "docs/ERRORS.md"))
        text = cpp.Header(text).annotated()
    sys.stdout.reconfigure(encoding="utf-8", newline="\n")
    sys.stdout.write(text)


if __name__ == "__main__":
    main()
