#!/usr/bin/env python3
"""covered.py NM PROGRAM: fails for each public function of abi/symbols.txt that the program does not
use and that without.txt does not list, and for each entry of without.txt that is not needed.

A function is public if it is not a member of a class, or if its class declares its name in a public
or protected section of an installed header."""
import fnmatch
import os
import re
import subprocess
import sys

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))


def text_of(path):
    with open(path, encoding="utf-8") as file:
        return file.read()


def bare(symbol):
    """Class::name without parameters, ABI tags and template arguments."""
    symbol = re.sub(r"\[abi:\w+\]", "", symbol)
    symbol = re.split(r"\((?!\))", symbol.replace("operator()", "operator{}"))[0]
    return symbol.replace("operator{}", "operator()")


def private_names():
    """The names, as Class::name, that only private sections of headers declare."""
    found = {"public": set(), "private": set()}
    for top in ("QBLCore", "TavThread", "i18n"):
        for folder, _, files in os.walk(os.path.join(ROOT, top)):
            for name in files:
                if name.endswith((".hpp", ".h")):
                    read_classes(text_of(os.path.join(folder, name)), found)
    return found["private"] - found["public"]


def read_classes(code, found):
    code = re.sub(r"//[^\n]*|/\*.*?\*/", "", code, flags=re.S)
    stack, depth = [], 0  # classes: name, depth of their members, section
    for token in re.finditer(r"\b(class|struct)\s+(?:QBL_\w+(?:\([^)]*\))?\s+)?(\w+)[^;{}()]*\{"
                             r"|\b(public|protected|private)\s*:|[{}]|([~\w]+)\s*\(|(operator[^\s(]+)", code):
        kind, name, section, function, operator = token.groups()
        if kind:
            depth += 1
            stack.append([name, depth, "private" if kind == "class" else "public"])
        elif section and stack:
            stack[-1][2] = "private" if section == "private" else "public"
        elif token.group() == "{":
            depth += 1
        elif token.group() == "}":
            if stack and stack[-1][1] == depth:
                stack.pop()
            depth -= 1
        elif stack and stack[-1][1] == depth:
            found[stack[-1][2]].add("::".join([stack[-1][0], function or operator]))


def main():
    nm, program = sys.argv[1:]
    listed = subprocess.run([nm, "-uDC", program], capture_output=True, text=True, check=True)
    used = {line.split(None, 1)[1].split("@")[0] for line in listed.stdout.splitlines()}
    private = private_names()
    without = [line.split("#")[0].strip() for line in
               text_of(os.path.join(ROOT, "tests/faults/without.txt")).splitlines()]
    without = {pattern: False for pattern in without if pattern}
    missing = []
    for line in text_of(os.path.join(ROOT, "abi/symbols.txt")).splitlines():
        symbol = line.split("@")[0]
        if symbol in used or bare(symbol) in private:
            continue
        hits = [pattern for pattern in without if fnmatch.fnmatchcase(symbol, pattern)]
        for pattern in hits:
            without[pattern] = True
        if not hits:
            missing.append(symbol)
    idle = [pattern for pattern, needed in without.items() if not needed]
    for symbol in missing:
        print("no row and no reason in without.txt:", symbol)
    for pattern in idle:
        print("not needed in without.txt:", pattern)
    sys.exit(1 if missing or idle else 0)


main()
