#!/usr/bin/env python3
# SPDX-License-Identifier: BSL-1.0
"""Lists the required oddities that the headers mark with `@quirk`, as docs/QUIRKS.md.

    docs/site/quirks.py [write]

Without `write` it says whether the page is what the headers say.
"""

import re
import sys
from pathlib import Path

sys.dont_write_bytecode = True
sys.path.insert(0, str(Path(__file__).parent))
from cpp import Header  # noqa: E402

ROOT = Path(__file__).resolve().parent.parent.parent
PAGE = ROOT / "docs/QUIRKS.md"
HEAD = """\
# All quirks

<!-- Made by docs/site/quirks.py from the @quirk tags of the headers: the target quirks_doc writes it anew. -->

What looks like a fault and is required: programs and stored documents count on it, so it stays. The rules in full stand
beside the declarations.
"""


def reasons(lines):
    """The text behind each @quirk, up to the next command or the end of the paragraph."""
    text = "\n".join(line.strip() for line in lines)
    return [" ".join(reason.split()) for reason in re.findall(r"@quirk\b\s*(.*?)(?=\n\n|[@\\]quirk\b|\Z)", text, re.DOTALL)]


def quirks(path):
    """(name, reason) for each quirk of a header, and how many it marks."""
    text = path.read_text(encoding="utf-8")
    found = [(declaration.name(), reason)
             for declaration in Header(text).declarations if declaration.comment
             for reason in reasons(declaration.comment)]
    return found, len(re.findall(r"//.*@quirk\b", text))


def page():
    parts = [HEAD]
    for path in sorted((ROOT / "include/ruvo").rglob("*.hpp")):
        name = path.relative_to(ROOT / "include").as_posix()
        found, marked = quirks(path)
        if len(found) != marked:
            sys.exit(f"{path}: {marked} quirks, {len(found)} of them before a declaration")
        if found:
            parts.append(f"\n## `<{name}>`\n\n")
            parts += [f"- `{subject}`: {reason}\n" for subject, reason in found]
    return "".join(parts)


def main():
    if sys.argv[1:] == ["write"]:
        PAGE.write_text(page(), encoding="utf-8", newline="\n")
    elif not PAGE.exists() or PAGE.read_text(encoding="utf-8").replace("\r\n", "\n") != page():
        sys.exit(f"{PAGE} is not what the headers say: build the target quirks_doc")


if __name__ == "__main__":
    main()
