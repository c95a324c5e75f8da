"""Writes out the classes that <ruvo/exc.hpp> makes by macros from <ruvo/exc_catalogue.hpp>, for the reference.

The comment before such a row, or before the macro that is defined for it, speaks for its classes and for those of their
constructors that have none of their own (inside of a macro: a comment between slash, asterisks and slash). Each class is
told its code and message, which docs/ERRORS.md lists.
"""

import re

from markdown import spans

DEFINE = re.compile(r"#\s*define (\w+)\(([^)]*)\)((?:\\\n|[^\n])*)")
UNDEF = re.compile(r"#\s*undef (\w+)")
CLASS = re.compile(r"class KESTA_API (\w+) : public ([\w:]+)\s*\{(.*?)\};")
ERROR = re.compile(r"^\| `(\w+)` \| (0x[0-9A-F]+) \| \d+ \| \d+ \| \d+ \| (.*) \| `[\w:]+` \|$", re.MULTILINE)
PLAIN = "@brief With the code and the message of the class."


def arguments(text, at):
    """The arguments from the opening parenthesis at `at`, and where they end."""
    found, depth, begin = [], 0, at + 1
    for match in re.compile(r'"(?:\\.|[^"])*"|/\*.*?\*/|[(),]', re.DOTALL).finditer(text, at):
        mark = match[0]
        depth += (mark == "(") - (mark == ")")
        if not depth or (depth == 1 and mark == ","):
            found.append(text[begin:match.start()].strip())
            begin = match.end()
        if not depth:
            return found, match.end()
    raise ValueError(f"no end of {text[at:at + 40]}")


def expand(text, macros):
    """The text with the macros in place of which they stand."""
    call = re.compile(rf"\b({'|'.join(macros)})\(") if macros else None
    at = 0
    while call and (match := call.search(text, at)):
        names, body = macros[match[1]]
        given, end = arguments(text, match.end() - 1)
        if names[-1] == "...":
            given[len(names) - 1:] = [", ".join(given[len(names) - 1:])]
        values = dict(zip(("__VA_ARGS__" if name == "..." else name for name in names), given))
        body = re.sub(r'"(?:\\.|[^"])*"|/\*.*?\*/|\w+', lambda m: values.get(m[0], m[0]), body)
        text = text[:match.start()] + body + text[end:]
        at = match.start()
    return text


def definitions(text):
    """The macros that the text defines."""
    return {m[1]: ([name.strip() for name in m[2].split(",")], " ".join(m[3].replace("\\\n", " ").split()))
            for m in DEFINE.finditer(text)}


def documented(text, comment, errors):
    """The classes in one line, each with its comment."""
    def one(match):
        name, base, body = match.groups()
        told = [comment.replace("@brief ", "").replace("@details ", "")] if comment else []
        if name in errors:
            of_range = base == "kesta::exception" and name.endswith("Exception")
            told.insert(len(told) if of_range else 0, spans("Code `{}`: `{}`".format(*errors[name])))
        told = [f"@brief {told[0]}", *(f"@details {more}" for more in told[1:])] if told else []
        if comment:
            body = re.sub(rf"(?<!/ )(?:explicit )?\b{name}\((?!\))", f"/** {comment} */ \\g<0>", body)
        body = re.sub(rf"(?<!/ )\b{name}\(\);", f"/** {PLAIN} */ {name}(); /* */", body)
        return (f"/** {' '.join(told)} */ " if told else "") + \
            f"class KESTA_API {name} : public {base} {{{body}}};"
    return CLASS.sub(one, text)


def written_out(text, catalogue, errors_page):
    """The header with its classes; every line keeps its number."""
    errors = {name: (code, message) for name, code, message in ERROR.findall(errors_page)}
    macros, lines = definitions(catalogue), text.split("\n")
    comment, silent = [], []  # of the lines that speak for the next classes, and their numbers
    at = 0
    while at < len(lines):
        line, first = lines[at], at
        while line.endswith("\\") or (re.match(r"KESTA_EXC_\w+\(", line) and line.count("(") > line.count(")")):
            at += 1
            line += "\n" + lines[at]
        at += 1
        if line.startswith("///"):
            comment.append(line[3:].strip())
            silent.append(first)
        elif DEFINE.match(line):
            macros.update(definitions(line))
        elif UNDEF.match(line):
            macros.pop(UNDEF.match(line)[1])
            comment, silent = [], []
            line = ""
        elif re.match(r"KESTA_EXC_\w+\(", line):
            lines[first] = documented(expand(line.replace("\n", " "), macros), " ".join(comment), errors)
            lines[first + 1:at] = [""] * (at - first - 1)
            for number in silent:
                lines[number] = ""
        else:
            comment, silent = [], []
    return "\n".join(lines)
