# SPDX-License-Identifier: BSL-1.0
"""abi.py COMPILER INCLUDE DOC [write]: DOC lists the layouts and the slots of the public classes as they are.

Names come from the compiler, sizes and the places of members from gdb, which reads the compiler's debug information, the
order of the virtual operations from the headers. With write, the list is written.
"""

import difflib
import os
import re
import subprocess
import sys
import tempfile

BEGIN, END = "<!-- made by tests/support/abi.py: build the target abi_update -->", "<!-- end -->"


# Run by gdb, which finds the names of the classes in the environment.
IN_GDB = """
import gdb, os
for name in os.environ["KESTA_CLASSES"].split(","):
    kind = gdb.lookup_type(name)
    members = [f"{field.name} {field.bitpos // 8}" for field in kind.fields()
               if hasattr(field, "bitpos") and field.name and not field.is_base_class and field.name[0] != "_"]
    print("class", name, kind.sizeof, kind.alignof, *members, sep="|")
"""


def layouts(compiler, include):
    """Class to (size, alignment, members with their places), for all that ruvo.hpp brings."""
    with tempfile.TemporaryDirectory() as folder:
        source, program, script, dump = (os.path.join(folder, name) for name in ("a.cpp", "a.exe", "in_gdb.py", "classes"))
        for path, text in (source, "#include <ruvo/ruvo.hpp>\nint main() {}\n"), (script, IN_GDB):
            with open(path, "w", encoding="utf-8") as file:
                file.write(text)
        subprocess.run(
            [compiler, "-std=c++20", "-DKESTA_STATIC", "-I" + include, "-fdump-lang-class=" + dump, source, "-o", program]
            + ["-g", "-fno-eliminate-unused-debug-types", "-femit-class-debug-always"], check=True)
        with open(dump, encoding="utf-8") as file:
            names = re.findall(r"^Class (ruvo::[\w:]+)\n\s+size=", file.read(), re.M)
        public = [name for name in names if not re.match(r"ruvo::(exc|detail|abi)\b", name) and "::detail::" not in name]
        told = subprocess.run(["gdb", "-nx", "-batch", "-x", script, program], check=True, text=True,
                              stdout=subprocess.PIPE, env=os.environ | {"KESTA_CLASSES": ",".join(public)}).stdout
    rows = [line.split("|")[1:] for line in told.splitlines() if line.startswith("class|")]
    if len(rows) != len(public):
        sys.exit(f"gdb told of {len(rows)} of {len(public)} classes")
    return {name: (size, align, ", ".join(members)) for name, size, align, *members in rows}


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
                        operation = re.sub(r" = (?!0$)[^,()]*(?:\(\))?(?=[,)])", "", virtual.group(1))
                        found.setdefault("::".join(scope), []).append(operation)
    return found


def page(compiler, include):
    lines = ["", "### Slots", "",
             "New virtual operations of each class, in order; those of a base come before.", ""]
    for name, operations in sorted(slots(include).items()):
        lines += [f"`{name}`:", ""] + [f"- `{operation}`" for operation in operations] + [""]
    lines += ["### Layouts", "", "Bytes, alignment and the places of the members, mingw-w64 x86-64.", "",
              "| class | size | alignment | members |", "|---|---|---|---|"]
    for name, (size, align, members) in sorted(layouts(compiler, include).items()):
        lines.append(f"| `{name}` | {size} | {align} | {members} |")
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
    for line in difflib.unified_diff(text.splitlines(), made.splitlines(), "listed", "is now", lineterm="", n=1):
        print(line)
    print("what changed breaks programs built before, unless slots were appended; the target abi_update writes", doc)
    return 1


if __name__ == "__main__":
    sys.exit(main())
