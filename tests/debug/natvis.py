# SPDX-License-Identifier: BSL-1.0
"""Reads kesta.natvis as the debugger of Visual Studio does, with gdb to work out its expressions."""

import fnmatch
import re
import xml.etree.ElementTree as ElementTree

import gdb
import kesta_gdb

SPACE = "{http://schemas.microsoft.com/vstudio/debugger/natvis/2010}"

# What depends on the standard library of Visual Studio or on its wchar_t, as it is here.
OTHER_LIBRARY = {
    ("ruvo::var", "small_text"): "(wchar_t*)(data_.bytes + (sizeof(wchar_t) == 2 ? 0 : 2))",
    ("ruvo::exception", "message"): "shared()->_M_dataplus._M_p",
    ("ruvo::exception", "has_detail"): "detail()._M_string_length != 0",
}
KNOWN_NODES = {"Intrinsic", "DisplayString", "StringView", "Expand", "Item", "ExpandedItem", "CustomListItems"} | {
    "Variable",
    "Size",
    "Loop",
    "Exec",
    "Parameter",
    "Type",
}


def has_member(kind, name):
    return kind.code == gdb.TYPE_CODE_STRUCT and any(
        field.name == name or (field.is_base_class and has_member(field.type, name)) for field in kind.fields()
    )


def functions_in(node, owner=""):
    return {
        child.get("Name"): (
            [parameter.get("Name") for parameter in child],
            OTHER_LIBRARY.get((owner, child.get("Name")), child.get("Expression")),
        )
        for child in node.findall(SPACE + "Intrinsic")
    }


def split_format(expression):
    """The expression, the length of an array and the format."""
    found = re.fullmatch(r"(.*),\s*(?:\[(.*)\])?(\w*)", expression, re.S)
    return found.groups() if found else (expression, None, "")


def closing(text, at):
    """Behind the parenthesis that closes the one at `at`."""
    depth = 0
    for end in range(at, len(text)):
        depth += {"(": 1, ")": -1}.get(text[end], 0)
        if depth == 0:
            return end + 1
    raise ValueError("unbalanced: " + text)


def pieces(text):
    """Splits a display string: (True, expression) and (False, text)."""
    for part in re.finditer(r"\{\{|\}\}|\{([^{}]*)\}|[^{}]+", text):
        yield (True, part[1]) if part[1] is not None else (False, part[0].replace("{{", "{").replace("}}", "}"))


class Visualizers:
    def __init__(self, path):
        root = ElementTree.parse(path).getroot()
        strange = {node.tag[len(SPACE) :] for node in root.iter()} - KNOWN_NODES - {"AutoVisualizer"}
        if strange:
            raise ValueError("elements that the tests don't know: %s" % strange)
        self.functions = functions_in(root)
        self.views = {node.get("Name"): node for node in root.findall(SPACE + "Type")}

    def view_of(self, kind):
        """The view of a class, or of the first of its bases that has one."""
        for pattern, view in self.views.items():
            if fnmatch.fnmatchcase(kind.name or "", pattern):
                return view
        for field in kind.fields() if kind.code == gdb.TYPE_CODE_STRUCT else []:
            view = self.view_of(field.type) if field.is_base_class else None
            if view is not None:
                return view
        return None

    def plain(self, expression, view, kind, names):
        """The expression with its functions put in, and with the members of *$self said to be such."""
        own = functions_in(view, view.get("Name")) if view is not None else {}
        out, at = "", 0
        for found in re.finditer(r"[A-Za-z_]\w*", expression):
            name, start = found[0], found.start()
            if start < at or re.search(r"(\.|->|::|\w)$", expression[:start]):
                continue
            out, at = out + expression[at:start], found.end()
            if expression[at : at + 1] == "(" and (name in own or name in self.functions):
                end = closing(expression, at)
                given = expression[at + 1 : end - 1]
                parameters, body = own.get(name) or self.functions[name]
                arguments = [self.plain(a, view, kind, names) for a in self.arguments(given)]
                if len(arguments) != len(parameters):
                    raise ValueError("wrong number of arguments: " + expression)
                inner = dict(zip(parameters, ("(%s)" % argument for argument in arguments)))
                out += "(%s)" % self.plain(body, view if name in own else None, kind, inner)
                at = end
            elif name in names:
                out += names[name]
            elif name == "this":
                out += "$self"
            elif view is not None and has_member(kind, name):
                out += "$self->" + name
            else:
                out += name
        out += expression[at:]
        return out.replace("kesta.dll!", "").replace("std::basic_string<", "std::__cxx11::basic_string<")

    @staticmethod
    def arguments(text):
        depth, parts = 0, [""]
        for c in text:
            depth += {"(": 1, ")": -1}.get(c, 0)
            if c == "," and depth == 0:
                parts.append("")
            else:
                parts[-1] += c
        return [part for part in parts if part.strip()]

    # --- values

    def evaluate(self, expression, value, view, names=None):
        gdb.set_convenience_variable("self", value.address)
        kind = value.type.strip_typedefs().unqualified()
        return gdb.parse_and_eval(self.plain(expression, view, kind, names or {}))

    def holds(self, node, value, view, names=None):
        return node.get("Condition") is None or bool(self.evaluate(node.get("Condition"), value, view, names))

    def shown(self, expression, value, view, names=None):
        expression, length, form = split_format(expression)
        result = self.evaluate(expression, value, view, names)
        count = int(self.evaluate(length, value, view, names)) if length else None
        return self.text(result, form, count)

    def display(self, text, value, view, names=None):
        return "".join(self.shown(part, value, view, names) if code else part for code, part in pieces(text))

    def text(self, value, form="", count=None):
        value = self.resolved(value, form)
        kind = value.type.strip_typedefs().unqualified()
        view = self.view_of(kind)
        if view is not None:
            for node in view.findall(SPACE + "DisplayString"):
                try:
                    if self.holds(node, value, view):
                        return self.display(node.text, value, view)
                except gdb.error:
                    if node.get("Optional") != "true":
                        raise
            raise ValueError("no display string fits: " + view.get("Name"))
        return self.system_text(value, kind, form, count)

    @staticmethod
    def resolved(value, form):
        if value.type.code == gdb.TYPE_CODE_REF:
            value = value.referenced_value()
        if form != "nd" and (value.type.unqualified().name or "") == "ruvo::detail::object":
            value = value.cast(value.dynamic_type)
        return value

    @staticmethod
    def system_text(value, kind, form, count):
        """What the debugger shows by itself; of a class without a view of its own, as its base."""
        while kind.code == gdb.TYPE_CODE_STRUCT and kind.fields() and kind.fields()[0].is_base_class:
            if (kind.name or "").startswith("std::"):
                break
            kind = kind.fields()[0].type.strip_typedefs()
        name = kind.name or ""
        if count is not None:
            return kesta_gdb.wide(int(value), count)
        if form == "s8":
            return kesta_gdb.quoted(value.string("utf-8"), prefix="")
        if form == "c":
            return "L'%s'" % chr(int(value))
        if form == "x":
            return hex(int(value))
        if name.startswith("std::__cxx11::basic_string<wchar_t"):
            return kesta_gdb.wide_string(kesta_gdb.address_of(value))
        if name.startswith("std::vector<"):
            return "{ size=%d }" % kesta_gdb.elements(value)[1]
        if name.startswith("std::map<"):
            return "{ size=%d }" % kesta_gdb.number_at(kesta_gdb.address_of(value) + kesta_gdb.MAP_SIZE)
        if kind.code == gdb.TYPE_CODE_ENUM:
            return str(value).rsplit("::", 1)[-1]
        if kind.code == gdb.TYPE_CODE_FLT:
            return "%g" % float(value)
        if kind.code == gdb.TYPE_CODE_BOOL:
            return "true" if value else "false"
        return str(int(value))

    def items(self, value, form=""):
        """What a value expands to: names and texts."""
        value = self.resolved(value, form)
        view = self.view_of(value.type.strip_typedefs().unqualified())
        if view is None:
            return self.system_items(value, form)
        out = []
        for node in view.find(SPACE + "Expand"):
            tag = node.tag[len(SPACE) :]
            if not self.holds(node, value, view):
                continue
            if tag == "Item":
                out.append((node.get("Name"), self.shown(node.text, value, view)))
            elif tag == "ExpandedItem":
                expression, _, form = split_format(node.text)
                out += self.items(self.evaluate(expression, value, view), form)
            else:
                out += self.listed(node, value, view)
        return out

    def system_items(self, value, form):
        name = value.type.strip_typedefs().name or ""
        if name.startswith("std::__cxx11::basic_string<"):
            return [("[size]", str(kesta_gdb.number_at(kesta_gdb.address_of(value) + 8)))]
        if not name.startswith("std::vector<"):
            return []
        first, count = kesta_gdb.elements(value)
        return [("[%d]" % n, self.text((first + n).dereference(), form)) for n in range(count)]

    def listed(self, node, value, view):
        """A loop that counts."""
        counter, size = node.find(SPACE + "Variable"), node.find(SPACE + "Size")
        loop = node.find(SPACE + "Loop")
        item, step = loop
        name = counter.get("Name")
        if step.text != name + "++":
            raise ValueError("a loop that the tests don't know")
        n, out = int(counter.get("InitialValue")), []
        while self.holds(loop, value, view, {name: str(n)}):
            names = {name: str(n)}
            out.append((self.display(item.get("Name"), value, view, names), self.shown(item.text, value, view, names)))
            n += 1
        if n != int(self.evaluate(size.text, value, view)):
            raise ValueError("a list that tells a wrong size")
        return out

    # --- names

    def expressions(self, view):
        """All of them, of one view."""
        names = {node.get("Name"): "0" for node in view.iter(SPACE + "Variable")}
        for node in view.iter():
            tag = node.tag[len(SPACE) :]
            found = [node.get("Condition")]
            if tag == "DisplayString":
                found += [part for code, part in pieces(node.text) if code]
            elif tag in ("Item", "ExpandedItem", "StringView", "Size"):
                found.append(node.text)
            elif tag == "Intrinsic" and len(node) == 0:
                found.append(node.get("Name") + "()")
            if tag == "Item":
                found += [part for code, part in pieces(node.get("Name")) if code]
            for expression in filter(None, found):
                for part in split_format(expression)[:2]:
                    if part:
                        yield part, names

