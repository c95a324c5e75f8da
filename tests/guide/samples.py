#!/usr/bin/env python3
# SPDX-License-Identifier: BSL-1.0
"""Makes a GoogleTest source of the samples in Markdown pages.

    tests/guide/samples.py [-o SOURCE.cpp] PAGE.md...

The ```cpp blocks of a `##` section are the body of one test, in their order; a block with `int main()` is a program of
its own and a test of its own. A ```text block behind a sample, with nothing but blank lines between, is what the
sample prints; the last line end of either counts for nothing. `#include` lines go to the head of the source. Other
blocks (```sh, ```cmake, ```json...) are passed over. In a table whose head is `| example | gives | |`, the code of the
first column gives that of the second; `texto` stands for `ruvo::texto`. Errors of the compiler and failures of the
tests name the page and its line.
"""

import argparse
import re
import sys
from pathlib import Path

INCLUDES = {"<ruvo/ruvo.hpp>", "<cstdio>", "<iostream>", "<locale>", "<sstream>", "<string>", "<vector>",
            '"guide/output.hpp"'}
TABLE = "| example | gives | |"
ROW = re.compile(r"\| `([^`]+)` \| `([^`]+)` \| [^|]+ \|$")
INCLUDE = re.compile(r"#\s*include\s*([<\"].*[>\"])\s*(//.*)?$")
FRESH = "std::cout.copyfmt(std::ios(nullptr));\n"  # without what the tests before it set, std::boolalpha
MAIN = re.compile(r"^int main\(\)", re.MULTILINE)


class Block:
    """A sample, or a row of a table: its code, the number of the code's first line, and the same of its output."""

    def __init__(self, line):
        self.line, self.code = line, []
        self.output_line, self.output = 0, None


def fail(page, line, what):
    sys.exit(f"{page}:{line}: {what}")


def sections(page):
    """Gives (title, blocks) for each section of the page."""
    found = [("start", [])]
    rows = False  # whether a table of examples is open
    fence, opened, target, sample = None, 0, None, None  # the open fence, its lines, the sample that may have output
    for number, line in enumerate(Path(page).read_text(encoding="utf-8").split("\n"), 1):
        if fence is not None:
            if line.rstrip() == "```":
                fence = None
            elif target is not None:
                target.append(line)
        elif line.startswith("```"):
            fence, opened, target = line[3:].strip(), number, None
            if fence == "cpp":
                sample = Block(number + 1)
                found[-1][1].append(sample)
                target = sample.code
            elif fence == "text":
                if sample is None or sample.output is not None:
                    fail(page, number, "a text block is the output of the sample before it, and there is none")
                target = sample.output = []
                sample.output_line = number
            else:
                sample = None
        elif rows and line.startswith("|"):
            row = ROW.match(line)
            if row:
                found[-1][1].append(Block(number))
                found[-1][1][-1].code = [f"EXPECT_EQ(({row[1]}), {row[2]});"]
            elif not line.startswith("|---|"):
                fail(page, number, "the row is no example and what it gives")
        elif line == TABLE:
            rows, sample = True, None
        elif line.lstrip().startswith(("```", "~~~")):
            fail(page, number, "a fence is ``` at the start of its line")
        else:
            rows = False
            if not line.strip():
                continue
            sample = None
            if line.startswith("## "):
                found.append((line[3:], []))
    if fence is not None:
        fail(page, opened, "the block is not closed")
    return found


class Source:
    """The tests that come out of the pages."""

    def __init__(self):
        self.includes, self.parts, self.names = set(INCLUDES), [], {}

    def name(self, suite, text):
        """An identifier that the suite does not have yet."""
        base = re.sub(r"[^a-z0-9]+", "_", text.lower()).strip("_")
        base = base if base[:1].isalpha() else f"section_{base}"
        self.names[suite, base] = self.names.get((suite, base), 0) + 1
        n = self.names[suite, base]
        return base if n == 1 else f"{base}__{n}"

    def code(self, page, block):
        """The code without its includes, its lines numbered as on the page."""
        hoisted = [INCLUDE.match(line) for line in block.code]
        self.includes.update(include[1] for include in hoisted if include)
        lines = ("" if include else line for include, line in zip(hoisted, block.code))
        return f'#line {block.line} "{page}"\n' + "\n".join(lines)

    @staticmethod
    def tested(page, block, code):
        """The code, and the comparison of what it prints."""
        if block.output is None:
            return code
        printed, wanted = f"printed_{block.line}", "\n".join(block.output)
        return (f"guide::output {printed};\n{code}\n#line {block.output_line} \"{page}\"\n"
                f'EXPECT_EQ({printed}.text(), R"~~({wanted})~~");')

    @staticmethod
    def short_names(body):
        return "namespace texto = ruvo::texto;\n" if any("EXPECT_EQ((texto::" in part for part in body) else ""

    def add(self, page):
        """The tests of one page."""
        suite = re.sub(r"[^a-z0-9]+", "_", Path(page).stem.lower())
        for title, blocks in sections(page):
            body = []
            for block in blocks:
                code = self.code(page, block)
                if not MAIN.search(code):
                    body.append(self.tested(page, block, code))
                    continue
                code = code.rstrip()
                if not code.endswith("\n}"):
                    fail(page, block.line, "a program ends with the closing brace of its main")
                # Only a function named main may do without its return.
                room = self.name("", f"{suite}_program")
                code = MAIN.sub("static int program()", code)[:-1] + "return 0; }"
                call = self.tested(page, block, f"EXPECT_EQ({room}::program(), 0);")
                self.parts.append(f"namespace {room} {{\n{code}\n}}  // namespace {room}\n\n"
                                  f"TEST({suite}, {self.name(suite, title + ' program')}) {{\n{FRESH}{call}\n}}\n")
            if body:
                self.parts.append(f"TEST({suite}, {self.name(suite, title)}) {{\n"
                                  + FRESH + self.short_names(body) + "\n".join(body) + "\n}\n")


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("-o", dest="out", type=argparse.FileType("w", encoding="utf-8"), default=sys.stdout)
    parser.add_argument("pages", nargs="+")
    arguments = parser.parse_args()
    source = Source()
    for page in arguments.pages:
        source.add(page)
    includes = "".join(f"#include {name}\n" for name in sorted(source.includes))
    arguments.out.write(f"// Made by tests/guide/samples.py.\n\n{includes}\n" + "\n".join(source.parts))


if __name__ == "__main__":
    main()
