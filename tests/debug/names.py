# SPDX-License-Identifier: BSL-1.0
"""gdb -nx -batch -x names.py PROGRAM: what the files for the debuggers name is there, in the classes that the program
was built with. The program does not run, so that it may be one for Windows, or a DLL."""

import os
import re
import sys
import xml.etree.ElementTree as ElementTree

import gdb

root = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
sys.path[:0] = [os.path.join(root, "debug"), os.path.join(root, "tests", "debug")]
sys.dont_write_bytecode = True

import natvis  # noqa: E402

EXAMPLES = {
    "ruvo::detail::object_of<*>": "ruvo::detail::object_of<ruvo::color>",
    "ruvo::bundle::basic_iterator<*>": "ruvo::bundle::basic_iterator<ruvo::bundle::entry>",
}
# What steps into it is meant to arrive.
NOT_FILTERED = ["ruvo::var::to_string", "ruvo::bundle::hack", "ruvo::bundle::erase", "ruvo::exception::what"]
FILTER_SPACE = "{http://schemas.microsoft.com/vstudio/debugger/natstepfilter/2010}"

failures = []


def visualizers():
    """Each expression has a type."""
    count = 0
    loaded = natvis.Visualizers(os.path.join(root, "debug", "kesta.natvis"))
    for name, view in loaded.views.items():
        name = EXAMPLES.get(name, name)
        try:
            kind = gdb.lookup_type(name)
            gdb.execute("set $self = (%s*)0" % name)
        except gdb.error as error:
            failures.append("%s: %s" % (name, error))
            continue
        for expression, names in loaded.expressions(view):
            count += 1
            try:
                gdb.execute("whatis " + loaded.plain(expression, view, kind, names), to_string=True)
            except (gdb.error, ValueError) as error:
                failures.append("%s: %s: %s" % (name, expression, error))
    return count


def name_of(declaration):
    """The function's name in "result name(parameters)"."""
    declaration = declaration.replace("[abi:cxx11]", "")
    operator = declaration.find("::operator")
    # The name of an operator may have blanks and parentheses of its own.
    end = declaration.find("(", operator + len("::operator()") if operator >= 0 else 0)
    before = declaration[: operator if operator >= 0 else end]
    depth, start = 0, len(before)
    while start > 0 and (depth > 0 or before[start - 1] not in " *&"):
        start -= 1
        depth += {">": 1, "<": -1}.get(before[start], 0)
    return declaration[start:end]


def functions():
    """The names of the library's functions that the program has."""
    lines = gdb.execute("info functions -n -q ^ruvo::", to_string=True).splitlines()
    return {name_of(line.split("\t", 1)[1]) for line in lines if re.match(r"\d+:\t.*\(", line)}


def step_filter():
    """Each line meets a function, and none of them a function that works."""
    known = functions()
    steps = ElementTree.parse(os.path.join(root, "debug", "kesta.natstepfilter"))
    names = [node.text for node in steps.iter(FILTER_SPACE + "Name")]
    for name in names:
        if not any(re.fullmatch(name, function) for function in known):
            failures.append("step filter: nothing is called " + name)
    for function in NOT_FILTERED:
        if function not in known:
            failures.append("step filter: the program has no %s to try" % function)
        failures.extend("step filter: %s meets %s" % (name, function) for name in names if re.fullmatch(name, function))
    return len(names)


gdb.execute("set host-charset UTF-8")
gdb.execute("set language c++")  # a DLL has no main function to tell
told = "%d expressions, %d lines of the step filter\n" % (visualizers(), step_filter())
gdb.write("".join(failure + "\n" for failure in failures) + told)
gdb.execute("quit %d" % bool(failures))
