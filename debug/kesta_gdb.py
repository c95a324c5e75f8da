# SPDX-License-Identifier: BSL-1.0
"""Shows the values of kesta in gdb.

Loading, by hand or in ~/.gdbinit:

    source PREFIX/share/kesta/kesta_gdb.py

or by itself, as a copy beside the program that is named after it: order.exe-gdb.py beside order.exe, where "set
auto-load safe-path" allows that folder. Then print, info locals and the like show what a value holds:

    (gdb) print order
    $1 = bundle of 2 = {["name"] = L"tin", ["parts"] = list of 2 = {[0] = 3, [1] = 4.5}}

"print/r" shows the members as they are. "set print elements" limits texts and containers as usual; beyond a million
nothing is shown, whatever it says, for a value that is not initialised may tell any length.
Works with programs of mingw-w64 and with builds for Linux. kesta.dll has to have debug information (a build of type
Debug or RelWithDebInfo), or the program has to be compiled with -femit-class-debug-always (clang: -fstandalone-debug):
compilers leave the description of such classes to the library that defines their virtual members.
"""

import datetime
import struct

import gdb
import gdb.printing

# --- what no public header shows: places in memory

WORD = 6  # in var::storage::bytes: the number, or the address of the value
MODE = 2  # in the same: how a date, time or datetime is read
HEAD = 2  # bytes before the same; what follows them is the length of a text, up to the word
STORE_ORDER, STORE_ENTRIES = 8, 24  # in a bundle_store, which begins with its size
MAP_ROOT, MAP_SIZE = 16, 40  # in a std::map
NODE_LEFT, NODE_RIGHT, NODE_VALUE = 16, 24, 32  # in a node of it
STRING_SIZE = 32  # of std::wstring
DETAIL = 64  # in the texts of an exception

MOST = 1 << 20  # elements that are shown
DEEPEST = 128  # nodes above each other in a std::map that memory has room for

SIGNED = ("short_", "int_", "long_", "xlong")
UNSIGNED = ("ushort", "uint", "ulong", "uxlong")


def read(address, count):
    """The bytes at an address, which may be of any value."""
    return gdb.selected_inferior().read_memory(address % (1 << 64), count).tobytes() if count else b""


def number_at(address):
    return int.from_bytes(read(address, 8), "little")


def signed(number):
    return number - (number >> 63 << 64)


def at(address, type_name):
    return gdb.Value(address).cast(gdb.lookup_type(type_name).pointer()).dereference()


def address_of(value):
    return pointer(value.address)


def pointer(value):
    return int(value.cast(gdb.lookup_type("unsigned long long")))


# --- texts


def quoted(text, cut=False, prefix="L"):
    escapes = {'"': '\\"', "\\": "\\\\", "\n": "\\n", "\r": "\\r", "\t": "\\t"}
    shown = "".join(escapes.get(c) or (c if c.isprintable() else "\\x%x" % ord(c)) for c in text)
    charset = gdb.host_charset()  # gdb fails where its own output has no place for a character
    shown = shown.encode(charset, "backslashreplace").decode(charset)
    return prefix + '"' + shown + '"' + ("..." if cut else "")


def unit_size():
    """Of wchar_t as the program has it: that of gdb itself need not be the same."""
    known = gdb.lookup_static_symbol("wchar_t")
    return (known.type if known else gdb.lookup_type("wchar_t")).sizeof


def limit():
    """How many elements the user wants to see."""
    return min(gdb.parameter("print elements") or MOST, MOST)


def wide(address, length):
    """The units at an address: UTF-16, in wchar_t of 16 or 32 bits."""
    shown = min(length, limit())
    size = unit_size()
    units = read(address, shown * size)
    if size == 4:
        # Literals of such a compiler have one unit where UTF-16 has two.
        points = (number for (number,) in struct.iter_unpack("<I", units))
        units = b"".join(chr(p if p < 0x110000 else 0xFFFD).encode("utf-16-le", "surrogatepass") for p in points)
    return quoted(units.decode("utf-16-le", "replace"), shown < length)


def wide_string(address):
    return wide(number_at(address), number_at(address + 8))


def narrow_string(address):
    length = number_at(address + 8)
    shown = min(length, limit())
    return quoted(read(number_at(address), shown).decode("utf-8", "replace"), shown < length, "")


# --- the calendar


def calendar_text(seconds, local, day=True, time=True):
    """As the value prints; in UTC and whole when it is read in local time, which only its process knows."""
    if seconds == -1:
        return "no value"
    # Of the same place in the 400 years from 1970: the calendar repeats, and datetime ends with the year 9999.
    eras, rest = divmod(seconds, 146097 * 86400)
    instant = datetime.datetime(1970, 1, 1) + datetime.timedelta(seconds=rest)
    year = instant.year + 400 * eras
    if abs(year) >> 31:
        return "%d seconds since 1970" % seconds  # no calendar of the library reaches there
    parts = []
    if day or local:
        parts.append("%02d-%02d-%s%04d" % (instant.day, instant.month, "-" if year < 0 else "", abs(year)))
    if time or local:
        parts.append("%02d:%02d:%02d" % (instant.hour, instant.minute, instant.second))
    return " ".join(parts) + (" UTC, read in local time" if local else "")


# --- what stands behind pointers


def elements(vector):
    """The elements of a std::vector."""
    ends = vector["_M_impl"]
    return ends["_M_start"], max(0, int(ends["_M_finish"] - ends["_M_start"]))


def map_nodes(map_address):
    """The addresses of the nodes of a std::map, in order."""
    above, node = [], number_at(map_address + MAP_ROOT)
    for _ in range(min(number_at(map_address + MAP_SIZE), MOST)):
        while node and len(above) < DEEPEST:
            above.append(node)
            node = number_at(node + NODE_LEFT)
        if not above:
            return
        yield above[-1]
        node = number_at(above.pop() + NODE_RIGHT)


class ListPrinter:
    def __init__(self, value):
        self.first, self.count = elements(value["soul_"])

    def to_string(self):
        return "list of %d" % self.count

    def children(self):
        for n in range(min(self.count, MOST)):
            yield "[%d]" % n, (self.first + n).dereference()


class BundlePrinter:
    """Entries by position."""

    def __init__(self, value):
        self.store = pointer(value["store_"])
        self.count = number_at(self.store) & 0xFFFFFFFF if self.store else 0

    def to_string(self):
        return "bundle of %d" % self.count

    def children(self):
        if not self.count:
            return
        order = number_at(self.store + STORE_ORDER)
        entries = at(self.store + STORE_ENTRIES, "ruvo::bundle::entry").address
        for n in range(min(self.count, MOST)):
            yield key_and_value(
                at(number_at(order + 8 * n), "ruvo::bundle::entry") if order else (entries + n).dereference()
            )


def key_and_value(entry):
    key = entry["first"]
    if key.type.code == gdb.TYPE_CODE_REF:
        key = key.referenced_value()
    return "[%s]" % wide_string(address_of(key)), entry["second"]


class EntryPrinter:
    """An entry of a bundle, or an iterator that stands on it."""

    def __init__(self, entry):
        self.entry = entry

    def to_string(self):
        return "entry"

    def children(self):
        yield key_and_value(self.entry)


def iterator_printer(value):
    return EntryPrinter(value["at_"].dereference()) if pointer(value["at_"]) else TextPrinter(value, lambda _: "end")


class QualitiesPrinter:
    """An xvar with qualities: its value, then they."""

    def __init__(self, value, qualities):
        self.value, self.qualities = value, qualities

    def to_string(self):
        return "value with qualities"

    def children(self):
        yield "value", self.value
        for node in map_nodes(self.qualities):
            key = wide_string(node + NODE_VALUE)
            yield "[%s]" % key, at(node + NODE_VALUE + STRING_SIZE, "ruvo::var")


class TextPrinter:
    """What shows as one text."""

    def __init__(self, value, show):
        self.value, self.show = value, show

    def to_string(self):
        return self.show(self.value)


# --- one printer for each class


def binary_text(value):
    first, count = elements(value["store_"])
    shown = min(count, limit())
    text = read(pointer(first), shown).hex(" ").upper()
    return "binary of %d" % count + (": " + text if text else "") + (" ..." if shown < count else "")


def exception_text(value):
    code = int(value["code_"]) & 0xFFFF
    texts = number_at(address_of(value["texts_"]))
    detail = texts + DETAIL
    shown = " (%s)" % wide_string(detail) if number_at(detail + 8) else ""
    return "%d.%d %s%s" % (code // 1000, code % 1000, narrow_string(texts), shown)


def color_text(value):
    parts = tuple(int(value[name]) for name in ("red_", "green_", "blue_")) + (float(value["alpha_"]),)
    return wide_string(address_of(value["html_"])) + " (%d, %d, %d, %g)" % parts


def lapse_text(value, day=True, time=True):
    return calendar_text(int(value["lapso_"]), int(value["huso_"]) == 1, day, time)


def decimal_text(value):
    scale = int(value["scale_"])
    digits = str(int(value["high_"]) << 64 | int(value["low_"])).rjust(scale + 1, "0")
    point = len(digits) - scale
    return ("-" if value["negative_"] else "") + digits[:point] + ("." if scale else "") + digits[point:]


def scalar_text(kind, data):
    """What a var shows that owns nothing or a text."""
    inside = address_of(data["bytes"])
    word = number_at(inside + WORD)
    if kind == "boolean":
        return "true" if word else "false"
    if kind == "wide_char":
        return "L'%s'" % quoted(chr(word & 0xFFFF), prefix="")[1:-1]
    if kind in SIGNED:
        return str(signed(word))
    if kind in UNSIGNED:
        return str(word)
    if kind in ("float_", "double_"):
        return "%g" % float(at(inside + WORD, "double"))
    if kind in ("date", "time", "datetime"):
        local = int.from_bytes(read(inside + MODE, 4), "little") == 1
        return calendar_text(signed(word), local, kind != "time", kind != "date")
    if kind == "small_text":
        return wide(inside + (0 if unit_size() == 2 else 2), int(data["length"]))
    if kind == "text":
        return wide(word, number_at(inside - HEAD) >> 16)
    if kind == "string_text":
        return wide_string(word)
    return kind


def held_object(kind, address):
    if kind == "object":
        held = at(address, "ruvo::detail::object")
        return held.cast(held.dynamic_type)["value"]
    return at(address, "ruvo::" + kind)


def var_printer(value):
    data = value["data_"]
    kind = str(data["kind"]).rsplit("::", 1)[-1]
    if kind.isdigit():
        return TextPrinter(data, lambda _: "not a value: kind " + kind)
    if kind in ("binary", "memo", "decimal", "object", "list", "bundle"):
        word = number_at(address_of(data["bytes"]) + WORD)
        try:
            found = find(held_object(kind, word))
            if found:
                return found
        except gdb.error:
            pass  # a class that the program's debug information does not tell: its name has to do
    return TextPrinter(data, lambda data: scalar_text(kind, data))


def xvar_printer(value):
    qualities, base = pointer(value["qualities_"]), value.cast(gdb.lookup_type("ruvo::var"))
    return QualitiesPrinter(base, qualities) if qualities else var_printer(base)


def shows(text):
    return lambda value: TextPrinter(value, text)


PRINTERS = {
    "ruvo::var": var_printer,
    "ruvo::xvar": xvar_printer,
    "ruvo::list": ListPrinter,
    "ruvo::bundle": BundlePrinter,
    "ruvo::bundle::entry": EntryPrinter,
    "ruvo::binary": shows(binary_text),
    "ruvo::memo": shows(lambda value: wide_string(address_of(value["text_"]))),
    "ruvo::decimal": shows(decimal_text),
    "ruvo::file": shows(lambda value: wide_string(address_of(value["path_"]))),
    "ruvo::lapse": shows(lapse_text),
    "ruvo::date": shows(lambda value: lapse_text(value, time=False)),
    "ruvo::time": shows(lambda value: lapse_text(value, day=False)),
    "ruvo::datetime": shows(lapse_text),
    "ruvo::velda::date": shows(
        lambda value: "%s, day %d" % (lapse_text(value, time=False), int(value["number_"]))
    ),
    "ruvo::color": shows(color_text),
}


def is_exception(kind):
    """Whether the class is one of the library's errors, which add nothing to their base."""
    return kind.name == "ruvo::exception" or (
        kind.code == gdb.TYPE_CODE_STRUCT
        and any(is_exception(field.type) for field in kind.fields() if field.is_base_class)
    )


def is_told(kind):
    """Whether the debug information describes the class, or only says that there is one."""
    parts = kind.fields()
    return bool(parts) and all(is_told(p.type) for p in parts if p.is_base_class and p.type.name.startswith("ruvo::"))


def find(value):
    """The printer for a value, or None. gdb calls it for everything that it prints."""
    if value.type.code in (gdb.TYPE_CODE_REF, gdb.TYPE_CODE_RVALUE_REF):
        value = value.referenced_value()
    kind = value.type.strip_typedefs().unqualified()
    if value.address is None or not (kind.name or "").startswith("ruvo::"):
        return None
    make = PRINTERS.get(kind.name)
    if not make and kind.name.startswith("ruvo::bundle::basic_iterator<"):
        make = iterator_printer
    elif not make and is_exception(kind):
        make = shows(exception_text)
    return make(value) if make and is_told(kind) else None


class Printers(gdb.printing.PrettyPrinter):
    def __call__(self, value):
        return find(value)


gdb.printing.register_pretty_printer(None, Printers("kesta"), replace=True)
