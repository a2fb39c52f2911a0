#!/usr/bin/env python3
"""Applies random small mutations to the library's sources, one at a time, and reports which of them
make a test fail.

usage: mutants.py BUILD [-n COUNT] [--seed SEED] [--only TEXT] [--list]

BUILD is a build folder of this tree with its tests built. Each mutant gets its own private root:
a mount namespace in which the system is read-only and the tree is an overlay, whose changes are
dropped after the run. A mutant therefore cannot damage the tree or the machine, whatever it
deletes. The same seed gives the same mutants as long as the sources do not change.
"""
import argparse
import collections
import os
import pathlib
import random
import re
import subprocess
import sys
import tempfile
import time

ROOT = pathlib.Path(__file__).resolve().parents[2]
LIBRARY = ("TavThread", "QBLCore", "i18n")
# Sources that no test of this machine can reach, or whose every change is invisible.
EXCLUDED = re.compile(r"CMakeLists|TavTrace")

SWAPS = {
    "compare": [(" == ", " != "), (" != ", " == ")],
    "boundary": [(" < ", " <= "), (" <= ", " < "), (" > ", " >= "), (" >= ", " > ")],
    "logic": [(" && ", " || "), (" || ", " && ")],
    "arithmetic": [(" + ", " - "), (" - ", " + "), (" += ", " -= "), (" -= ", " += ")],
    "bits": [(" & ", " | "), (" | ", " & "), (" >> ", " << ")],
    "flag": [("true", "false"), ("false", "true")],
}
# A statement that is one call or one assignment on one line; unlocks, fences and cleanups are such.
STATEMENT = re.compile(r"^( +)(?!return|throw|delete|case|default|else|using|typedef|static_assert)"
                       r"(?:[\w\[\]>.:*-]+(?:\(.*\)| [-+|&]?= [^;]*)|(?:\+\+|--)[\w.>-]+);$", re.M)
GUARD = re.compile(r"^ +(?:const )?\w*(?:Guard|guard|NoCancel|Calm)\w*(?:<[^>]*>)? \w+[({].*[)}];$", re.M)
NUMBER = re.compile(r"(?<![\w.<])(\d+)(?=[;,) \]])")
RESULT = re.compile(r"\breturn (?!(?:-?\d+|true|false|nullptr|\*this);)([^;{}]+);")
NEGATION = re.compile(r"(?<=\()!(?=[\w(])")


def masked(text):
    """Blanks comments, literals and preprocessor lines, so that no mutation hits them."""
    blank = lambda m: re.sub(r"[^\n]", "\0", m.group())
    return re.sub(r"//[^\n]*|/\*.*?\*/|\"(?:\\.|[^\"\\\n])*\"|'(?:\\.|[^'\\\n])*'"
                  r"|^[ ]*#(?:[^\n]*\\\n)*[^\n]*|^[^\n]*static_assert[^\n]*", blank, text, flags=re.S | re.M)


def sites(text):
    """Yields (kind, start, end, replacement)."""
    code = masked(text)
    for kind, pairs in SWAPS.items():
        for old, new in pairs:
            pattern = r"\b%s\b" % old if old.isalpha() else re.escape(old)
            for m in re.finditer(pattern, code):
                yield kind, m.start(), m.end(), new
    for m in STATEMENT.finditer(code):
        if "const " not in m.group() and "\0" not in m.group(1):
            yield "dropped", m.start() + len(m.group(1)), m.end(), ";"
    for m in NUMBER.finditer(code):
        yield "constant", m.start(), m.end(), str(int(m.group(1)) + 1)
    for kind, pattern, new in ("dropped", GUARD, ";"), ("return", RESULT, "{}"), ("negation", NEGATION, ""):
        for m in pattern.finditer(code):
            yield kind, *m.span(pattern.groups), new


def choose(rng, only):
    """Yields mutants without end: a random kind, then a random place of this kind."""
    by_kind = collections.defaultdict(list)
    for top in LIBRARY:
        for file in sorted((ROOT / top).rglob("*.[ch]pp")):
            path = str(file.relative_to(ROOT))
            if not EXCLUDED.search(path) and only in path:
                for site in sites(file.read_text("utf-8")):
                    by_kind[site[0]].append((path, *site))
    kinds = sorted(by_kind)
    while kinds:
        kind = rng.choice(kinds)
        places = by_kind[kind]
        yield places.pop(rng.randrange(len(places)))
        if not places:
            kinds.remove(kind)


# Runs in new namespaces. $1: the tree; $2: an empty directory; $3: the script to run in the new root.
PRIVATE_ROOT = r"""
set -e
tree=$1 new=$2
mount --make-rprivate /
mount -t tmpfs -o mode=755 root "$new"
mkdir -p "$new"/{proc,dev/shm,dev/pts,tmp,var/tmp,root,run,.upper,.work,"$tree"}
for d in usr etc bin sbin sys lib lib32 lib64 libx32; do
  [ -e "/$d" ] || continue
  if [ -L "/$d" ]; then ln -s "$(readlink "/$d")" "$new/$d"; continue; fi
  mkdir "$new/$d"
  mount --bind "/$d" "$new/$d"
  mount -o remount,bind,ro "$new/$d"
done
chmod 1777 "$new"/{tmp,var/tmp,dev/shm}
for d in null zero full random urandom tty; do touch "$new/dev/$d"; mount --bind "/dev/$d" "$new/dev/$d"; done
ln -s /proc/self/fd "$new/dev/fd"
ln -s /proc/self/fd/0 "$new/dev/stdin"
ln -s /proc/self/fd/1 "$new/dev/stdout"
ln -s /proc/self/fd/2 "$new/dev/stderr"
mount -t devpts -o newinstance,ptmxmode=666 devpts "$new/dev/pts"
ln -s pts/ptmx "$new/dev/ptmx"
mount -t proc proc "$new/proc"
mount -t overlay -o "lowerdir=$tree,upperdir=$new/.upper,workdir=$new/.work" overlay "$new/$tree"
[ ! -e "$MUTANT_FILE" ] || cp "$MUTANT_FILE" "$new/$tree/$MUTANT_PATH"
cd "$new"
# The old root goes away with its mounts, so nothing outside can be reached.
mkdir .old
pivot_root . .old
umount -l /.old
cd "$tree"
exec setarch i686 bash -c "$3"
"""

# Builds with the mutant; compares the object with that of the original; runs the tests of the area
# first, then all. Prints a verdict in the last line.
TRIAL = r"""
export CCACHE_DISABLE=1 HOME=/root TMPDIR=/tmp LC_ALL=C.UTF-8
ip link set lo up 2>/dev/null
killed() { grep -m1 -E '\*\*\*(Failed|Timeout|Exception|Not Run)|\(Failed\)|\(Timeout\)|\((SEGFAULT|ILLEGAL|Subprocess|SIG|ABRT|BUS)' "$1" | sed -E 's/^ *[0-9/]+ +Test +#[0-9]+: //; s/ \.\.+/ /'; }
cd "$BUILD"
if [ -n "$MUTANT_PATH" ]; then
  object=$(find QBLCore i18n TavThread CMakeFiles -path "*$MUTANT_PATH.o" 2>/dev/null | head -1)
  [ -z "$object" ] || strip -d -o /tmp/before.o "$object"
fi
timeout 900 ninja -j2 >/tmp/build.log 2>&1 || {
  if grep -q 'error:' /tmp/build.log && ! grep -q 'ninja: build stopped: interrupted' /tmp/build.log; then
    echo "verdict: invalid $(grep -m1 'error:' /tmp/build.log)"
  else
    echo "verdict: killed by the build: $(grep -m1 -E 'FAILED|timeout' /tmp/build.log)"
  fi
  exit
}
if [ -n "$object" ] && strip -d -o /tmp/after.o "$object" && cmp -s /tmp/before.o /tmp/after.o; then
  echo "verdict: equivalent (same machine code)"; exit
fi
# A test that fails runs once more, alone, because another process may have kept it from its processor.
run() {
  local where=.
  [ "$1" = . ] || where=tests/$1
  timeout 900 ctest --test-dir "$where" -j2 --stop-on-failure --no-tests=ignore --timeout 40 ${SKIP:+-E "$SKIP"} >/tmp/tests.log 2>&1 ||
    timeout 120 ctest --test-dir "$where" --rerun-failed --timeout 40 >/tmp/tests.log 2>&1
}
if [ -n "$AREA" ] && [ -d "tests/$AREA" ] && ! run "$AREA"; then
  echo "verdict: killed by $(killed /tmp/tests.log)"; exit
fi
if [ -z "$MUTANT_PATH" ]; then
  timeout 900 ctest --timeout 60 -j2 | sed -nE 's/^\t[0-9]+ - (.*) \(.*/fails: \1/p'; echo "verdict: survived"; exit
fi
run . && echo "verdict: survived" || echo "verdict: killed by $(killed /tmp/tests.log)"
"""


def area_of(path):
    top, *rest = path.split("/")
    if top == "QBLCore":
        return {"StartUp": "Frame", "Base": "FileManagement"}.get(rest[0], rest[0])
    return top


def trial(build, path, text, skipped=()):
    """Builds and tests the tree with this text as the file's; returns (verdict, output)."""
    with tempfile.TemporaryDirectory(prefix="qblmutant.", dir="/tmp") as work:
        root, file = pathlib.Path(work, "root"), pathlib.Path(work, "mutant")
        root.mkdir()
        if path:
            file.write_text(text, "utf-8")
        env = dict(os.environ, BUILD=build, MUTANT_PATH=path, MUTANT_FILE=str(file),
                   AREA=area_of(path) if path else "", SKIP="|".join("^%s$" % re.escape(name) for name in skipped))
        env.pop("LIBRARY_PATH", None)
        done = subprocess.run(["unshare", "-m", "-p", "-f", "-i", "-n", "--kill-child", "bash", "-c", PRIVATE_ROOT,
                               "bash", ROOT, root, TRIAL], env=env, stdin=subprocess.DEVNULL, check=False,
                              stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, errors="replace")
    found = re.findall(r"^verdict: (.*)$", done.stdout, re.M)
    return (found[-1] if found else "broken"), done.stdout


def apply(mutant):
    path, kind, start, end, new = mutant
    text = (ROOT / path).read_text("utf-8")
    after = text[:start] + new + text[end:]
    number = text.count("\n", 0, start)
    return after, number + 1, text.splitlines()[number].strip(), after.splitlines()[number].strip()


def report(results):
    per_file = collections.defaultdict(collections.Counter)
    for path, verdict in results:
        per_file[path][verdict] += 1
    for path in sorted(per_file):
        c = per_file[path]
        print("%-60s %d killed, %d survived, %d equivalent" % (path, c["killed"], c["survived"], c["equivalent"]))
    total = sum(per_file.values(), collections.Counter())
    counted = total["killed"] + total["survived"]
    print("%d of %d mutants killed (%.0f %%), %d equivalent" %
          (total["killed"], counted, 100.0 * total["killed"] / max(counted, 1), total["equivalent"]))


def main():
    parser = argparse.ArgumentParser(description="runs the tests against mutants of the library")
    parser.add_argument("build")
    parser.add_argument("-n", type=int, default=100)
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--only", default="", help="only files whose path contains this text")
    parser.add_argument("--list", action="store_true", help="print the mutants without running them")
    options = parser.parse_args()
    build = os.path.abspath(options.build)
    if os.geteuid() != 0:
        sys.exit("mutants: error: a private root needs the rights of root")
    skipped = []
    if not options.list:
        verdict, output = trial(build, "", "")
        skipped = re.findall(r"^fails: (.*)$", output, re.M)
        if verdict != "survived" or len(skipped) > 10:
            sys.exit("mutants: error: the tests fail without a mutation: %s\n%s" % (verdict, output))
        for name in skipped:
            print("left out, because it fails without a mutation: " + name, flush=True)
    results = []
    for mutant in choose(random.Random(options.seed), options.only):
        if sum(verdict != "equivalent" for _, verdict in results) >= options.n:
            break
        after, number, old, new = apply(mutant)
        if options.list:
            results.append((mutant[0], "killed"))
            print("%s:%d [%s]\n  - %s\n  + %s" % (mutant[0], number, mutant[1], old, new))
            continue
        begun = time.monotonic()
        verdict, output = trial(build, mutant[0], after, skipped)
        if verdict.startswith("invalid"):
            continue
        print("%s:%d [%s] %s (%.0f s)\n  - %s\n  + %s" %
              (mutant[0], number, mutant[1], verdict, time.monotonic() - begun, old, new), flush=True)
        if verdict == "broken":
            sys.exit("mutants: error: the private root failed:\n" + output)
        results.append((mutant[0], verdict.split()[0]))
    if not options.list:
        report(results)


if __name__ == "__main__":
    main()
