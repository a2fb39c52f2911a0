#!/usr/bin/env python3
"""Compares qblconv with uconv (ICU) and iconv (glibc), character by character, both ways.

    differential.py [--full | --encoding NAME ...] [--show] [--update] QBLCONV

ICU has the tables of qblconv: any difference from uconv is a fault, except where uconv writes bytes
that read as another character and qblconv reports that the encoding lacks the character. glibc has
tables of its own: what differs is recorded in differential.txt beside this script, and anything
else is a fault. What qblconv writes without a report reads as the same text again, with qblconv and
with uconv. Without --full a dozen encodings of different kinds are compared.
"""
import argparse
import bisect
import concurrent.futures
import itertools
import os
import re
import subprocess
import sys
import unicodedata

from differential_record import reason_of, recorded, summary_of, write
from glibc_iconv import Iconv

FEW = ["Shift_JIS", "EUC-JP", "ISO-2022-JP", "GB18030", "Big5", "EUC-KR", "KOI8-R", "windows-1252",
       "ISO-8859-2", "IBM437", "IBM037", "ibm-930_P120-1999", "UTF-16", "UTF-32LE", "HZ-GB-2312"]
# All of the BMP, and beyond it some blocks, every seventh ideograph of plane 2, and ends of planes.
# Each stands on a line of its own, so LF is not among them.
CHARACTERS = [chr(c) for c in [*range(0xD800), *range(0xE000, 0x10000), *range(0x10000, 0x10100),
                               *range(0x1F300, 0x1F700), *range(0x20000, 0x30000, 7),
                               *range(0xE0000, 0xE0080), *range(0xF0000, 0xF0100),
                               *range(0x10FF00, 0x110000)] if c != 0x0A]
# ICU's converters to these depend on how much they get at a time; the meaning does not.
PORTIONED = re.compile("SCSU|BOCU|LMBCS|HZ|compound|version=")
# Of LMBCS two characters do not come back, and ICU does not tell; its converters to ISCII take and
# refuse characters wrongly after one that they lack, and are left out (i18n_text_stream.hpp).
SILENT = {"LMBCS": "\ufffe\uffff"}
LEFT_OUT = re.compile("ISCII")
# What ICU's converters from these say of malformed bytes depends on how much they get at a time.
MALFORMED = re.compile("BOCU|compound")
# glibc drops these without a word, in every encoding that lacks them.
TAGS = {chr(c) for c in range(0xE0000, 0xE0080)}
# A code of two bytes between the shifts to its set and back.
SHIFTED = re.compile(rb"((?:\x1b[ -/]+[0-~]|\x1b[NO]|\x0e|~\{)+)..(\x0f|\x1b\(B|~\}|)", re.DOTALL)
LIMIT = 600  # seconds for one program


class Fault(Exception):
    """What no record excuses."""


def kind_of(ours, theirs):
    return "glibc-only" if ours is None else "qblconv-only" if theirs is None else "differs"


def split(output, feed, count):
    """Lines in an encoding; None if its line ends do not tell them apart."""
    if not feed:
        return None
    if len(feed) == 1:
        lines = output.split(feed)
    else:
        width, lines, line = len(feed), [], b""
        for at in range(0, len(output), width):
            unit = output[at:at + width]
            line += unit
            if unit == feed:
                lines.append(line[:-width])
                line = b""
        lines.append(line)
    return lines[:-1] if len(lines) == count + 1 and not lines[-1] else None


class Comparison:
    """Of one encoding. A difference from glibc is: way, kind, reason, what, ours, theirs."""

    def __init__(self, qblconv, name, glibc):
        self.qblconv, self.name, self.glibc = qblconv, name, glibc
        self.differences = []

    def check(self):
        self.find_characters()
        self.check_single_characters()
        self.compare_output()
        self.check_return()
        self.compare_sequences()
        return self.differences

    def require(self, holds, *what):
        if not holds:
            raise Fault(f"{self.name}: " + " ".join(str(each) for each in what))

    def codes(self, way):
        return ["-f", "UTF-8", "-t", self.name] if way == "to" else ["-f", self.name, "-t", "UTF-8"]

    def ours(self, way, text, *options):
        if way == "to" and self.name.endswith("_PlatformEndian"):
            options += ("--bom=strip",)  # uconv adds no mark to these
        return run([self.qblconv, *self.codes(way), *options], text)

    def icu(self, way, text, callback="stop"):
        options = ["--no-fallback", f"--{way}-callback", callback]
        return run(["uconv", *self.codes(way), *options], text)

    def encode(self, text):
        return self.ours("to", text)[1]

    def find_characters(self):
        """All that -n does not report are characters of the encoding."""
        # Sets of two bytes have no line ends; all stands on one line then.
        self.end = "\n" if self.ours("to", b"\n")[0] == 0 else ""
        status, _, said = self.check_only(self.text_of(CHARACTERS), self.codes("to"))
        lacking = [chr(int(code, 16)) for code in re.findall(r": U\+([0-9A-F]+) is not in ", said)]
        self.lacking = set(lacking)
        self.require(len(lacking) == said.count("\n") == len(self.lacking), "reports", said[:200])
        self.require(status == (1 if lacking else 0), "-n ends with", status)
        self.has = [c for c in CHARACTERS if c not in self.lacking]
        self.feed = self.encode(b"\n\n")[len(self.encode(b"\n")):]
        self.is_marked = self.feed != self.encode(b"\n")

    def text_of(self, characters):
        return "".join(each + self.end for each in characters).encode()

    def check_only(self, text, codes):
        return run([self.qblconv, "-n", *codes, "-"], text)

    def check_single_characters(self):
        """One that is lacking fails with all programs, one that is there with none."""
        lacking = sorted(self.lacking)
        for c in lacking[::len(lacking) // 3 + 1] + self.has[::len(self.has) // 3 + 1]:
            text, wanted = c.encode(), int(c in self.lacking)
            status, output, said = self.ours("to", text)
            self.require(status == wanted, f"U+{ord(c):04X}", status, said)
            self.require((f"U+{ord(c):04X} is not in" in said) == bool(wanted), said)
            theirs = self.icu("to", text)
            if wanted:
                is_right = theirs[0] != 0 or self.icu("from", theirs[1])[1] != text
            else:
                is_right = theirs[:2] == (0, output)
            self.require(is_right, f"U+{ord(c):04X} with uconv", theirs)

    def compare_output(self):
        """With what is lacking left out; without it there is nothing to be said."""
        status, self.output, said = self.ours("to", self.text_of(self.has))
        self.require(status == 0 and not said, "writes what it has with", status, said[:200])
        self.lines = split(self.output, self.feed, len(self.has))
        text = self.text_of(CHARACTERS)
        ours, theirs = self.ours("to", text, "-c", "-q")[1], self.icu("to", text, "skip")[1]
        if ours == theirs or PORTIONED.search(self.name):
            return
        if not self.end:
            theirs = self.icu("to", self.text_of(self.has))
            self.require(theirs[:2] == (0, self.output), "the output is not that of uconv")
            return
        ours, theirs = (split(each, self.feed, len(CHARACTERS)) for each in (ours, theirs))
        self.require(ours and theirs, "the output is not that of uconv")
        changed = [row for row in zip(CHARACTERS, ours, theirs) if row[1] != row[2]]
        read = self.icu("from", b"".join(b + self.feed for _, _, b in changed))[1].decode()
        for (c, a, b), again in zip(changed, read.split("\n")):
            self.require(not a and again != c, f"U+{ord(c):04X}: {a.hex()}, with uconv {b.hex()}")

    def check_return(self):
        silent = "".join(SILENT[each] for each in SILENT if each in self.name)
        wanted = [c for c in self.has if c not in silent]
        output = self.output if len(wanted) == len(self.has) else self.encode(self.text_of(wanted))
        for who, read in (("qblconv", self.ours), ("uconv", self.icu)):
            result = read("from", output)
            text = result[1].decode("utf-8", "replace")
            again = text.split("\n")[:-1] if self.end else list(text)
            changed = [f"U+{ord(a):04X}: {b!r}" for a, b in zip(wanted, again) if a != b]
            self.require(result[0] == 0 and again == wanted, "does not come back by", who,
                         changed[:9])

    def compare_sequences(self):
        if self.lines is None or MALFORMED.search(self.name):
            return
        lines = dict(zip(self.has, self.lines))
        theirs = self.glibc_lines() if self.glibc else {}
        if self.glibc:
            self.compare_characters(lines, theirs)
        if self.is_marked:  # what follows is no text of its own
            return
        sequences = self.sequences({*lines.values(), *theirs.values()} - {b""})
        records = b"".join(each + self.feed for each in sequences)
        ours = self.ours("from", records, "-p", "escape", "-q", "--bom=keep")[1]
        self.require(ours == self.icu("from", records, "escape")[1], "reads not what uconv does")
        if self.glibc:
            self.compare_texts(sequences, self.read(sequences))

    def glibc_lines(self):
        iconv = Iconv(self.glibc, "UTF-8")
        feed, lines = [Iconv(self.glibc, "UTF-8").whole(text) for text in (b"\n\n", b"\n")], {}
        feed = feed[0][len(feed[1]):]
        for c in CHARACTERS:
            line = iconv.put((c + "\n").encode())
            if line is None:
                iconv.put(b"\n")
            else:
                self.require(line.endswith(feed), f"U+{ord(c):04X} with iconv", line.hex())
                lines[c] = line[:-len(feed)]
        return lines

    def compare_characters(self, lines, theirs):
        back = Iconv("UTF-8", self.glibc)
        is_plain = max(map(len, self.lines)) == 1
        for c in CHARACTERS:
            a, b = lines.get(c), theirs.get(c)
            if a == b or (a is None and c in TAGS):
                continue
            reason = reason_of(c)
            if a is None and is_plain and len(b) > 1:
                reason = "composed"
            elif b and not self.is_marked and back.whole(b) != c.encode():
                reason = "one-way"
            elif a and b and not self.is_marked and back.whole(a) == c.encode():
                reason = "form"
            self.differences.append(("to", kind_of(a, b), reason, f"{ord(c):04X}", a and a.hex(),
                                     b and b.hex()))
        lacking = [c for c in self.lacking if c not in theirs][:1]
        for c in lacking:
            self.require(run(["iconv", "-f", "UTF-8", "-t", self.glibc], c.encode())[0] == 1, c)

    def sequences(self, known):
        width = len(self.feed)
        pairs = [bytes((a, b)) for a in range(256) for b in range(256)]
        if width > 1:
            known |= set(pairs) if width == 2 else set()
            return sorted(known - {self.feed})
        shifts = {match.groups() for match in map(SHIFTED.fullmatch, known) if match}
        plain = [bytes((a,)) for a in range(256) if not shifts or a not in b"\x0e\x0f\x1b~"]
        if any(each[:1] == b"+" and len(each) > 2 for each in known):  # UTF-7
            plain = []
        elif shifts:
            for before, after in shifts:
                known |= {before + each + after for each in pairs if min(each) > 0x20}
        elif max(map(len, known)) > 1:
            alone = self.read(plain)  # before which nothing but another character can come
            known |= {each for each in pairs if each[:1] not in alone}
        return sorted(each for each in known | set(plain) if self.feed not in each)

    def read(self, sequences):
        """The text of each that is right."""
        records = [each + self.feed for each in sequences if self.feed not in each]
        starts = list(itertools.accumulate(map(len, records), initial=0))
        said = self.check_only(b"".join(records), self.codes("from")[:2])[2]
        bad = {bisect.bisect(starts, int(at)) - 1 for at in re.findall(r": byte (\d+): ", said)}
        good = [each for each in sequences if self.feed not in each]
        good = [each for i, each in enumerate(good) if i not in bad]
        status, text, said = self.ours("from", b"".join(each + self.feed for each in good),
                                       "--bom=keep")
        texts = text.decode().split("\n")[:-1]
        self.require(status == 0 and len(texts) == len(good), "reads with", status, said[:200])
        return dict(zip(good, texts))

    def compare_texts(self, sequences, ours):
        back, again = Iconv("UTF-8", self.glibc), Iconv(self.glibc, "UTF-8")
        for sequence in sequences:
            a, b = ours.get(sequence), back.whole(sequence)
            b = None if b is None else b.decode()
            if a == b:
                continue
            reason = reason_of(a if b is None else b)
            if b is not None and again.whole(b.encode()) != sequence:
                reason = "one-way"
            elif a and b and unicodedata.normalize("NFC", a) == unicodedata.normalize("NFC", b):
                reason = "composed"
            self.differences.append(("from", kind_of(a, b), reason, sequence.hex().upper(),
                                     a and ascii(a), b and ascii(b)))


def run(command, text):
    done = subprocess.run(command, input=text, capture_output=True, check=False, timeout=LIMIT,
                          env={**os.environ, "LC_ALL": "C"})
    return done.returncode, done.stdout, done.stderr.decode("utf-8", "replace")


def plain(name):
    return re.sub("[^a-z0-9]", "", name.lower())


def encodings_of(qblconv):
    """The name of each for qblconv and uconv, and one for iconv if it knows a name of it."""
    known = {}
    for name in run(["iconv", "-l"], b"")[1].decode().split():
        known.setdefault(plain(name), name.rstrip("/"))
    for line in run([qblconv, "-l"], b"")[1].decode().splitlines():
        names = line.split()
        glibc = None
        for name in names:
            # ICU has names that stand for several; iconv is asked for those that mean this one.
            if glibc is None and plain(name) in known:
                used = run(["uconv", "--list-code", name], b"")[1].decode().split()
                if set(used) & set(names):
                    glibc = known[plain(name)]
        yield names[0], glibc


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n", maxsplit=1)[0])
    parser.add_argument("qblconv")
    parser.add_argument("--full", action="store_true", help="compare all encodings")
    parser.add_argument("--encoding", action="append", help="compare this one", default=[])
    parser.add_argument("--show", action="store_true", help="print each difference from glibc")
    parser.add_argument("--update", action="store_true", help="record the differences from glibc")
    options = parser.parse_args()
    chosen = [each for each in encodings_of(options.qblconv) if not LEFT_OUT.match(each[0]) and
              (options.full or each[0] in (options.encoding or FEW))]
    if not options.full and len(chosen) < len(options.encoding or FEW):
        parser.error("not all of these are encodings that qblconv lists first in a line of -l")

    def compare(encoding):
        try:
            return encoding[0], Comparison(options.qblconv, *encoding).check(), None
        except Fault as fault:
            return encoding[0], [], str(fault)

    lines, faults = recorded(), []
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        for name, differences, fault in pool.map(compare, chosen):
            found = list(summary_of(name, differences))
            if options.show:
                for each in differences:
                    print(name, *each)
            if fault:
                faults.append(fault)
            elif options.update:
                lines[name] = found
            else:
                known = set(lines.get(name, []))
                faults += [f"not recorded: {each}" for each in found if each not in known]
                faults += [f"recorded: {each}" for each in known if each not in found]
    if options.update:
        write(lines)
    for fault in faults:
        print(fault, file=sys.stderr)
    both = sum(glibc is not None for _, glibc in chosen)
    print(f"{len(chosen)} encodings compared with uconv, {both} of them with iconv: "
          f"{len(faults)} faults")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
