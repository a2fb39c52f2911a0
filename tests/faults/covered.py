#!/usr/bin/env python3
"""covered.py LIBRARY PROGRAM: makes two checks of the 32-bit library and of the program that runs the
rows of tests/faults. Exits with 1 if a check fails, and with 77 if valgrind is not installed.

1. A row runs each public function that can fail, or without.txt lists the function. A function is
   public if it is exported and no header declares its name only in private sections. It can fail if it
   calls a function through a pointer, or a function of another library that may need memory or make a
   system call (all except HARMLESS), directly or through other functions of the library. Valgrind
   tells which functions the rows run.
2. tests/faults has a hook for each function that the library imports from the C library and that can
   fail, or without.txt lists it as "import NAME".

Each entry of without.txt must be needed."""
import collections
import fnmatch
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile

FOLDER = pathlib.Path(__file__).resolve().parent
ROOT = FOLDER.parents[1]
# Imported functions that need no memory and make no system call that can fail.
HARMLESS = re.compile(r"""
    mem(cpy|cmp|chr|move|set)(_chk)? | __mem\w+_chk | (str|wcs|wmem)\w+ | __errno_location | free | is\w+ | __\w+di3
  | __divmoddi4 | strto[dfl]\w* | __v?snprintf_chk | __stack_chk_fail | ___tls_get_addr | (secure_)?getenv | mbrtowc
  | pthread_(mutex|cond|self|setcancel|testcancel|getspecific|exit|join|detach|key_delete)\w* | sem_(post|trywait|destroy)
  | sched_\w+ | __sched_cpucount | getpid | _ZSt\d+\w*(Rb_tree|[gs]et_new_handler|terminate|uncaught|from_chars)\w*
  | _ZdlPv\w* | _ZdaPv\w* | _Unwind_Resume | __cxa_(guard|begin_catch|end_catch)\w* | __dynamic_cast
  | _ZNSt8__detail15_List_node\w+ | _ZNKSt7__cxx1112basic_string\w+(find|compare)\w* | _ZNSt6chrono\w+
  | _ZNSt7__cxx1112basic_string\w+(10_M_disposeEv|4swapERS4_|8_M_erase\w+) | _ZSt13set_terminate\w+
  | u_get\w+ | u_has\w+ | ucnv_(getType|fromUCountPending|toUCountPending|getM\w+Size|usesFallback|reset|setFallback|getName)\w*
""", re.X)


# Imported functions that make system calls, or create threads and their objects.
SYSTEM = re.compile(r"""
    open(at)?(64)? | close | read | write | p?(read|write)v?(64)? | fcntl(64)? | lseek(64)? | f?truncate(64)? | f?(data)?sync(fs)?
  | [fl]?stat(x|at|fs|vfs)?(64)? | fstatat(64)? | (fd)?opendir | (read|close|rewind)dir(64)? | (mk|rm)dir(at)? | f?chmod(at)?
  | f?chown(at)? | (un)?link(at)? | symlink(at)? | readlink(at)? | rename(at2?)? | remove | realpath | f?access(at)? | mknod(at)?
  | [fl]?(get|set|list|remove)xattr | mkd?s?temps? | getrandom | signalfd | eventfd | pipe2? | poll | select | (clock_)?nanosleep
  | usleep | gettimeofday | clock_\w+ | dlopen | dlsym | mmap(64)? | munmap | madvise | mprotect | syscall | nice | [gs]etpriority
  | sched_\w+ | sem_\w+ | pthread_\w+ | fopen(64)? | fdopen | fflush | fclose | fwrite | fread | fputs | fputc | putc | getc
  | posix_f\w+ | f?utimens\w* | flock | ioctl | dup[23]? | fork | exec\w+ | waitpid | kill | sigaction | sigprocmask
""", re.X)


def run(*command):
    return subprocess.run(command, capture_output=True, text=True, check=True).stdout


class Library:
    """The functions of a library and the calls between them, by address."""

    def __init__(self, path):
        self.names = collections.defaultdict(set)
        self.address = {}
        for line in run("nm", path).splitlines():
            fields = line.split()
            if len(fields) == 3 and fields[1] in "tTwWui":
                name = fields[2].split("@")[0]
                self.names[int(fields[0], 16)].add(name)
                self.address[name] = int(fields[0], 16)
        self.exported = {line.split()[2].split("@")[0] for line in run("nm", "-D", "--defined-only", path).splitlines()
                         if line.split()[1] in "TW"}
        self.calls = collections.defaultdict(set)  # addresses, and names of imported functions
        self._read_code(path)

    def _read_code(self, path):
        got = int(re.search(r"^(\w+) d _GLOBAL_OFFSET_TABLE_", run("nm", path), re.M).group(1), 16)
        slots = {}
        for line in run("objdump", "-R", path).splitlines():
            fields = line.split()
            if len(fields) == 3 and fields[1] in ("R_386_GLOB_DAT", "R_386_JUMP_SLOT"):
                slots[int(fields[0], 16)] = fields[2].split("@")[0]
        caller, bases = 0, set()
        for line in run("objdump", "-d", "--no-show-raw-insn", path).splitlines():
            if begin := re.match(r"(\w+) <.+>:", line):
                caller, bases = int(begin.group(1), 16), set()
                continue
            code = re.match(r"\s*(\w+):\s+(?:addr16 )?(\w+)\s*(.*)", line)
            if not code:
                continue
            at, operation, operand = int(code.group(1), 16), code.group(2), code.group(3)
            if operation == "add" and (base := re.match(r"\$(-?0x\w+),%(e..)$", operand)):
                if (at + int(base.group(1), 16)) & 0xFFFFFFFF == got:
                    bases.add(base.group(2))
            elif operation[0] == "j" or operation == "call":
                if to := re.match(r"\w+ <([^>+]+)", operand):
                    # A jump into another function is one into its cold part, or back from there.
                    target = self.address.get(to.group(1).split("@")[0])
                    if target is not None:
                        self.calls[caller].add(target)
                elif operand.startswith("*"):
                    slot = re.match(r"\*(-?0x\w+)\(%(e..)\)$", operand)
                    name = slot and slots.get((got + int(slot.group(1), 16)) & 0xFFFFFFFF)
                    if name and (slot.group(2) in bases or slot.group(1)[0] == "-"):
                        self.calls[caller].add(self.address.get(name, name))
                    elif operation == "call":
                        self.calls[caller].add("a function through a pointer")

    def failing(self):
        """The addresses of the functions that can fail."""
        callers, known = collections.defaultdict(set), set()
        for caller, callees in self.calls.items():
            for callee in callees:
                if isinstance(callee, int):
                    callers[callee].add(caller)
                elif not HARMLESS.fullmatch(callee):
                    known.add(caller)
        found = list(known)
        while found:
            for caller in callers[found.pop()] - known:
                known.add(caller)
                found.append(caller)
        return known


def executed(program):
    """The mangled names of the functions that the rows run."""
    with tempfile.NamedTemporaryFile() as out:
        subprocess.run(["valgrind", "--tool=callgrind", "--demangle=no", "--callgrind-out-file=" + out.name, program,
                        "--gtest_filter=Disasters.LargeNumbers:Callbacks.*"], stdout=subprocess.DEVNULL,
                       stderr=subprocess.DEVNULL, check=True)
        profile = pathlib.Path(out.name).read_text("utf-8", "replace")
        return set(re.findall(r"^c?fn=\(\d+\) ([^\s']+)", profile, re.M))


def private_names():
    """The names, as Class::name, that only private sections of headers declare."""
    found = {"public": set(), "private": set()}
    for top in ("QBLCore", "TavThread", "i18n"):
        for path in [*(ROOT / top).rglob("*.hpp"), *(ROOT / top).rglob("*.h")]:
            read_classes(path.read_text("utf-8"), found)
    return found["private"] - found["public"]


def read_classes(code, found):
    code = re.sub(r"//[^\n]*|/\*.*?\*/", "", code, flags=re.S)
    stack, depth = [], 0  # classes: name, depth of their members, section, whether all is private
    for token in re.finditer(r"\b(class|struct)\s+(?:QBL_\w+(?:\([^)]*\))?\s+)?(\w+(?:::\w+)*)[^;{}()]*\{"
                             r"|\b(public|protected|private)\s*:|[{}]|\b(?:class|struct)\s+(\w+);|([~\w]+)\s*\(|(operator[^\s(]+)", code):
        kind, name, section, nested, function, operator = token.groups()
        if kind:
            depth += 1
            hidden = bool(stack) and (stack[-1][3] or stack[-1][2] == "private") or "::" in name
            stack.append([name.split("::")[-1], depth, "private" if kind == "class" else "public", hidden])
        elif section and stack:
            stack[-1][2] = "private" if section == "private" else "public"
        elif token.group() == "{":
            depth += 1
        elif token.group() == "}":
            if stack and stack[-1][1] == depth:
                stack.pop()
            depth -= 1
        elif stack and stack[-1][1] == depth:
            found["private" if stack[-1][3] else stack[-1][2]].add("::".join([stack[-1][0], nested or function or operator]))


def is_private(symbol, private):
    """Returns true if a demangled name is that of a private member, or of a member of a private class."""
    symbol = re.sub(r"\[abi:\w+\]", "", symbol).replace("operator()", "operator{}")
    parts = symbol.split("(")[0].replace("operator{}", "operator()").split("::")
    return any("::".join(pair) in private for pair in zip(parts, parts[1:]))


def hooks():
    """The names of the functions that tests/faults replaces."""
    calls, code = ((FOLDER / name).read_text("utf-8") for name in ("Calls.inc", "Calls.cpp"))
    found = re.findall(r"^(?:\w+\*? )+\*?(\w+)\([^;]*?\) (?:noexcept )?\{|HOOK_OPEN\((\w+)\)", code, re.M)
    names = re.findall(r"HOOK(?:\(\w+, [\w |]+,[\w* ]+,[^,]+,|_NUMBER\(\w+,)\s*(\w+)", calls)
    return {*names, *(name for pair in found for name in pair)}


def main():
    path, program = sys.argv[1:]
    lines = (FOLDER / "without.txt").read_text("utf-8").splitlines()
    needed = {line.split("#")[0].strip(): False for line in lines if line.split("#")[0].strip()}

    def cover(name):
        hits = {pattern: True for pattern in needed if fnmatch.fnmatchcase(name, pattern)}
        needed.update(hits)
        return bool(hits)

    if shutil.which("valgrind") is None:
        print("skipped: valgrind is not installed; ./dev setup test installs it")
        sys.exit(77)
    library, private = Library(path), private_names()
    failing = {name for name in library.exported if library.address.get(name) in library.failing()}
    ran = {library.address[name] for name in executed(program) if name in library.address}
    others = sorted(name for name in failing if library.address[name] not in ran)
    shown = {name for name in (run("c++filt", *others).splitlines() if others else []) if not is_private(name, private)}
    missing = sorted(name for name in shown if not cover(name))
    imports = {line.split()[-1].split("@")[0] for line in run("nm", "-D", "-u", path).splitlines()}
    unhooked = sorted(name for name in imports - hooks() if SYSTEM.fullmatch(name) and not cover("import " + name))
    idle = [pattern for pattern, used in needed.items() if not used]
    for name in missing:
        print("no row runs %s: add a row to tests/faults, or a line with a reason to tests/faults/without.txt" % name)
    for name in unhooked:
        print("no hook makes %s fail: add it to tests/faults/Calls.inc, or a line \"import %s\" with a reason to "
              "tests/faults/without.txt" % (name, name))
    for pattern in idle:
        print("not needed in tests/faults/without.txt: remove the line", pattern)
    print("%d of %d exported functions can fail; the rows run %d of them; %d public ones have a reason in without.txt"
          % (len(failing), len(library.exported), len(failing) - len(others), len(shown) - len(missing)))
    sys.exit(1 if missing or unhooked or idle else 0)


main()
