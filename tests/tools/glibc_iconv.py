"""Calls glibc's iconv(3) in this process: a new process for each text would take days."""
import ctypes
import errno

_LIBC = ctypes.CDLL(None, use_errno=True)
_LIBC.iconv_open.restype = ctypes.c_void_p
_LIBC.iconv_open.argtypes = [ctypes.c_char_p, ctypes.c_char_p]
_LIBC.iconv.restype = ctypes.c_ssize_t
_LIBC.iconv.argtypes = [ctypes.c_void_p] * 5
_LIBC.iconv_close.argtypes = [ctypes.c_void_p]
_ROOM = 1024


class Iconv:
    """A conversion descriptor. Raises LookupError if there is no such conversion."""

    def __init__(self, to, source):
        self._descriptor = _LIBC.iconv_open(to.encode(), source.encode())
        if self._descriptor == ctypes.c_void_p(-1).value:
            raise LookupError(f"{source} to {to}")
        self._out = ctypes.create_string_buffer(_ROOM)
        self._in_at, self._in_left = ctypes.c_char_p(), ctypes.c_size_t()
        self._out_at, self._out_left = ctypes.c_void_p(), ctypes.c_size_t()
        self._places = [*map(ctypes.byref, (self._in_at, self._in_left, self._out_at, self._out_left))]

    def __del__(self):
        if self._descriptor != ctypes.c_void_p(-1).value:
            _LIBC.iconv_close(self._descriptor)

    def put(self, text):
        """Converts a piece of text in the current state. Returns None if iconv rejects it."""
        self._in_at.value, self._in_left.value = text, len(text)
        self._out_at.value, self._out_left.value = ctypes.addressof(self._out), _ROOM
        result = _LIBC.iconv(self._descriptor, *self._places)
        if result < 0 and ctypes.get_errno() not in (errno.EILSEQ, errno.EINVAL):
            raise OSError(ctypes.get_errno(), "iconv")
        if result < 0 or self._in_left.value > 0:
            return None
        return self._out.raw[:_ROOM - self._out_left.value]

    def whole(self, text):
        """Converts a complete text from the initial state. Returns None if iconv rejects it."""
        _LIBC.iconv(self._descriptor, None, None, None, None)
        result = self.put(text)
        if result is None:
            return None
        self._out_at.value, self._out_left.value = ctypes.addressof(self._out), _ROOM
        _LIBC.iconv(self._descriptor, None, None, *self._places[2:])
        return result + self._out.raw[:_ROOM - self._out_left.value]
