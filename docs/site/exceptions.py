# SPDX-License-Identifier: BSL-1.0
"""Writes out the classes of <ruvo/exc.hpp> that are made from the rows of <ruvo/exc_catalogue.hpp>, for the reference.

The comment before a class, or before the macro of its shape, speaks for its constructors too that have no comment. Each
class shows its code and message, as docs/ERRORS.md lists them.
"""

import re

from markdown import spans

ERROR = re.compile(r"^\| `(\w+)` \| (0x[0-9A-F]+) \| \d+ \| \d+ \| \d+ \| (.*) \| `[\w:]+` \|$", re.MULTILINE)
ROW = re.compile(r"^KESTA_ERROR\((\w+), ([\w:]+), \d+, \d+, (\w+), ", re.MULTILINE)
COMMENT = r"((?:^///.*\n)+)"
MADE = r"KESTA_EXC_CLASS\((\w+), ([\w:]+),\s+([^#]*?\))\)\n"
SHAPE = re.compile(COMMENT + r"#define KESTA_EXC_(\w+)\(name, base\)(?: \\\n)?\s+" + MADE, re.MULTILINE)
CLASS = re.compile(COMMENT + MADE, re.MULTILINE)
WRITTEN = re.compile(COMMENT + r"(?=class KESTA_API (\w+) : public )", re.MULTILINE)
PLAIN = "With the code and the message of the class."


def written_out(text, catalogue, errors_page):
    """The header with its classes; every line keeps its number."""
    codes = {name: spans(f"Code `{code}`: `{message}`") for name, code, message in reversed(ERROR.findall(errors_page))}

    def one(comment, name, base, constructor):
        said = " ".join(re.sub(r"^///|@brief |@details ", "", comment, flags=re.MULTILINE).split())
        shown = f"{codes[name]} @details {said}" if name in codes else said
        of_constructor = PLAIN if constructor.endswith("()") else said
        return (f"/** @brief {shown} */ class KESTA_API {name} : public {base} {{ public: "
                f"/** {of_constructor} */ {constructor}; /* */ ~{name}() override; }};")

    def in_place(match, line=""):
        return line + "\n" * match[0].count("\n")

    shapes = {match[2]: match for match in SHAPE.finditer(text)}
    made = [one(shapes[shape][1], name, base, re.sub(r"\bname\b", name, shapes[shape][5]))
            for name, base, shape in ROW.findall(catalogue) if shape in shapes]
    text = SHAPE.sub(in_place, text).replace("#include <ruvo/exc_catalogue.hpp>", " ".join(made))
    text = CLASS.sub(lambda match: in_place(match, one(*match.groups())), text)
    return WRITTEN.sub(lambda match: f"{match[1][:-1]} {codes[match[2]]}.\n" if match[2] in codes else match[1], text)
