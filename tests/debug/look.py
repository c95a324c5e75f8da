# SPDX-License-Identifier: BSL-1.0
"""gdb -nx -batch -x look.py PROGRAM: runs the program of shapes.cpp and compares what the printers for gdb and the
visualisers of Visual Studio show of its values with what stands here. A program for Windows runs under Wine, and gdb
comes to it; the exit code is 77 where the system does not let it."""

import datetime
import itertools
import os
import random
import signal
import subprocess
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
    ("amount", "-12.50", "-1250e-2"),
    ("many", "18446744073709551617.5", "(10 * 2^64 + 15)e-1"),
    ("tint", 'L"#102030" (16, 32, 48, 1)'),
    ("none", "list of 0", "{ size=0 }"),
    ("numbers", 'list of 3 = {[0] = 3, [1] = L"x", [2] = null}', "{ size=3 }"),
    ("order", ORDER, "{ size=3 }"),
    ("read", 'bundle of 2 = {[L"b"] = 1, [L"a"] = 2}', "{ size=2 }"),
    ("nobody", "bundle of 0", "{ size=0 }"),
    ("first", 'entry = {[L"alfa"] = list of 3 = {[0] = 3, [1] = L"x", [2] = null}}', 'L"alfa": list { size=3 }'),
    ("behind", "end"),
    ("*first.at_", 'entry = {[L"alfa"] = list of 3 = {[0] = 3, [1] = L"x", [2] = null}}', 'L"alfa": list { size=3 }'),
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
    ("bad", '0.15 "Argumento incorrecto: año" (L"año")'),
    ("path", r'L"C:\\datos\\año.txt"'),
    ("color", 'L"#102030" (16, 32, 48, 1)'),
    ("face", 'L"😀x"'),
    ("*(ruvo::var*)&anything", "not a value: kind 204"),
]

# What Visual Studio lists when one opens a value.
ITEMS = [
    ("null", [("[kind]", "null")]),
    ("bytes", [("[kind]", "binary"), ("[0]", "0x1"), ("[1]", "0xff"), ("[2]", "0x20"), ("[3]", "0x7a")]),
    ("numbers", [("[0]", "3"), ("[1]", 'L"x"'), ("[2]", "null")]),
    ("read", [('[L"b"]', "1"), ('[L"a"]', "2")]),
    ("order", [('[L"zeta"]', "1"), ('[L"alfa"]', "list { size=3 }"), ('[L"texto"]', 'L"cadena"')]),
    ("nobody", []),
    ("note", [("[kind]", "memo"), ("[size]", "4")]),
    ("unread", [("[seconds]", "951782400"), ("[mode]", "LOCAL"), ("[text]", 'L""')]),
    ("marked", [("[qualities]", "{ size=5 }"), ("[kind]", "int_")]),
]

failures = []


def expect(what, found, expected):
    if found != expected:
        failures.append("%s\n  found    %s\n  expected %s" % (what, found, expected))


def library_tells():
    """Whether it has debug information, which is where classes stand that no header shows."""
    try:
        return bool(gdb.lookup_type("ruvo::detail::object_of<ruvo::color>"))
    except gdb.error:
        return False


def compare():
    visualizers = natvis.Visualizers(os.path.join(root, "debug", "kesta.natvis"))
    for name, in_gdb, *in_studio in TEXTS:
        if name == "tint" and not library_tells():
            in_gdb = "object"
        value = gdb.parse_and_eval(name)
        expect(name + " in gdb", value.format_string(), in_gdb)
        expect(name + " in Visual Studio", visualizers.text(value), in_studio[0] if in_studio else in_gdb)
    for name, items in ITEMS:
        expect("inside " + name, visualizers.items(gdb.parse_and_eval(name)), items)
    gdb.execute("set host-charset ASCII")
    expect("short_text in ASCII", gdb.parse_and_eval("short_text").format_string(), r'L"a\xf1\"o"')
    gdb.execute("set host-charset UTF-8")
    large(visualizers)
    calendar(visualizers)
    years(visualizers)
    gdb.execute("set print elements unlimited")
    gdb.execute("python damaged()", to_string=True)  # gdb warns of classes that are not there


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


def years(visualizers):
    """Those of few and of many digits, as the library prints them."""
    for n in range(9):
        value = gdb.parse_and_eval("moments[%d]" % n)
        printed = kesta_gdb.wide_string(kesta_gdb.address_of(gdb.parse_and_eval("printed[%d]" % n)))[2:-1]
        expect("moment %d in gdb" % n, value.format_string(), printed)
        seconds = int(value["lapso_"])
        in_studio = printed if seconds >= -62167219200 else "%d seconds since 1970" % seconds
        expect("moment %d in Visual Studio" % n, visualizers.text(value), in_studio)


def damaged():
    """Memory that holds no values: the printers show what they can read, and ask for little."""
    chance = random.Random(1)
    process, read = gdb.selected_inferior(), kesta_gdb.read
    room = kesta_gdb.address_of(gdb.parse_and_eval("anything"))
    values = [gdb.parse_and_eval(name) for name in ("order", "hundreds", "marked", "bytes", "tint", "error", "first")]
    places = [kesta_gdb.address_of(value) for value in values]
    words = [kesta_gdb.number_at(place + n) for place in places for n in range(0, 32, 8)]
    kinds = [gdb.lookup_type(name) for name in kesta_gdb.PRINTERS] + [value.type for value in values[-2:]]

    def bounded(address, count):
        expect("a length to read", 0 <= count <= 4 * kesta_gdb.MOST, True)
        return read(address, count)

    def word():
        pick = [lambda: chance.randrange(1 << chance.randrange(1, 65)), lambda: room + 8 * chance.randrange(64)]
        pick += [lambda: chance.choice(places + words), lambda: chance.randrange(26), lambda: -chance.randrange(1, 64)]
        return chance.choice(pick)() % (1 << 64)

    def show(value, depth):
        printer = kesta_gdb.find(value)
        if printer:
            printer.to_string()
            if hasattr(printer, "children"):
                for _, child in itertools.islice(printer.children(), 4 if depth else 0):
                    show(child, depth - 1)

    kesta_gdb.read, kesta_gdb.MOST = bounded, 4096
    shown = 0
    for n in range(600):
        # At first all of it points to itself.
        words_here = [word() if n >= len(kinds) else room for _ in range(64)]
        process.write_memory(room, b"".join(number.to_bytes(8, "little") for number in words_here))
        kind = kinds[n % len(kinds)]
        try:
            show(gdb.parse_and_eval("anything").address.cast(kind.pointer()).dereference(), 3)
            shown += 1
        except gdb.error:
            pass  # gdb says what it cannot read
        except Exception as error:
            failures.append("damaged %s, round %d: %r" % (kind, n, error))
    kesta_gdb.read = read
    expect("many that can be read", shown > 200, True)


def come_to(program):
    """Starts the program under Wine and attaches to it."""
    runner = subprocess.Popen([os.path.join(root, "cmake", "wine-run.sh"), program, "wait"], stdout=subprocess.PIPE)
    if not runner.stdout.readline():
        raise ValueError("the program does not run under Wine")
    with open("/proc/%d/task/%d/children" % (runner.pid, runner.pid)) as children:
        process = int(children.read())
    try:
        gdb.execute("attach %d" % process)
    except gdb.error as error:
        os.kill(process, signal.SIGKILL)
        gdb.write("Not tested, for gdb may not attach to programs here: %s\n" % error)
        gdb.execute("quit 77")
    gdb.execute("handle all nostop noprint pass", to_string=True)  # Wine has uses for signals


def run():
    settings = ["host-charset UTF-8", "width 0", "print elements 200", "confirm off", "debuginfod enabled off"]
    for setting in settings + ["auto-solib-add off"]:
        gdb.execute("set " + setting)
    program = gdb.current_progspace().filename
    if program.endswith(".exe"):
        come_to(program)
    gdb.execute("break look")
    gdb.execute("continue" if program.endswith(".exe") else "run")
    gdb.execute("up")
    compare()


try:
    run()
except (gdb.error, OSError, ValueError) as error:
    failures.append("gdb: %s" % error)
if gdb.selected_inferior().pid:
    gdb.execute("kill")
gdb.write("".join(failure + "\n" for failure in failures))
gdb.execute("quit %d" % bool(failures))
