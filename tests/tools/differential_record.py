"""Reads and writes differential.txt: the known differences between the tables of qblconv and glibc."""
import pathlib
import zlib

RECORD = pathlib.Path(__file__).with_name("differential.txt")
# The comments in differential.txt explain the reasons.
SIGNS = set("\\~|¢£¥¦§¨¬¯´µ·¸–—―‖•․‥…‾₩⋅∥−∼∙〜・＂＇－＼｜～￠￡￢￣￤￥￦")


def reason_of(character):
    """Returns the reason why the tables differ in a character, from its kind."""
    code = ord(character[:1] or "\0")
    if 0xE000 <= code < 0xF900 or code >= 0xF0000:
        return "private"
    if code < 0x20 or 0x7F <= code < 0xA0:
        return "control"
    if character in SIGNS:
        return "sign"
    if character == "€":
        return "euro"
    if 0xFF61 <= code < 0xFFA0:
        return "kana"
    if 0xF900 <= code < 0xFB00 or 0x2E80 <= code < 0x2FE0 or 0x2F800 <= code < 0x2FA20:
        return "compatibility"
    return "beyond" if code > 0xFFFF else "edition"


def ranges_of(differences, most=5):
    """Returns the first differences as ranges."""
    ranges = []
    for what in (int(each[3], 16) for each in differences):
        if ranges and ranges[-1][1] == what - 1:
            ranges[-1][1] = what
        else:
            ranges.append([what, what])
    texts = [f"{a:04X}" if a == b else f"{a:04X}-{b:04X}" for a, b in ranges[:most]]
    return ",".join(texts) + (",..." if len(ranges) > most else "")


def summary_of(name, differences):
    """Yields a line for each direction, kind and reason: number of differences, checksum, first differences."""
    groups = {}
    for each in differences:
        groups.setdefault(each[:3], []).append(each)
    for (way, kind, reason), group in sorted(groups.items()):
        checksum = zlib.crc32(repr(group).encode())
        yield f"{name} {way} {kind} {reason} {len(group)} {checksum:08x} {ranges_of(group)}"


def recorded():
    lines = {}
    for line in RECORD.read_text("utf-8").splitlines():
        if line and not line.startswith("#"):
            lines.setdefault(line.split()[0], []).append(line)
    return lines


def write(lines):
    """Writes the lines into differential.txt and keeps its comments."""
    kept = [line for line in RECORD.read_text("utf-8").splitlines() if line[:1] in ("", "#")]
    kept += [each for name in sorted(lines) for each in lines[name]]
    RECORD.write_text("\n".join(kept) + "\n", "utf-8")
