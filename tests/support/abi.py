"""abi.py COMPILER INCLUDE DOC [write]: DOC lists the sizes and the slots of the public classes as they are.

Sizes come from the compiler, the order of the virtual operations from the headers. With write, the list is written.
"""

import os
import re
import subprocess
import sys
import tempfile

BEGIN, END = "<!-- made by tests/support/abi.py: build the target abi_update -->", "<!-- end -->"


def sizes(compiler, include):
    """Class to (size, alignment), for all that ruvo.hpp brings."""
    with tempfile.TemporaryDirectory() as folder:
        dump = os.path.join(folder, "classes")
        subprocess.run(
            [compiler, "-std=c++20", "-DKESTA_STATIC", "-fsyntax-only", "-I" + include, "-fdump-lang-class=" + dump]
            + ["-include", "ruvo/ruvo.hpp", "-x", "c++", os.devnull], check=True)
        with open(dump, encoding="utf-8") as file:
            text = file.read()
    found = re.findall(r"^Class (ruvo::[\w:]+)\n\s+size=(\d+) align=(\d+)", text, re.M)
    return {name: (size, align) for name, size, align in found}


def statements(text):
    """Yields (classes around it, statement); a body is skipped over, but for those of namespaces and classes."""
    text = re.sub(r"//[^\n]*|/\*.*?\*/", "", text, flags=re.S)
    text = re.sub(r"^[ \t]*#(?:[^\n]*\\\n)*[^\n]*", "", text, flags=re.M)
    scope, current, skip = [], "", 0
    for char in text:
        if char == "{" and not skip:
            head = re.search(r"\b(?:namespace|class|struct)\s+(?:KESTA_API\s+)?([\w:]+)(?:\s+final)?\s*(?::.*)?$",
                             current.strip(), re.S)
            if head and "(" not in current:
                scope.append(head.group(1))
                current = ""
                continue
        if char == "{":
            skip += 1
        elif char == "}" and skip:
            skip -= 1
            if not skip:
                yield scope, current
                current = ""
        elif char == "}":
            if scope:
                scope.pop()
            current = ""
        elif skip:
            pass
        elif char == ";":
            yield scope, current
            current = ""
        else:
            current += char


def slots(include):
    """Class to its new virtual operations, in the order of their slots."""
    found = {}
    for folder, _, names in sorted(os.walk(include)):
        for name in sorted(names):
            with open(os.path.join(folder, name), encoding="utf-8") as file:
                for scope, statement in statements(file.read()):
                    words = " ".join(statement.split())
                    virtual = re.search(r"\bvirtual\b.*?(~?\w+ ?\(.*)$", words)
                    if virtual:
                        pure = " = 0" if words.endswith("= 0") else ""
                        operation = re.match(r"~?\w+", virtual.group(1)).group()
                        arguments = virtual.group(1)[len(operation):]
                        constant = " const" if re.search(r"\) const\b", arguments) else ""
                        found.setdefault("::".join(scope), []).append(operation + "()" + constant + pure)
    return found


def page(compiler, include):
    size_of = sizes(compiler, include)
    lines = ["", "### Slots", "",
             "New virtual operations of each class; those of a base come before.", ""]
    for name, operations in sorted(slots(include).items()):
        lines.append(f"- `{name}`: " + ", ".join(f"`{operation}`" for operation in operations))
    lines += ["", "### Sizes", "", "Bytes and alignment, mingw-w64 x86-64.", "", "| class | size | alignment |",
              "|---|---|---|"]
    for name, (size, align) in sorted(size_of.items()):
        if not re.match(r"ruvo::(exc|detail|abi)\b", name) and "::detail::" not in name and "<" not in name:
            lines.append(f"| `{name}` | {size} | {align} |")
    return "\n".join(lines) + "\n\n"


def main():
    compiler, include, doc = sys.argv[1:4]
    with open(doc, encoding="utf-8", newline="") as file:
        text = file.read()
    before, rest = text.split(BEGIN)
    _, after = rest.split(END)
    made = before + BEGIN + "\n" + page(compiler, include) + END + after
    if sys.argv[4:] == ["write"]:
        with open(doc, "w", encoding="utf-8", newline="") as file:
            file.write(made)
        return 0
    if made == text.replace("\r\n", "\n"):
        return 0
    is_now, listed = set(made.splitlines()), set(text.splitlines())
    for line in sorted(listed - is_now):
        print("listed:", line)
    for line in sorted(is_now - listed):
        print("is now:", line)
    print("what changed breaks programs built before, unless slots were appended; the target abi_update writes", doc)
    return 1


if __name__ == "__main__":
    sys.exit(main())
