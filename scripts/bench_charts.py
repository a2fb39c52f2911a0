"""Draws the ratios of a benchmark table: one chart per area, with one bar per row and width."""
import math
import os
import re
from xml.sax.saxutils import escape

AREAS = {
    "threads": "Lists, errors, threads and pools",
    "start": "Start-up and memory",
    "files": "Files and housekeeping",
    "strings": "Strings",
    "utf": "Strings from and to UTF-8",
    "converters": "Converters",
    "messages": "Messages and objects",
    "types": "Data types and utilities",
    "tools": "Programs",
}
# Bars of ratios outside this range end at the edge; the figure next to the bar shows the real ratio.
LEAST, MOST = 1 / 64, 4
TITLES, PLOT, FIGURES = 470, 330, 90  # widths, from left to right
TOP, ROW, BAR = 62, 24, 8
WIDTH = TITLES + PLOT + FIGURES
SHADES = (("#0b6e4f", "#c2571a"), ("#63b995", "#eda268"))  # per width: faster, slower than the peer


def place(ratio):
    part = math.log(min(max(ratio, LEAST), MOST) / LEAST) / math.log(MOST / LEAST)
    return round(TITLES + part * PLOT, 1)


def text(x, y, what, anchor="start", more=""):
    return f'<text x="{x}" y="{y}" text-anchor="{anchor}"{more}>{escape(what)}</text>'


def line(x, top, bottom, colour, width=1):
    return f'<path d="M{x} {top}V{bottom}" stroke="{colour}" stroke-width="{width}"/>'


def ratio_of(cell):
    return float(cell) if re.fullmatch(r"[\d.]+", cell) else None


class Pair:
    """A table row: title, limit, and for each width our figure, the peer's, ratio, verdict."""

    def __init__(self, cells):
        self.title = cells[0]
        # A limit with a unit applies to our figure, not to the ratio.
        self.limit = ratio_of(cells[1])
        self.ratios = [ratio_of(cell) for cell in cells[4::4]]

    def draw(self, y):
        parts = [text(TITLES - 10, y + 13, self.title, "end")]
        for number, ratio in enumerate(self.ratios):
            top = y + 3 + number * (BAR + 1)
            if ratio is None:
                continue
            left, right = sorted((place(1), place(ratio)))
            colour = SHADES[number % 2][ratio > 1]
            parts.append(f'<rect x="{left}" y="{top}" width="{max(right - left, 1):.1f}" '
                         f'height="{BAR}" fill="{colour}"/>')
        if self.limit is not None and LEAST <= self.limit <= MOST:
            parts.append(line(place(self.limit), y + 1, y + ROW - 2, "#b00020", 2))
        shown = " / ".join("-" if ratio is None else f"{ratio:.2f}" for ratio in self.ratios)
        parts.append(text(WIDTH - 10, y + 13, shown, "end"))
        return parts


def chart(heading, widths, pairs):
    bottom = TOP + len(pairs) * ROW
    height = bottom + 14
    parts = [f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {WIDTH} {height}" '
             f'width="{WIDTH}" height="{height}" font-family="sans-serif" font-size="11" fill="#222">',
             f"<title>{escape(heading)}</title>",
             f'<rect width="{WIDTH}" height="{height}" rx="6" fill="#fff"/>',
             text(12, 24, heading, more=' font-size="15" font-weight="bold"'),
             text(12, 42, "ours / the yardstick's, in time or memory; left of 1 is less; red: at most",
                  more=' fill="#666"'),
             text(WIDTH - 10, TOP - 12, " / ".join(widths), "end", ' font-weight="bold"')]
    for number, width in enumerate(widths):
        x = TITLES + number * 70
        parts += [f'<rect x="{x}" y="14" width="10" height="10" fill="{colour}" '
                  f'transform="translate({shift} 0)"/>'
                  for shift, colour in zip((0, 12), SHADES[number % 2])]
        parts.append(text(x + 27, 23, width))
    for power in range(int(math.log2(LEAST)), int(math.log2(MOST)) + 1, 2):
        ratio = 2.0 ** power
        x = place(ratio)
        parts.append(line(x, TOP - 6, bottom, "#888" if ratio == 1 else "#ddd"))
        label = f"{ratio:g}" if ratio >= 1 else f"1/{1 / ratio:g}"
        parts.append(text(x, TOP - 12, label, "middle", ' fill="#666"'))
    for number, pair in enumerate(pairs):
        parts += pair.draw(TOP + number * ROW)
    return "\n".join(parts + ["</svg>", ""])


def write(folder, lines, areas):
    """Writes a chart for each area that has figures.

    lines: the rows of the table, the header first; areas: maps titles of pairs to names of areas.
    """
    widths = [cell.split()[0] for cell in lines[0][2::4]]
    charts = {}
    for pair in map(Pair, lines[1:]):
        if pair.title in areas and any(ratio is not None for ratio in pair.ratios):
            charts.setdefault(areas[pair.title], []).append(pair)
    for area, pairs in charts.items():
        with open(os.path.join(folder, f"benchmarks-{area}.svg"), "w", encoding="utf-8") as out:
            out.write(chart(AREAS[area], widths, pairs))
    return sorted(charts)


def tables(path):
    """Returns each benchmark table of a page as a list of rows, each a list of cells."""
    found = []
    with open(path, encoding="utf-8") as page:
        previous = ""
        for row in page:
            if row.startswith("| "):
                if not previous.startswith("| "):
                    found.append([])
                found[-1].append([cell.strip() for cell in row.strip()[1:-1].split("|")])
            previous = row
    return [[table[0]] + table[2:] for table in found if table[0][0] == "pair"]
