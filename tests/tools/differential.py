#!/usr/bin/env python3
"""Compares qblconv with uconv (ICU) and iconv (glibc), character by character, both ways.

    differential.py [--full | --encoding NAME ...] [--show] [--update] QBLCONV

qblconv uses the tables of ICU, so any difference from uconv is a fault. The only exception: uconv
may write bytes that decode to another character where qblconv reports the character as lacking.
glibc has other tables: differential.txt beside this script records the known differences, and any
other difference is a fault. Output that qblconv writes without a report must decode to the same
text by qblconv and by uconv. Without --full, compares about a dozen encodings of different kinds.
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
# The whole BMP, some blocks beyond it, every seventh ideograph of plane 2, and the ends of planes.
# Each character is on its own line, so LF is left out.
CHARACTERS = [chr(c) for c in [*range(0xD800), *range(0xE000, 0x10100), *range(0x1F300, 0x1F700),
                               *range(0x20000, 0x30000, 7), *range(0xE0000, 0xE0080),
                               *range(0xF0000, 0xF0100), *range(0x10FF00, 0x110000)] if c != 0x0A]
# In these encodings, ICU's output depends on the block size, but always decodes to the same text.
PORTIONED = re.compile("SCSU|BOCU|LMBCS|HZ|compound|version=")
# Two characters do not round-trip in LMBCS, and ICU does not report them. After a character that the
# encoding lacks, ICU's ISCII converters accept some wrong characters and reject some right ones (see
# i18n_text_stream.hpp), so ISCII is left out.
SILENT = {"LMBCS": "\ufffe\uffff"}
LEFT_OUT = "ISCII"
# For these encodings, ICU's reports of malformed bytes depend on the block size.
MALFORMED = re.compile("BOCU|compound")
# glibc silently drops these characters in every encoding that lacks them.
TAGS = {chr(c) for c in range(0xE0000, 0xE0080)}
# Matches a two-byte code with the shift sequence before it and the shift sequence after it.
SHIFTED = re.compile(rb"((?:\x1b[ -/]+[0-~]|\x1b[NO]|\x0e|~\{)+)..(\x0f|\x1b\(B|~\}|)", re.DOTALL)
LIMIT = 600  # seconds for one program


class Fault(Exception):
    """A difference that is always a fault. differential.txt never records such a difference."""


def kind_of(ours, theirs):
    return "glibc-only" if ours is None else "qblconv-only" if theirs is None else "differs"


def split(output, feed, count):
    """Splits encoded output into lines. Returns None if line ends do not separate the lines."""
    if not feed:
        return None
    width, lines = len(feed), [b""]
    for at in range(0, len(output), width):
        unit = output[at:at + width]
        if unit == feed:
            lines.append(b"")
        else:
            lines[-1] += unit
    return lines[:-1] if len(lines) == count + 1 and not lines[-1] else None


class Comparison:
    """Compares one encoding. A difference from glibc is a tuple (way, kind, reason, what, ours, theirs)."""

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
            raise Fault(f"{self.name}: " + " ".join(map(str, what)))

    def codes(self, way):
        return ["-f", "UTF-8", "-t", self.name] if way == "to" else ["-f", self.name, "-t", "UTF-8"]

    def ours(self, way, text, *options):
        if way == "to" and self.name.endswith("_PlatformEndian"):
            options += ("--bom=strip",)  # because uconv writes no byte-order mark in these encodings
        return run([self.qblconv, *self.codes(way), *options], text)

    def icu(self, way, text, callback="stop"):
        return run(["uconv", *self.codes(way), "--no-fallback", f"--{way}-callback", callback], text)

    def encode(self, text):
        return self.ours("to", text)[1]

    def find_characters(self):
        """Sets self.has and self.lacking from the reports of qblconv -n."""
        # Encodings with only two-byte codes have no line ends. Then all characters are on one line.
        self.end = "\n" if self.ours("to", b"\n")[0] == 0 else ""
        status, _, said = self.check_only(self.text_of(CHARACTERS), self.codes("to"))
        lacking = [chr(int(code, 16)) for code in re.findall(r": U\+([0-9A-F]+) is not in ", said)]
        self.lacking = set(lacking)
        self.require(len(lacking) == said.count("\n") == len(self.lacking),
                     "unexpected reports of qblconv -n:", said[:200])
        self.require(status == int(bool(lacking)), "unexpected exit status of qblconv -n:", status)
        self.has = [c for c in CHARACTERS if c not in self.lacking]
        self.feed = self.encode(b"\n\n")[len(self.encode(b"\n")):]
        self.is_marked = self.feed != self.encode(b"\n")

    def text_of(self, characters):
        return "".join(each + self.end for each in characters).encode()

    def check_only(self, text, codes):
        return run([self.qblconv, "-n", *codes, "-"], text)

    def check_single_characters(self):
        """Converts single characters. Both programs must fail exactly if the encoding lacks the character."""
        lacking = sorted(self.lacking)
        for c in lacking[::len(lacking) // 3 + 1] + self.has[::len(self.has) // 3 + 1]:
            text, wanted = c.encode(), int(c in self.lacking)
            status, output, said = self.ours("to", text)
            self.require(status == wanted, f"U+{ord(c):04X}: qblconv exits with", status, said)
            self.require((f"U+{ord(c):04X} is not in" in said) == bool(wanted),
                         f"U+{ord(c):04X}: unexpected message of qblconv:", said)
            theirs = self.icu("to", text)
            is_right = theirs[:2] == (0, output)
            if wanted:
                is_right = theirs[0] != 0 or self.icu("from", theirs[1])[1] != text
            self.require(is_right, f"U+{ord(c):04X}: unexpected result of uconv:", theirs)

    def compare_output(self):
        """Compares the output with uconv's: without the lacking characters, and skipping them."""
        status, self.output, said = self.ours("to", self.text_of(self.has))
        self.require(status == 0 and not said, "qblconv cannot write characters that the encoding has: status",
                     status, said[:200])
        self.lines = split(self.output, self.feed, len(self.has))
        text = self.text_of(CHARACTERS)
        ours, theirs = self.ours("to", text, "-c", "-q")[1], self.icu("to", text, "skip")[1]
        if ours == theirs or PORTIONED.search(self.name):
            return
        if not self.end:
            theirs = self.icu("to", self.text_of(self.has))
            self.require(theirs[:2] == (0, self.output), "the output differs from uconv's")
            return
        ours, theirs = (split(each, self.feed, len(CHARACTERS)) for each in (ours, theirs))
        self.require(ours and theirs, "the number of output lines differs from uconv's")
        changed = [row for row in zip(CHARACTERS, ours, theirs) if row[1] != row[2]]
        read = self.icu("from", b"".join(b + self.feed for _, _, b in changed))[1].decode()
        for (c, a, b), again in zip(changed, read.split("\n")):
            self.require(not a and again != c, f"U+{ord(c):04X}: qblconv writes {a.hex()}, uconv {b.hex()}")

    def check_return(self):
        silent = "".join(SILENT[each] for each in SILENT if each in self.name)
        wanted = [c for c in self.has if c not in silent]
        output = self.output if len(wanted) == len(self.has) else self.encode(self.text_of(wanted))
        for who, read in (("qblconv", self.ours), ("uconv", self.icu)):
            result = read("from", output)
            text = result[1].decode("utf-8", "replace")
            again = text.split("\n")[:-1] if self.end else list(text)
            changed = [f"U+{ord(a):04X}: {b!r}" for a, b in zip(wanted, again) if a != b]
            self.require(result[0] == 0 and again == wanted,
                         "the output does not decode to the same text by", who, changed[:9])

    def compare_sequences(self):
        if self.lines is None or MALFORMED.search(self.name):
            return
        lines = dict(zip(self.has, self.lines))
        theirs = self.glibc_lines() if self.glibc else {}
        if self.glibc:
            self.compare_characters(lines, theirs)
        if self.is_marked:  # a single sequence without a byte-order mark is not a text
            return
        sequences = self.sequences({*lines.values(), *theirs.values()} - {b""})
        records = b"".join(each + self.feed for each in sequences)
        ours = self.ours("from", records, "-p", "escape", "-q", "--bom=keep")[1]
        self.require(ours == self.icu("from", records, "escape")[1], "the decoded text differs from uconv's")
        if self.glibc:
            self.compare_texts(sequences, self.read(sequences))

    def glibc_lines(self):
        iconv, lines = Iconv(self.glibc, "UTF-8"), {}
        one, two = (Iconv(self.glibc, "UTF-8").whole(text) for text in (b"\n", b"\n\n"))
        feed = two[len(one):]
        for c in CHARACTERS:
            line = iconv.put((c + "\n").encode())
            if line is None:
                iconv.put(b"\n")
            else:
                self.require(line.endswith(feed), f"U+{ord(c):04X}: no line end in the output of iconv:", line.hex())
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
            self.differences.append(("to", kind_of(a, b), reason, f"{ord(c):04X}", a and a.hex(), b and b.hex()))
        for c in [c for c in self.lacking if c not in theirs][:1]:
            self.require(run(["iconv", "-f", "UTF-8", "-t", self.glibc], c.encode())[0] == 1,
                         f"U+{ord(c):04X}: iconv accepts a character that the encoding lacks")

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
            alone = self.read(plain)  # a byte that is a complete character starts no pair
            known |= {each for each in pairs if each[:1] not in alone}
        return sorted(each for each in known | set(plain) if self.feed not in each)

    def read(self, sequences):
        """Maps each valid sequence to its text."""
        sequences = [each for each in sequences if self.feed not in each]
        records = [each + self.feed for each in sequences]
        starts = list(itertools.accumulate(map(len, records), initial=0))
        said = self.check_only(b"".join(records), self.codes("from")[:2])[2]
        bad = {bisect.bisect(starts, int(at)) - 1 for at in re.findall(r": byte (\d+): ", said)}
        good = [each for i, each in enumerate(sequences) if i not in bad]
        status, text, said = self.ours("from", b"".join(each + self.feed for each in good), "--bom=keep")
        texts = text.decode().split("\n")[:-1]
        self.require(status == 0 and len(texts) == len(good), "qblconv cannot read sequences that -n accepts: status",
                     status, said[:200])
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
    """Yields each encoding's name for qblconv and uconv, and its name for iconv or None."""
    known = {}
    for name in run(["iconv", "-l"], b"")[1].decode().split():
        known.setdefault(plain(name), name.rstrip("/"))
    for line in run([qblconv, "-l"], b"")[1].decode().splitlines():
        names = line.split()
        # Some names that ICU knows mean several encodings. Skips a name if uconv takes it for another encoding.
        same = (known[plain(name)] for name in names if plain(name) in known and
                set(run(["uconv", "--list-code", name], b"")[1].decode().split()) & set(names))
        yield names[0], next(same, None)


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n", maxsplit=1)[0])
    parser.add_argument("qblconv")
    parser.add_argument("--full", action="store_true", help="compare all encodings")
    parser.add_argument("--encoding", action="append", help="compare this encoding", default=[])
    parser.add_argument("--show", action="store_true", help="print each difference from glibc")
    parser.add_argument("--update", action="store_true", help="record the differences from glibc")
    options = parser.parse_args()
    chosen = [each for each in encodings_of(options.qblconv) if not each[0].startswith(LEFT_OUT) and
              (options.full or each[0] in (options.encoding or FEW))]
    if not options.full and len(chosen) < len(options.encoding or FEW):
        parser.error("unknown encoding: use the first name in a line of 'qblconv -l'")

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
                faults += [f"not in differential.txt: {each}" for each in found if each not in known]
                faults += [f"only in differential.txt: {each}" for each in known if each not in found]
    if options.update:
        write(lines)
    for fault in faults:
        print(fault, file=sys.stderr)
    both = sum(glibc is not None for _, glibc in chosen)
    print(f"{len(chosen)} encodings compared with uconv, {both} of them with iconv: {len(faults)} faults")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
