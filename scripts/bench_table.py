#!/usr/bin/env python3
"""Measures the pairs of bench/pairs.txt and prints our figure beside each yardstick's.

Each pair runs in its own process. In this process, the repetitions of the two sides alternate. The
figures are medians. A measurement that other programs disturbed is repeated.
"""
import argparse
import datetime
import json
import os
import platform
import re
import statistics
import subprocess
import sys
import time

import bench_charts
import bench_tools

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
# The suffixes that Google Benchmark appends to a name.
SUFFIX = re.compile(r"(/real_time|/manual_time|/iterations:\d+|/threads:\d+)+$")
# The share of one processor that other programs may use during a measurement.
DISTURBED = 0.1


class Row:
    def __init__(self, line, area):
        self.area = area
        self.title, self.ours, self.peer, limit, clock = (part.strip() for part in line.split("|"))
        number, _, unit = limit.partition(" ")
        # True if the limit applies to our figure, not to the ratio.
        self.absolute = bool(unit) and not unit.startswith("of ")
        self.unit = unit if self.absolute else unit[len("of "):]
        self.limit = None if number == "-" else float(number)
        self.field = {"cpu": "cpu_time", "wall": "real_time", "own": "real_time"}[clock]

    def names(self):
        return tuple(side.partition(":")[0] for side in (self.ours, self.peer))

    def value(self, runs, side):
        """Returns the median of a side in its unit; None if the side was not measured."""
        name, _, counter = side.partition(":")
        values = [run[counter or self.field] for run in runs.get(name, [])]
        return statistics.median(values) if values else None

    def target(self):
        if self.limit is None:
            return "-"
        return f"{self.limit:g}" + (f" {self.unit}" if self.absolute else "")


def read_pairs(pattern):
    rows, area = [], ""
    with open(os.path.join(ROOT, "bench", "pairs.txt"), encoding="utf-8") as lines:
        for line in map(str.strip, lines):
            if line.startswith("["):
                area = line.strip("[]")
            elif line and not line.startswith("#"):
                rows.append(Row(line, area))
    return [row for row in rows
            if re.search(pattern, " ".join((row.title, row.ours, row.peer, row.area)))]


def others_time():
    """Returns the seconds of processor time that other programs than the measured programs used."""
    with open("/proc/stat", encoding="utf-8") as stat:
        user, nice, system, _, _, irq, softirq, steal = map(int, stat.readline().split()[1:9])
    ticks = user + nice + system + irq + softirq + steal
    times = os.times()
    return ticks / os.sysconf("SC_CLK_TCK") - times.children_user - times.children_system


def measure_undisturbed(measure, program, names, options):
    """Calls measure() up to options.attempts times. Returns the least disturbed result, and the share
    of a processor that other programs used during that measurement."""
    best = None
    for attempt in range(options.attempts):
        if attempt > 0:
            time.sleep(3 * attempt)
        others, start = others_time(), time.monotonic()
        runs = measure(program, names, options)
        share = (others_time() - others) / (time.monotonic() - start)
        if best is None or share < best[1]:
            best = runs, share
        if share <= DISTURBED:
            break
    return best


def escaped(name):
    """Escapes a name for Google Benchmark's regular expressions, which have no escaped hyphen."""
    return re.escape(name).replace(r"\-", "-")


def run_benchmarks(program, names, options):
    """Runs the benchmarks with these names. Returns the successful runs by name."""
    present = subprocess.run([program, "--benchmark_list_tests"], check=True, text=True,
                             stdout=subprocess.PIPE).stdout.split()
    chosen = [name for name in present if SUFFIX.sub("", name) in names]
    runs = {}
    if not chosen:
        return runs
    out = subprocess.run(
        [program, "--benchmark_filter=^(" + "|".join(map(escaped, chosen)) + ")$",
         f"--benchmark_repetitions={options.repetitions}", f"--benchmark_min_time={options.time}",
         "--benchmark_enable_random_interleaving=true", "--benchmark_format=json"],
        check=True, text=True, stdout=subprocess.PIPE, stderr=subprocess.PIPE).stdout
    for run in json.loads(out)["benchmarks"]:
        if run["run_type"] != "iteration":
            continue
        name = SUFFIX.sub("", run["run_name"])
        if run.get("error_occurred"):
            print(f"  {name}: {run['error_message']}", file=sys.stderr)
        else:
            runs.setdefault(name, []).append(run)
    return runs


class Measurements:
    """Makes the cells of the table (ours, peer, ratio, verdict) and collects notes about them."""

    def __init__(self, measure, programs, options):
        self.measure, self.programs, self.options = measure, programs, options
        self.done, self.notes = {}, []
        self.count = self.over = 0

    def cells(self, row):
        return [self.cell(row, width, program) for width, program in self.programs]

    def cell(self, row, width, program):
        names = row.names()
        if (width, names) not in self.done:
            self.done[width, names] = measure_undisturbed(self.measure, program, names,
                                                         self.options)
        runs, share = self.done[width, names]
        ours, peer = (row.value(runs, side) for side in (row.ours, row.peer))
        if ours is None or (peer is None and not row.absolute):
            missing = names[0] if ours is None else names[1]
            self.notes.append(f"{width}: {row.title}: not measured, {missing} is not available")
            return [""] * 4
        if share > DISTURBED:
            self.notes.append(f"{width}: {row.title}: disturbed, other programs used "
                              f"{share:.1f} processors")
        ratio = None if peer is None else ours / peer
        judged = ours if row.absolute else ratio
        verdict = "" if row.limit is None else "ok" if judged <= row.limit else "over"
        self.count += 1
        self.over += verdict == "over"
        return [figure(row, ours), figure(row, peer), "-" if ratio is None else f"{ratio:.2f}",
                verdict]


def figure(row, value):
    if value is None:
        return "-"
    unit = row.unit or "ns"
    if unit == "ns" and value >= 1e9:
        value, unit = value / 1e6, "ms"
    elif unit == "ns" and value >= 10000:
        value, unit = value / 1000, "us"
    return f"{value:.{0 if value >= 1000 else 1 if value >= 10 else 2}f} {unit}"


def machine():
    model = platform.machine()
    with open("/proc/cpuinfo", encoding="utf-8") as info:
        for line in info:
            if line.startswith("model name"):
                model = line.partition(":")[2].strip()
                break
    system = platform.freedesktop_os_release().get("PRETTY_NAME", platform.system())
    compiler = subprocess.run(["g++", "-dumpfullversion"], text=True, stdout=subprocess.PIPE,
                              check=False).stdout.strip()
    return [f"{len(os.sched_getaffinity(0))} processors, {model}",
            f"{system}, Linux {platform.release().partition('-')[0]}, g++ {compiler}",
            f"{datetime.date.today():%Y-%m-%d}, load {os.getloadavg()[0]:.1f} before the start"]


def print_line(line, title_width):
    # Prints each row as soon as it is measured, because the whole table takes minutes.
    texts = [line[0].ljust(title_width)] + [text.rjust(9) for text in line[1:]]
    print(" ".join(texts).rstrip(), flush=True)


def write_markdown(path, about, lines, notes, mark="measured"):
    """Replaces the text between the two marks of a page."""
    begin, end = f"<!-- {mark} -->", f"<!-- /{mark} -->"
    with open(path, encoding="utf-8") as page:
        before, found, rest = page.read().partition(begin)
    _, closed, after = rest.partition(end)
    if not found or not closed:
        raise SystemExit(f"bench: {path} lacks the marks {begin} and {end}: add them where the "
                         "table belongs")
    body = [f"- {line}" for line in about] + [""]
    rule = ["---"] + ["--:"] * (len(lines[0]) - 1)
    body += ["| " + " | ".join(line) + " |" for line in [lines[0], rule] + lines[1:]]
    body += [""] + [f"- {line}" for line in notes] if notes else []
    with open(path, "w", encoding="utf-8") as page:
        page.write(before + begin + "\n" + "\n".join(body) + "\n" + end + after)


def report(rows, results, options, mark):
    """Measures and prints one table. With --markdown, also writes the table and its charts."""
    about = machine()
    print("\n".join(about) + "\n")
    lines = [["pair", "at most"]]
    for width, _ in results.programs:
        lines[0] += [f"{width} ours", "peer", "ratio", ""]
    title_width = max(len(row.title) for row in rows)
    print_line(lines[0], title_width)
    for row in rows:
        cells = results.cells(row)
        if any(map(any, cells)):
            lines.append([row.title, row.target()] + [text for cell in cells for text in cell])
            print_line(lines[-1], title_width)
    print("".join(f"\n{note}" for note in results.notes))
    print(f"{results.count} figures, {results.over} over their limit\n")
    if options.markdown and len(lines) > 1:
        write_markdown(options.markdown, about, lines, results.notes, mark)
        bench_charts.write(os.path.dirname(options.markdown), lines,
                           {row.title: row.area for row in rows})


def draw_again(page, rows):
    """Draws the charts again from the figures of a page, without measuring."""
    areas = {row.title: row.area for row in rows}
    drawn = {line[0] for lines in bench_charts.tables(page) for line in lines[1:]}
    for title in areas:
        if title not in drawn:
            print(f"bench: not measured yet, not drawn: {title}", file=sys.stderr)
    for lines in bench_charts.tables(page):
        for line in lines[1:]:
            if line[0] not in areas:
                print(f"bench: {page}: not in bench/pairs.txt, not drawn: {line[0]}",
                      file=sys.stderr)
        bench_charts.write(os.path.dirname(page), lines, areas)


def main():
    parser = argparse.ArgumentParser(description=__doc__.partition("\n")[0])
    parser.add_argument("builds", nargs="*", metavar="WIDTH=FOLDER")
    parser.add_argument("--filter", default="", help="only rows that match this regular expression")
    parser.add_argument("--repetitions", type=int, default=5)
    parser.add_argument("--time", type=float, default=0.2, help="minimum seconds per repetition")
    parser.add_argument("--attempts", type=int, default=3,
                        help="how often a disturbed measurement is tried")
    parser.add_argument("--files", type=int, default=1000000,
                        help="number of files in the pair of many files")
    parser.add_argument("--mebibytes", type=int, default=1024, help="size of the large files")
    parser.add_argument("--markdown", metavar="PAGE",
                        help="also write the tables into this page and the charts beside it")
    parser.add_argument("--charts", metavar="PAGE",
                        help="only redraw the charts from the figures of this page")
    options = parser.parse_args()
    rows = read_pairs(options.filter)
    if not rows:
        raise SystemExit(f"bench: no row of bench/pairs.txt matches '{options.filter}'")
    if options.charts:
        draw_again(options.charts, rows)
        return
    builds = [build.split("=", 1) for build in options.builds]
    ours = [row for row in rows if row.area != "tools"]
    if ours:
        programs = [(width, f"{build}/bench/qblcore_bench") for width, build in builds]
        programs = [program for program in programs if os.path.exists(program[1])]
        report(ours, Measurements(run_benchmarks, programs, options), options, "measured")
    rows = [row for row in rows if row.area == "tools"]
    if rows:
        with bench_tools.Bench(options) as bench:
            report(rows, Measurements(bench.measure, builds, options), options, "measured-tools")


if __name__ == "__main__":
    main()
