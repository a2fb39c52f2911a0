"""Pretty-printers for QBLCore: gdb shows the contents of objects instead of their fields.

If the library is installed below /usr, gdb loads this script together with it. For another prefix,
put this line into ~/.gdbinit:
    add-auto-load-safe-path PREFIX/lib
Or load the script with
    source PREFIX/share/qblcore/gdb/qblcore.py
"print /r" shows the raw fields. "info qbl-locks" lists the tracked mutexes and their holders.

Each printer is a class below. BY_NAME maps a class or template to its printer; BY_BASE maps a base
class to the printer of all derived classes. If memory cannot be read, a printer raises
gdb.MemoryError, and gdb shows that error instead of the object.
"""
import gdb
import gdb.printing
import gdb.types


def shown(length):
    """Returns the number of characters to read from a text of this length: at most one more than
    gdb shows. The additional character makes gdb mark the text as cut."""
    if length < 0:
        raise gdb.MemoryError("not a string")
    most = gdb.parameter("print elements")
    return min(length, most + 1) if most else length


class StringPrinter:
    """I18NString: its text, whether stored as ASCII or UTF-16."""

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
        if self.count == 0:
            return  # clang describes the node type only in programs that add elements
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
    """A throwable: its text, and its back-trace, the latest place first."""

    def __init__(self, value):
        self.value = value

    def to_string(self):
        v = self.value
        text = v["messageText"]
        return "%s, %s, %s: %s" % (
            v.dynamic_type.name, self.code(),
            str(v["severity"]).replace("QBLSeverity", ""),
            text.format_string(address=False) if int(text) != 0 else "no text")

    def code(self):
        """The error code: a number, or a text, which may be null."""
        if int(self.value["numericCode"]) != 0:
            return "code %d" % int(self.value["errorCode"])
        text = self.value["errorCodeText"]
        return "code " + text.format_string(address=False) if int(text) != 0 else "no code"

    def children(self):
        whole = self.value.cast(self.value.dynamic_type)
        if "QBLMessageSet" in bases(whole.type):
            for _, message in MessageSetPrinter(whole).children():
                yield "says", message
        for _, entry in ListPrinter(self.value["backTrace"]).children():
            yield "at", entry.string()


class MessageStringPrinter:
    """QBLMessageString: its text."""

    def __init__(self, value):
        self.value = value

    def to_string(self):
        return self.value["m_text"]


class ParameterPrinter:
    """QBLMessageParm: the value that its type selects."""

    def __init__(self, value):
        self.value = value

    def to_string(self):
        v = self.value
        if int(v["m_pText"]) != 0:
            return v["m_pText"].dereference()
        kind = str(v["m_type"]).replace("QBLMsgParm", "")
        return "%s %s" % (kind, v["m_double" if kind == "Double" else "m_value"])


class MessagePrinter:
    """A message with an identifier: the identifier, the file if there is one, and the parameters."""

    def __init__(self, value):
        self.value = value.cast(value.dynamic_type)

    def to_string(self):
        v = self.value
        named = "QBLMessage" in bases(v.type)
        return "%s %d%s, %s" % (v.type.name, int(v["m_id"]),
                                " of %s" % v["m_msgFile"].format_string() if named else "",
                                str(v["m_severity"]).replace("QBLSeverity", ""))

    def children(self):
        for name, parameter in ListPrinter(self.value["m_parms"]).children():
            yield name, parameter.dereference()


class MessageSetPrinter:
    """QBLMessageSet: its messages, in order."""

    def __init__(self, value):
        self.messages = ListPrinter(value["m_messages"])

    def to_string(self):
        return "QBLMessageSet of %d" % self.messages.count

    def children(self):
        for name, message in self.messages.children():
            yield name, message.cast(message.dynamic_type).dereference()

    def display_hint(self):
        return "array"


class ByteBufferPrinter:
    """QBLByteBuffer: its content."""

    def __init__(self, value):
        self.value = value

    def to_string(self):
        v = self.value
        return v["m_pBuffer"].string("latin-1", length=shown(int(v["m_iCount"])))

    def display_hint(self):
        return "string"


class VariantPrinter:
    """QBLVariant: the value that its tag selects."""

    MEMBERS = {1: ("Long", "m_long"), 2: ("UnsignedLong", "m_unsignedLong"),
               3: ("Double", "m_double"), 5: ("Pointer", "m_pointer")}

    def __init__(self, value):
        self.value = value

    def to_string(self):
        v = self.value
        kind = int(v["m_type"])
        if kind == 4:
            text = v["m_value"]["m_string"]
            return (text.format_string(address=False)
                    if int(text) != 0 and text == v["m_pOwned"] else "no string")
        if kind in self.MEMBERS:
            name, member = self.MEMBERS[kind]
            return "%s %s" % (name, v["m_value"][member])
        return "of no type" if kind == 0 else "of the unknown type %d" % kind


BY_NAME = {"I18NString": StringPrinter, "QBLByteBuffer": ByteBufferPrinter, "QBLList": ListPrinter,
           "QBLMessageString": MessageStringPrinter, "QBLMessageParm": ParameterPrinter,
           "QBLVariant": VariantPrinter}
BY_BASE = {"QBLThrowable": ThrowablePrinter, "QBLMessageComponents": MessagePrinter,
           "QBLMessageSet": MessageSetPrinter}


def bases(kind):
    """Yields the names of a class and of all its bases."""
    yield kind.name
    for field in kind.fields():
        if field.is_base_class:
            yield from bases(field.type)


class Printers(gdb.printing.PrettyPrinter):
    def __call__(self, value):
        kind = gdb.types.get_basic_type(value.type)
        if kind.code != gdb.TYPE_CODE_STRUCT or kind.name is None or not kind.fields():
            return None  # a class has no fields here if the library's debug information is missing
        printer = BY_NAME.get(kind.name.split("<")[0])
        if printer is None:
            printer = next((BY_BASE[name] for name in bases(kind) if name in BY_BASE), None)
        if printer is None:
            return None
        if value.type.code == gdb.TYPE_CODE_REF:
            value = value.referenced_value()
        return printer(value)


gdb.printing.register_pretty_printer(gdb.current_objfile(), Printers("QBLCore"), replace=True)


class LocksCommand(gdb.Command):
    """Lists the tracked mutexes that are held, with the thread that holds each.

A mutex is tracked if it was created to track its owner, such as QBLThreadMutex(1). The place where
a mutex was locked is known only for a mutex of the flat layer, because the library's classes do not
know their callers."""

    OWN_SOURCES = ("QBLCore/", "TavThread/", "i18n/")

    def __init__(self):
        super().__init__("info qbl-locks", gdb.COMMAND_STATUS)

    def invoke(self, argument, from_tty):
        held = self.first()
        if int(held) == 0:
            print("No tracked mutex is held.")
        seen = set()
        while int(held) != 0:
            if int(held) in seen:
                print("The list is damaged: it leads back to mutex %#x." % int(held))
                break
            seen.add(int(held))
            print(self.line(held))
            held = held["heldAfter"]

    @staticmethod
    def first():
        symbol = gdb.lookup_global_symbol("tavFirstHeldMutex")
        if symbol is None:
            raise gdb.GdbError("QBLCore is not loaded, or has no debug information.")
        return symbol.value()

    def line(self, mutex):
        """Describes one mutex. A mutex that is just being locked may not have all fields yet."""
        place = ""
        if int(mutex["file"]) != 0:
            file = mutex["file"].string()
            if not file.startswith(self.OWN_SOURCES):
                place = ", locked at %s(%d)" % (file, int(mutex["line"]))
        return "mutex %#x: held by %s%s" % (int(mutex), self.holder(mutex["owner"]), place)

    @staticmethod
    def holder(record):
        if int(record) == 0:
            return "nobody any more"
        handle = record["handle"]["_M_i"]
        try:
            thread = gdb.selected_inferior().thread_from_handle(handle)
        except gdb.error:
            thread = None
        if thread is None:
            return "thread number %d of the library" % int(record["number"])
        return 'thread %s "%s" (LWP %d)' % (thread.num, thread.name, thread.ptid[1])


LocksCommand()
