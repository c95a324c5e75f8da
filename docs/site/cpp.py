# SPDX-License-Identifier: BSL-1.0
"""Reads the headers for the reference: gives each declaration the comment that speaks for it.

A `///` comment speaks for all declarations up to the next blank line, comment or access label. A `///<` comment behind
a declaration takes precedence. Special members, names of types (`using`) and the `operator<<` of a value need no comment:
without one they get a standard sentence.
Comments are added on the line of the declaration, so that the numbers of the lines stay.
"""

import re
from dataclasses import dataclass

TOKEN = re.compile(r"""
    (?P<directive>^[ \t]*\#(?:\\\n|[^\n])*)
  | (?P<line>//[^\n]*)
  | (?P<block>/\*.*?\*/)
  | (?P<literal>"(?:\\.|[^"\\\n])*"|'(?:\\.|[^'\\\n])+')
  | (?P<word>[A-Za-z_]\w*|\d[\w.']*)
  | (?P<blank>\n[ \t]*(?=\n))
  | (?P<space>\s+?)
  | (?P<mark>::|.)
""", re.VERBOSE | re.DOTALL | re.MULTILINE)
TEMPLATE = re.compile(r"^template\s*")
SCOPE = re.compile(r"^(?:inline\s+)?(?P<kind>class|struct|union|enum(?:\s+(?:class|struct))?|namespace|extern\s+\"C\")"
                   r"(?:\s+KESTA_\w+|\s+final)*\s*(?P<name>[\w:]*)")
FORWARD = re.compile(r"^(class|struct|union|enum(\s+class)?|friend\s+(class|struct))\s[^({]*;$")
SILENT = re.compile(r"^(static_assert|using\s+namespace|extern\s+template|template\s+(class|struct|KESTA))\b")
REQUIREMENT = re.compile(r"(?:requires|&&|\|\||=)\s*requires\s*(?:\([^{}]*\))?\s*$")
QUIRK = re.compile(r"@quirk\b")


@dataclass
class Run:
    """A comment that still speaks, and how often it did."""
    lines: list
    begin: int  # of the comment's first line
    fresh: bool = True
    special: bool = False  # whether it began with a copy, a move or a destructor

    def repeated(self):
        text = "@nl".join(line.strip() for line in self.lines)
        return QUIRK.sub("@quirk_again", text.replace("@nl", " @nl "))


@dataclass
class Declaration:
    """What stands in the header: `head` in one line without comments and template parameters."""
    scope: tuple
    head: str
    begin: int
    line: int
    comment: list = None

    def name(self):
        """The name with its scope, as a reader would write it."""
        head = re.sub(r"\s*=\s*(default|delete|0)\b.*|\bnoexcept\b", "", self.head)
        scope = SCOPE.match(head)
        operator = re.search(r"(operator\s*(?:\(\)|[^\w\s(]+|[\w:<>&* ]+))\s*\(", head)
        call = re.search(r"(~?\w+)\s*\(", re.sub(r"^requires\s*\([^()]*(\([^()]*\))*\)", "", head))
        plain = re.search(r"(\w+)\s*(?:=[^=]*|\{.*)?[;,]?$", head if "(" in head or "<" in head else head.split(",")[0])
        own = (operator[1] if operator else scope["name"] if scope else call[1] + "()" if call
               else plain[1] if plain else head)
        return "::".join((*self.scope, own))


def special(head, name):
    """The standard sentence for a copy, a move or a destructor of the class; None for all else."""
    own = re.escape(name)
    head = re.sub(r"^(?:(?:KESTA_\w+|explicit|inline|constexpr|virtual)\s+)*", "", head)
    deleted = re.search(r"=\s*delete\b", head)
    parameter = rf"\(\s*(?P<const>const\s+)?{own}(?:<[^()]*>)?\s*(?P<reference>&&?)\s*\w*\s*\)"
    if re.match(rf"~{own}\s*\(", head):
        return "Destroys the object and what it owns."
    copy = re.match(rf"{own}\s*{parameter}", head)
    assign = re.match(rf"{own}(?:<[^()]*>)?\s*&\s*operator\s*=\s*{parameter}", head)
    match = copy or assign
    if not match:
        return None
    if match["reference"] == "&&":
        return "Not moved." if deleted else "Takes over what the other one holds."
    if deleted:
        return "Not copied."
    return "Makes a copy." if copy else "Becomes a copy of the other one."


def plain(head, name):
    """The standard sentence for what needs no comment, where none speaks for it; None for all else."""
    if name and re.match(rf"(?:constexpr\s+)?{re.escape(name)}\s*\(\s*\)", head):
        return "The default constructor."
    if re.match(r"using\s+\w+\s*=", head):
        return "Another name for the type."
    if re.match(r"(?:KESTA_\w+\s+)?std::wostream\s*&\s*operator\s*<<\s*\(", head):
        return "Writes to_string()."
    return None


class Header:
    """The declarations of a header, and the text with their comments."""

    def __init__(self, text):
        self.text = text
        self.tokens = [(m.lastgroup, m.group(), m.start()) for m in TOKEN.finditer(text)]
        self.at = 0
        self.edits = []  # (position, length, replacement)
        self.declarations = []
        self.scope((), "namespace")

    def annotated(self):
        text = self.text
        for begin, length, replacement in sorted(self.edits, reverse=True):
            text = text[:begin] + replacement + text[begin + length:]
        return text

    def first_on_line(self, position):
        return not self.text[self.text.rfind("\n", 0, position) + 1:position].strip()

    def scope(self, path, kind):
        """Reads the declarations up to the closing brace."""
        run, again = None, False  # again: the comment's next line may follow
        while self.at < len(self.tokens):
            group, token, position = self.tokens[self.at]
            if group == "space":
                self.at += 1
                continue
            if group == "line" and token.startswith("///") and not token.startswith(("///<", "////")):
                if not again:
                    run = Run([], position)
                run.lines.append(token[3:])
                again = True
                self.at += 1
                continue
            again = False
            if group in ("blank", "directive"):
                run = None
            elif group == "block":
                run = Run(token[3:-2].split("\n"), position) if token.startswith("/**") else None
            elif group == "line":
                if self.first_on_line(position) and not token.startswith("///<"):
                    run = None
            elif token == "}":
                self.at += 1
                return
            elif token in ("public", "protected", "private"):
                self.at += 2
                run = None
                continue
            elif token not in (";", ","):
                if self.declaration(path, kind, run):
                    run = None
                continue
            self.at += 1

    def declaration(self, path, kind, run):
        """Reads one declaration and settles its comment. True when it was one with declarations of its own."""
        begin = self.tokens[self.at][2]
        depth, angles, commas = 0, 0, []
        enum = kind.startswith("enum")
        head = ""
        while self.at < len(self.tokens):
            group, token, position = self.tokens[self.at]
            if group in ("line", "block", "directive", "blank", "space"):
                head += " "
                self.at += 1
                continue
            if token in ("(", "["):
                depth += 1
            elif token in (")", "]"):
                depth -= 1
            elif token in "<>":
                angles = max(0, angles + (token == "<") - (token == ">"))
            elif token == "," and not depth and not angles:
                commas.append((position, head))
            if token == "{" and not depth:
                bare = self.without_template(head)
                scope = SCOPE.match(bare)
                if scope and not enum and not ("(" in bare and not bare.startswith("enum")):
                    self.settle(path, head, begin, run, None)
                    self.at += 1
                    inner_path = (*path, *filter(None, scope["name"].split("::")))
                    self.scope(inner_path, scope["kind"])
                    if scope["kind"] == "namespace" or scope["kind"].startswith("extern"):
                        return True
                    while self.at < len(self.tokens) and self.tokens[self.at][1] != ";":
                        self.at += 1
                    self.at += 1
                    return True
                requirement = REQUIREMENT.search(head)
                self.skip_braces()
                head += "{}"
                follows = next((t for g, t, _ in self.tokens[self.at:] if g not in ("space", "blank", "line")), "")
                if requirement or follows in (",", "{", ";", ")"):
                    continue
                break
            if enum and not depth and token == "}":
                break
            self.at += 1
            head += token
            if not depth and (token == ";" or enum and token == ","):
                break
        trailing = self.trailing()
        if commas and not enum and "(" not in head:
            self.separate(commas, run, trailing, begin)
        self.settle(path, head, begin, run, trailing)
        return False

    def separate(self, commas, run, trailing, begin):
        """Makes a declaration of each of several names, for Doxygen documents the first one only."""
        kind = re.match(r"(.*?)[\w]+\s*(=.*)?$", " ".join(commas[0][1].split()))[1]
        text = trailing[0] if trailing else run.repeated() if run else ""
        for position, _ in commas[:-1] if trailing else commas:
            self.edits.append((position, 1, f"; /** {text} */ {kind}"))
        if trailing:  # speaks for the last one
            self.edits.append((begin, 0, f"/** {text} */ "))
            self.edits.append((commas[-1][0], 1, f"; {kind}"))

    def without_template(self, head):
        """The head behind `template <...>`, in one line."""
        head = re.sub(r"\s+", " ", head).strip()
        while TEMPLATE.match(head):
            rest = TEMPLATE.sub("", head)
            if not rest.startswith("<"):
                break
            depth = 0
            for at, c in enumerate(rest):
                depth += (c == "<") - (c == ">")
                if not depth:
                    break
            head = rest[at + 1:].strip()
        return head

    def skip_braces(self):
        depth = 0
        while self.at < len(self.tokens):
            token = self.tokens[self.at][1]
            self.at += 1
            depth += (token == "{") - (token == "}")
            if not depth:
                return

    def trailing(self):
        """The `///<` comment on the rest of the line, if there is one."""
        at = self.at
        while at < len(self.tokens) and self.tokens[at][0] in ("space", "mark") and self.tokens[at][1] in " \t;,":
            at += 1
        if at < len(self.tokens) and self.tokens[at][0] == "line":
            token = self.tokens[at][1]
            return [token[4:].strip()] if token.startswith("///<") else None
        return None

    def settle(self, path, head, begin, run, trailing):
        """Writes the comment of a declaration."""
        head = self.without_template(head)
        if FORWARD.match(head) or SILENT.match(head):
            return
        line = self.text.count("\n", 0, begin) + 1
        found = Declaration(path, head, begin, line)
        self.declarations.append(found)
        sentence = special(head, path[-1]) if path else None
        if sentence is None and run is None and trailing is None:
            sentence = plain(head, path[-1] if path else "")
        if trailing is not None:
            found.comment = trailing
            if run is not None and run.fresh:
                self.silence(run)
                run.fresh = False
            return
        if run is not None and run.fresh:
            run.fresh, run.special = False, sentence is not None
            found.comment = run.lines
            return
        if sentence is not None and (run is None or not run.special):
            self.edits.append((begin, 0, f"/** @brief {sentence} */ "))
        elif run is not None and not re.match(r"(inline\s+)?namespace\b", head):
            self.edits.append((begin, 0, f"/** {run.repeated()} */ "))

    def silence(self, run):
        """The comment speaks from the second declaration on: in its place it is hidden."""
        at = run.begin
        for _ in run.lines:
            at = self.text.index("///", at)
            self.edits.append((at, 3, "// "))
            at += 3
