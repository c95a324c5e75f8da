#!/usr/bin/env python3
# SPDX-License-Identifier: BSL-1.0
"""What the benchmarks have measured, as a table of text and as a page with plots.

    docs/site/benchmarks.py record RECORD NOTE RUN...   the medians of several runs' output, with a line about them
    docs/site/benchmarks.py page RECORD                 a page of HTML of them
    docs/site/benchmarks.py fell OLD... -- NEW...       the rows in which the median of the new build's runs is worse
                                                        than the worst run of the old build
"""

import html
import math
import re
import statistics
import sys
from dataclasses import dataclass
from pathlib import Path

FACTORS = {"us": 1e3, "ms": 1e6}  # what the programs shorten to
COLOURS = ("#3987e5", "#1baf7a", "#eda100", "#9085e9", "#e66767", "#d55181")
TITLES = {"app": "Applications and threads", "even": "Small and large documents", "files": "Whole files",
          "jobs": "Jobs", "json": "JSON", "listing": "Listing folders", "memory": "Memory of documents",
          "messages": "Mails and digests", "start": "Start of a program", "text": "Text",
          "threads": "Two threads at once", "time": "Dates and times", "trees": "Destroying and copying documents",
          "values": "Values and records", "xml": "XML"}


@dataclass
class Row:
    """One figure of kesta's beside a peer's, as bench/support/harness.hpp describes the fields of its lines."""
    subject: str
    row: str
    of: str
    own: float
    unit: str
    peer: str
    its: float
    ratio: float
    cost: bool
    wanted: float | None

    @property
    def key(self):
        return self.subject, self.row, self.of, self.peer

    @property
    def reached(self):
        return self.wanted is None or (self.ratio <= self.wanted if self.cost else self.ratio >= self.wanted)

    @property
    def goal(self):
        if self.wanted is None:
            return "-"
        return f"at {'most' if self.cost else 'least'} {self.wanted:.2f}: {'ok' if self.reached else 'MISS'}"

    def better(self, ratio):
        """How many times as good as the peer."""
        return 1 / max(ratio, 1e-9) if self.cost else ratio


def figure(text):
    value, unit = text.split()
    return (float(value) * FACTORS.get(unit, 1), "ns") if unit in FACTORS else (float(value), unit)


def shown(value, unit):
    for name, factor in (("ms", 1e6), ("us", 1e3)):
        if unit == "ns" and value >= max(factor, 1e4):
            value, unit = value / factor, name
            break
    return f"{value:.{2 if value < 10 else 1 if value < 100 else 0}f} {unit}"


def rows_of(text):
    for line in text.splitlines():
        fields = [field.strip() for field in line.split("|")]
        if len(fields) != 8 or line.startswith("#") or fields[0] == "subject":
            continue
        (own, unit), (its, _) = figure(fields[3]), figure(fields[5])
        ratio, kind = fields[6].split()
        wanted = re.match(r"at (?:most|least) ([\d.]+)", fields[7])
        yield Row(*fields[:3], own, unit, fields[4], its, float(ratio), kind == "of",
                  float(wanted[1]) if wanted else None)


def medians(runs):
    """Rows in the order of the first run; all runs must have the same ones."""
    by_key = [{row.key: row for row in run} for run in runs]
    for other in by_key[1:]:
        for key in by_key[0].keys() ^ other.keys():
            sys.exit(f"not in every run: {' | '.join(key)}")
    for key, row in by_key[0].items():
        same = [run[key] for run in by_key]
        row.own, row.its, row.ratio = (statistics.median(getattr(one, name) for one in same)
                                       for name in ("own", "its", "ratio"))
        yield row


def line(row):
    return " | ".join((f"{row.subject:<7}", f"{row.row:<21}", f"{row.of:<18}", f"{shown(row.own, row.unit):>13}",
                       f"{row.peer:<16}", f"{shown(row.its, row.unit):>13}",
                       f"{row.ratio:7.2f} {'of' if row.cost else 'x ':2}", row.goal))


def record(note, runs):
    rows = list(medians(runs))
    missed = sum(not row.reached for row in rows)
    checked = sum(row.wanted is not None for row in rows)
    head = [f"# {note}, medians of {len(runs)} runs; {missed} of {checked} goals missed.",
            "# subject | row | measured on | kesta | peer | its figure | x: times as fast, of: of its cost | goal"]
    return "\n".join(head + [line(row) for row in rows]) + "\n"


def fell(old, new):
    """Lines of the rows that got worse; a row that one of the builds does not have is left out."""
    before = [{row.key: row for row in run} for run in old]
    common = set.intersection(*(set(run) for run in before))
    for row in medians(new):
        if row.key in common:
            worst = min(row.better(run[row.key].ratio) for run in before)
            if row.better(row.ratio) < worst:
                yield f"{line(row)} (the worst before: {row.better(worst):.2f})"


# --- plots


def groups(rows, name):
    """The rows by a field or property, in their order."""
    out = {}
    for row in rows:
        out.setdefault(getattr(row, name), []).append(row)
    return out


def text(x, y, content, more=""):
    return f'<text x="{x:.0f}" y="{y:.0f}"{more}>{html.escape(content)}</text>'


def svg(title, height, parts):
    return (f'<svg class="bench" role="img" viewBox="0 0 720 {height}" width="720" height="{height}" font-size="11" '
            f'font-family="sans-serif" fill="currentColor"><title>{html.escape(title)}</title>' + "".join(parts) + "</svg>")


def legend(names):
    out = []
    for n, name in enumerate(names):
        out.append(f'<rect x="{170 + 110 * n}" y="3" width="10" height="10" fill="{COLOURS[n % len(COLOURS)]}"/>')
        out.append(text(184 + 110 * n, 12, name))
    return out


def bars(title, rows):
    """A bar for each comparison, from the line of equality, to the right where kesta is better; a tick is the goal."""
    peers = list(groups(rows, "peer"))
    values = [row.better(value) for row in rows for value in (row.ratio, row.wanted) if value]
    low, high = math.log(min(0.5, *values)), math.log(max(2.0, *values))

    def at(value):
        return 220 + (math.log(value) - low) / (high - low) * 430

    parts, y = legend(peers), 22
    for of, some in groups(rows, "of").items():
        parts.append(text(0, y + 10, of))
        for row in some:
            value = row.better(row.ratio)
            left, right = sorted((at(1), at(value)))
            goal = at(row.better(row.wanted)) if row.wanted else left
            colour = COLOURS[peers.index(row.peer) % len(COLOURS)]
            parts.append(f'<rect x="{left:.1f}" y="{y}" width="{max(right - left, 1):.1f}" height="11" fill="{colour}"/>')
            if row.wanted:
                parts.append(f'<path d="M{goal:.1f} {y - 1}v13" stroke="currentColor" stroke-width="2"/>')
            parts.append(text(max(right, goal) + 4, y + 9, f"{row.ratio:.2f} {'of' if row.cost else 'x'}"))
            y += 14
        y += 5
    parts.append(f'<path d="M{at(1):.1f} 18V{y}" stroke="currentColor"/>')
    return svg(title, y + 4, parts)


def curves(title, rows):
    """A line for each library: what a character costs by size."""
    sizes = list(groups(rows, "of"))
    lines = {"kesta": []}
    for some in groups(rows, "of").values():
        lines["kesta"].append(some[0].own)
        for row in some:
            lines.setdefault(row.peer, []).append(row.its)
    most = max(max(values) for values in lines.values())
    parts = legend(lines)
    for n, size in enumerate(sizes):
        parts.append(text(220 + 130 * n, 236, size, ' text-anchor="middle"'))
    for value in (0, most / 2, most):
        parts.append(text(160, 224 - value / most * 190, f"{value:.1f} ns", ' text-anchor="end"'))
    for n, values in enumerate(lines.values()):
        points = " ".join(f"{220 + 130 * i},{220 - value / most * 190:.1f}" for i, value in enumerate(values))
        parts.append(f'<polyline points="{points}" fill="none" stroke="{COLOURS[n % len(COLOURS)]}" stroke-width="2"/>')
    return svg(title, 242, parts)


def table(rows):
    heads = ("", "measured on", "kesta", "peer", "its", "ratio", "goal")
    out = ["<table class=\"markdownTable\"><tr>" + "".join(f"<th>{head}</th>" for head in heads) + "</tr>"]
    for row in rows:
        cells = (row.row, row.of, shown(row.own, row.unit), row.peer, shown(row.its, row.unit),
                 f"{row.ratio:.2f} {'of' if row.cost else 'x'}", row.goal)
        out.append("<tr>" + "".join(f"<td>{html.escape(cell)}</td>" for cell in cells) + "</tr>")
    return "\n".join(out) + "</table>"


def plots(rows):
    for name, some in groups(rows, "row").items():
        by_size = [row for row in some if row.unit == "ns/char" and not row.cost]
        yield f"<h3>{html.escape(name)}</h3>"
        yield curves(name, by_size) if by_size else bars(name, some)


def fragment(content):
    """The plots and tables of a record."""
    out = ["<p>" + html.escape(content.splitlines()[0].lstrip("# ")) + "</p>"]
    for subject, rows in groups(list(rows_of(content)), "subject").items():
        out += [f"<h2>{html.escape(TITLES.get(subject, subject))}</h2>", *plots(rows),
                "<details><summary>All figures</summary>", table(rows), "</details>"]
    return "\n".join(out)


def runs_in(paths):
    return [list(rows_of(Path(path).read_text(encoding="utf-8"))) for path in paths]


def main():
    if len(sys.argv) > 4 and sys.argv[1] == "record":
        Path(sys.argv[2]).write_text(record(sys.argv[3], runs_in(sys.argv[4:])), encoding="utf-8", newline="\n")
    elif len(sys.argv) > 4 and sys.argv[1] == "fell" and "--" in sys.argv[3:-1]:
        middle = sys.argv.index("--")
        print("\n".join(fell(runs_in(sys.argv[2:middle]), runs_in(sys.argv[middle + 1:]))))
    elif len(sys.argv) == 3 and sys.argv[1] == "page":
        print("<!doctype html><meta charset=\"utf-8\"><title>Benchmarks</title><body style=\"font-family: sans-serif\">"
              + fragment(Path(sys.argv[2]).read_text(encoding="utf-8")))
    else:
        sys.exit(__doc__)


if __name__ == "__main__":
    main()
