"""Shows objects of QBLCore in gdb as what they hold.

gdb loads this by itself with the library when it is installed below /usr. For another prefix, give
    add-auto-load-safe-path PREFIX/lib
in ~/.gdbinit, or load it by
    source PREFIX/share/qblcore/gdb/qblcore.py
An object shows its fields with "print /r".

A printer is a class below with an entry in BY_NAME, for a class or a template, or in BY_BASE, for
all that is derived from a class. What cannot be read raises gdb.MemoryError, which gdb shows in the
object's place.
"""
import gdb
import gdb.printing
import gdb.types


def shown(length):
    """How much of a text to read: one more than gdb shows, so that it tells that there is more."""
    if length < 0:
        raise gdb.MemoryError("not a string")
    most = gdb.parameter("print elements")
    return min(length, most + 1) if most else length


class StringPrinter:
    """I18NString: its text, whichever way it keeps it."""

    INLINE = 32

    def __init__(self, value):
        self.value = value

    def to_string(self):
        v = self.value
        if int(v["m_pUnicodeString"]) != 0:
            return v["m_pCodeUnits"].string("utf-16-le", "replace", shown(int(v["m_unitLength"])))
        inlined = int(v["m_asciiBufCapacity"]) <= self.INLINE
        text = v["m_asciiInline" if inlined else "m_pAsciiBuffer"]
        return text.string("ascii", "replace", shown(int(v["m_asciiBufLength"])))

    def display_hint(self):
        return "string"


class ListPrinter:
    """QBLList: its elements, in order."""

    def __init__(self, value):
        self.value = value
        self.count = int(value["count"])

    def to_string(self):
        return "QBLList of %d" % self.count

    def children(self):
        element = gdb.types.get_basic_type(self.value.type).template_argument(0)
        node_type = gdb.lookup_type("QBLListDataNode<%s>" % element).pointer()
        node = self.value["next"]
        for i in range(self.count):
            if int(node) in (0, int(self.value.address)):
                break
            yield "[%d]" % i, node.cast(node_type)["data"]
            node = node["next"]

    def display_hint(self):
        return "array"


class ThrowablePrinter:
    """A throwable: what it says, and the way that it has come, the last place first."""

    def __init__(self, value):
        self.value = value

    def to_string(self):
        v = self.value
        text = v["messageText"]
        return "%s, code %d, %s: %s" % (
            v.dynamic_type.name, int(v["errorCode"]),
            str(v["severity"]).replace("QBLSeverity", ""),
            text.format_string(address=False) if int(text) != 0 else "no text")

    def children(self):
        for _, entry in ListPrinter(self.value["backTrace"]).children():
            yield "at", entry.string()


BY_NAME = {"I18NString": StringPrinter, "QBLList": ListPrinter}
BY_BASE = {"QBLThrowable": ThrowablePrinter}


def bases(kind):
    """The names of a class and of all that it is derived from."""
    yield kind.name
    for field in kind.fields():
        if field.is_base_class:
            yield from bases(field.type)


class Printers(gdb.printing.PrettyPrinter):
    def __call__(self, value):
        kind = gdb.types.get_basic_type(value.type)
        if kind.code != gdb.TYPE_CODE_STRUCT or kind.name is None or not kind.fields():
            return None  # also a class of which only the library's debug information knows more
        printer = BY_NAME.get(kind.name.split("<")[0])
        if printer is None:
            printer = next((BY_BASE[name] for name in bases(kind) if name in BY_BASE), None)
        if printer is None:
            return None
        if value.type.code == gdb.TYPE_CODE_REF:
            value = value.referenced_value()
        return printer(value)


gdb.printing.register_pretty_printer(gdb.current_objfile(), Printers("QBLCore"), replace=True)
