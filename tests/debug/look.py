"""gdb -nx -batch -x look.py PROGRAM: runs the program of shapes.cpp and compares what the printers for gdb and the
visualisers of Visual Studio show of its values with what stands here."""

import datetime
import os
import random
import sys

import gdb

root = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
sys.path[:0] = [os.path.join(root, "debug"), os.path.join(root, "tests", "debug")]
sys.dont_write_bytecode = True

import kesta_gdb  # noqa: E402, F401
import natvis  # noqa: E402

ORDER = (
    'bundle of 3 = {[L"zeta"] = 1, [L"alfa"] = list of 3 = {[0] = 3, [1] = L"x", [2] = null}, '
    '[L"texto"] = L"cadena"}'
)

# A name, what both show; or what gdb shows and what Visual Studio does.
TEXTS = [
    ("null", "null"),
    ("yes", "true"),
    ("letter", "L'ñ'"),
    ("negative", "-7"),
    ("small", "65535"),
    ("biggest", "18446744073709551615"),
    ("least", "-9223372036854775808"),
    ("real", "2.5"),
    ("single", "0.25"),
    ("day", "29-02-2024"),
    ("leap", "31-12-1899"),
    ("hour", "12:34:56"),
    ("moment", "24-04-1938 22:13:20"),
    ("local", "29-02-2000 00:00:00 UTC, read in local time"),
    ("nothing", "no value"),
    ("empty_text", 'L""'),
    ("short_text", r'L"añ\"o"'),
    ("long_text", 'L"una línea más larga que la celda"'),
    ("bytes", "binary of 4: 01 FF 20 7A", "binary { size=4 }"),
    ("note", 'L"nota"', 'memo L"nota"'),
    ("tint", 'L"#102030" (16, 32, 48, 1)'),
    ("none", "list of 0", "{ size=0 }"),
    ("numbers", 'list of 3 = {[0] = 3, [1] = L"x", [2] = null}', "{ size=3 }"),
    ("order", ORDER, "{ size=3 }"),
    ("nobody", "bundle of 0", "{ size=0 }"),
    ("boxed", ORDER, "bundle { size=3 }"),
    (
        "marked",
        'value with qualities = {value = 5, [L"a"] = L"a", [L"c"] = L"c", [L"m"] = L"m", [L"p"] = L"p", [L"x"] = L"x"}',
        "5 with qualities { size=5 }",
    ),
    ("instant", "01-01-1970 00:00:00"),
    ("date", "01-03-2000"),
    ("time", "23:59:59"),
    ("datetime", "31-12-2099 23:59:59"),
    ("unread", "29-02-2000 00:00:00 UTC, read in local time"),
    ("void_time", "no value"),
    ("velda", "29-02-2024, day 2460370"),
    ("error", r'12.7 "Algo falló con \"esto\""'),
    ("bad", '0.10 "El valor no cumple con el formato acordado. Revise su formato."'),
    ("path", r'L"C:\\datos\\año.txt"'),
    ("color", 'L"#102030" (16, 32, 48, 1)'),
]

# What Visual Studio lists when one opens a value.
ITEMS = [
    ("null", [("[kind]", "null")]),
    ("bytes", [("[kind]", "binary"), ("[0]", "0x1"), ("[1]", "0xff"), ("[2]", "0x20"), ("[3]", "0x7a")]),
    ("numbers", [("[0]", "3"), ("[1]", 'L"x"'), ("[2]", "null")]),
    ("order", [('[L"zeta"]', "1"), ('[L"alfa"]', "list { size=3 }"), ('[L"texto"]', 'L"cadena"')]),
    ("nobody", []),
    ("unread", [("[seconds]", "951782400"), ("[mode]", "LOCAL"), ("[text]", 'L""')]),
    ("marked", [("[qualities]", "{ size=5 }"), ("[kind]", "int_")]),
]

failures = []


def expect(what, found, expected):
    if found != expected:
        failures.append("%s\n  found    %s\n  expected %s" % (what, found, expected))


def compare():
    visualizers = natvis.Visualizers(os.path.join(root, "debug", "kesta.natvis"))
    for name, in_gdb, *in_studio in TEXTS:
        value = gdb.parse_and_eval(name)
        expect(name + " in gdb", value.format_string(), in_gdb)
        expect(name + " in Visual Studio", visualizers.text(value), in_studio[0] if in_studio else in_gdb)
    for name, items in ITEMS:
        expect("inside " + name, visualizers.items(gdb.parse_and_eval(name)), items)
    large(visualizers)
    calendar(visualizers)


def large(visualizers):
    """A store of the other form."""
    expected = [('[L"k%d"]' % (n * 7 % 200), str(n)) for n in range(200)]
    value = gdb.parse_and_eval("hundreds")
    expect("inside hundreds", visualizers.items(value), expected)
    children = [(name, child.format_string()) for name, child in gdb.default_visualizer(value).children()]
    expect("children of hundreds", children, expected)


def calendar(visualizers):
    """The fields that the visualisers reckon, of days at the edges and of others."""
    start, second = datetime.datetime(1970, 1, 1), datetime.timedelta(seconds=1)
    instants = [
        datetime.datetime(year, month, day) + n * second
        for year in (1, 4, 100, 400, 1600, 1900, 1969, 1970, 2000, 2024, 2100, 9998)
        for month, day in ((1, 1), (3, 1), (4, 1))
        for n in (-1, 0)
        if (year, month, n) != (1, 1, -1)
    ]
    chance = random.Random(1)
    instants += [start + chance.randrange(-60_000_000_000, 250_000_000_000) * second for _ in range(100)]
    for instant in instants:
        seconds = (instant - start) // second
        for name in ("year", "month", "day", "hour", "minute", "second"):
            reckoned = gdb.parse_and_eval(visualizers.plain("kesta_%s(%dLL)" % (name, seconds), None, None, {}))
            expect("%s of %s" % (name, instant), int(reckoned), getattr(instant, name))


def run():
    for setting in ("host-charset UTF-8", "width 0", "print elements 200", "confirm off", "debuginfod enabled off"):
        gdb.execute("set " + setting)
    gdb.execute("break look")
    gdb.execute("run")
    gdb.execute("up")
    compare()
    gdb.execute("kill")


try:
    run()
except (gdb.error, ValueError) as error:
    failures.append("gdb: %s" % error)
gdb.write("".join(failure + "\n" for failure in failures))
gdb.execute("quit %d" % bool(failures))
