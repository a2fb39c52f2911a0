"""Measures whole programs side by side: qblconv, a bare loop over ICU, and iconv.

Compares their results first; then the runs of the programs alternate. All files are in memory if
the memory has room for them.
"""
import hashlib
import os
import resource
import shutil
import subprocess
import tempfile
import threading
import time

ROOM = 8 << 30  # bytes that input and results of all measurements need
JAPANESE = ("古池や蛙飛びこむ水の音\n閑さや岩にしみ入る蝉の声\n番号,氏名,カナ,郵便番号,住所\n"
            "1,佐藤花子,ｻﾄｳ ﾊﾅｺ,100-0001,東京都千代田区千代田\n"
            "The quick brown fox jumps over the lazy dog.\n")
GERMAN = ("Vielen Dank für Ihr Schreiben vom 3. März. Über die Größe des Geländes – rund 1¼\n"
          "Hektar – sind wir uns einig; den Preis von 120.000 € nennen Sie „angemessen“.\n")
BIG = {"windows-1252": GERMAN, "Shift_JIS": JAPANESE}
FEW, PER_FOLDER = 10000, 1000


def available_memory():
    with open("/proc/meminfo", encoding="ascii") as info:
        return next(int(line.split()[1]) * 1024 for line in info if line.startswith("MemAvailable:"))


def scratch(files):
    """Returns /dev/shm if it has room for the bytes and the file names, else the build folder."""
    shm = "/dev/shm"
    if os.path.isdir(shm):
        disk = os.statvfs(shm)
        room = min(disk.f_bavail * disk.f_frsize, available_memory())
        if room >= ROOM and disk.f_favail >= 2 * files + 100000:
            return shm
    return os.path.join(os.path.dirname(os.path.dirname(os.path.abspath(__file__))), "build")


class Peak:
    """Samples the peak resident memory of a process. The figure of wait4() alone is not enough,
    because it is never below the memory that the parent had at the fork."""

    def __init__(self, pid):
        self.kilobytes, self.path, self.ended = 0, f"/proc/{pid}/status", threading.Event()
        self.thread = threading.Thread(target=self.watch)
        self.thread.start()

    def watch(self):
        while not self.ended.wait(0.005):
            try:
                with open(self.path, encoding="ascii", errors="replace") as status:
                    for line in status:
                        if line.startswith("VmHWM:"):
                            self.kilobytes = int(line.split()[1])
            except OSError:
                return

    def megabytes(self, waited):
        self.ended.set()
        self.thread.join()
        # A figure of wait4() above the parent's peak is the exact peak of the process.
        if waited > resource.getrusage(resource.RUSAGE_SELF).ru_maxrss:
            self.kilobytes = waited
        return self.kilobytes * 1024 / 1e6


def run(command, watched):
    """Runs a program, which must succeed. Returns nanoseconds and, if watched, peak megabytes."""
    with open(os.devnull, "r+b") as null:
        start = time.perf_counter_ns()
        # pylint: disable-next=consider-using-with  # wait4() waits for the process
        process = subprocess.Popen(command, stdin=null, stdout=null)
        peak = Peak(process.pid) if watched else None
        _, status, usage = os.wait4(process.pid, 0)
        taken = time.perf_counter_ns() - start
    process.returncode = os.waitstatus_to_exitcode(status)
    megabytes = peak.megabytes(usage.ru_maxrss) if watched else 0
    if process.returncode != 0:
        raise SystemExit(f"bench: exit status {process.returncode} of: {' '.join(command)}")
    return {"real_time": taken, "peak": megabytes}


def digest_of_output(command):
    with subprocess.Popen(command, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE) as process:
        return hashlib.file_digest(process.stdout, "sha1").hexdigest()


def digest_of_tree(top):
    """Returns a digest of the names and contents of all files. Names are relative to the first
    directory, from the top, that has entries other than a single subdirectory."""
    while len(os.listdir(top)) == 1 and os.path.isdir(os.path.join(top, os.listdir(top)[0])):
        top = os.path.join(top, os.listdir(top)[0])
    paths = sorted(os.path.join(folder, name) for folder, _, names in os.walk(top) for name in names)
    digest = hashlib.sha1()
    for path in paths:
        digest.update(os.path.relpath(path, top).encode() + b"\0")
        with open(path, "rb") as content:
            digest.update(content.read() + b"\0")
    return digest.hexdigest()


class Bench:
    """Creates each input once, and keeps it until the end."""

    def __init__(self, options):
        self.options = options

    def __enter__(self):
        self.folder = tempfile.mkdtemp(prefix="qblconv-bench-", dir=scratch(self.options.files))
        self.out = os.path.join(self.folder, "out")
        return self

    def __exit__(self, *_):
        shutil.rmtree(self.folder)

    def measure(self, build, names, _):
        """Returns the runs of both sides by name; nothing if a program is not installed."""
        commands = {name: self.command(name, build) for name in names}
        commands = {name: command for name, command in commands.items() if shutil.which(command[0])}
        what = names[0].partition("/")[0]
        if len(commands) < len(set(names)):
            return {}
        if what == "tree":
            self.compare(commands, self.tree_digest)
        elif what in BIG:
            self.compare(commands, digest_of_output)
        repetitions = {"tree": 4 * self.options.repetitions, "many": 1}.get(what, 3)
        runs = {name: [] for name in names}
        for _ in range(repetitions):
            for name, command in commands.items():
                self.clear()
                runs[name].append(run(command, watched=what != "tree"))
                if what == "many":
                    self.check_count(name)
        self.clear()
        return runs

    @staticmethod
    def compare(commands, digest):
        results = {name: digest(command) for name, command in commands.items()}
        if len(set(results.values())) != 1:
            raise SystemExit(f"bench: the programs give different results: {results}")

    def tree_digest(self, command):
        self.clear()
        run(command, watched=False)
        return digest_of_tree(self.out)

    def check_count(self, name):
        wanted = self.count_of(name.partition("/")[0])
        found = sum(len(names) for _, _, names in os.walk(self.out))
        if found != wanted:
            raise SystemExit(f"bench: {name}: wrote {found} files, expected {wanted}")

    def count_of(self, what):
        return self.options.files // PER_FOLDER * PER_FOLDER if what == "many" else FEW

    def clear(self):
        shutil.rmtree(self.out, ignore_errors=True)
        os.mkdir(self.out)

    def command(self, name, build):
        what, _, program = name.partition("/")
        qblconv = os.path.join(build, "tools", "qblconv", "qblconv")
        if what in BIG:
            path = self.made(what, self.make_big)
            program = qblconv if program == "qblconv" else program
            return [program, "-f", what, "-t", "UTF-8", path]
        tree = self.made(what, self.make_tree if what == "tree" else self.make_links)
        if program == "qblconv":
            return [qblconv, "-q", "-f", "Shift_JIS", "-j2", "-r", "-d", self.out, tree]
        if program == "icu_tree":
            return [f"{build}/bench/tools/icu_tree", "Shift_JIS", "UTF-8", tree, self.out]
        return ["sh", "-c", 'cd "$0" && find . -type d -exec mkdir -p "$1/{}" \\; && '
                'find . -type f -print0 | xargs -0 -P2 -I{} iconv -f SHIFT_JIS -t UTF-8 -o "$1/{}" {}',
                tree, self.out]

    def made(self, what, make):
        path = os.path.join(self.folder, what)
        if not os.path.exists(path):
            make(what, path)
        return path

    def make_big(self, what, path):
        block = BIG[what].encode(what) * 4096
        left = self.options.mebibytes << 20
        with open(path, "wb") as out:
            while left > len(block):
                left -= out.write(block)
            # Fills up with ASCII, because a cut copy of the block could end within a character.
            out.write(b"." * left)

    @staticmethod
    def make_tree(_, path):
        text = JAPANESE.encode("Shift_JIS")
        for number in range(400):
            folder = os.path.join(path, f"{number // 20:02}")
            os.makedirs(folder, exist_ok=True)
            with open(os.path.join(folder, f"{number:03}.txt"), "wb") as out:
                out.write(b"%d\n" % number + text * (4000 // len(text)))

    def make_links(self, what, path):
        """Makes folders of a thousand small files each. All are hard links to the same thousand
        files, to save space."""
        originals = os.path.join(self.folder, what + "-originals")
        os.mkdir(originals)
        for number in range(PER_FOLDER):
            with open(os.path.join(originals, str(number)), "wb") as out:
                out.write(f"{number} 番の文\n".encode("Shift_JIS"))
        for folder in range(self.count_of(what) // PER_FOLDER):
            below = os.path.join(path, f"{folder:04}")
            os.makedirs(below)
            for number in range(PER_FOLDER):
                os.link(os.path.join(originals, str(number)), os.path.join(below, str(number)))
