// Made by qblmsgc from qblconvmsgs_en.msg.
#ifndef QBLCONVMSGS_HPP
#define QBLCONVMSGS_HPP

enum qblconvmsgs {
    /// The usage text; ends with a line end.
    CONV_USAGE = 1,
    /// {0} the option
    CONV_NO_OPTION = 2,
    /// {0} the option, {1} a similar option
    CONV_NO_OPTION_BUT = 3,
    /// {0} the option
    CONV_OPTION_ALONE = 4,
    /// {0} the option
    CONV_NO_ARGUMENT = 5,
    /// {0} the option, {1} its argument
    CONV_BAD_ARGUMENT = 6,
    /// {0} the option, {1} its argument, {2} a similar argument
    CONV_BAD_ARGUMENT_BUT = 7,
    /// {0} and {1} options
    CONV_NOT_TOGETHER = 8,
    /// {0} the option
    CONV_NO_OPERANDS = 9,
    /// {0} the encoding
    CONV_NO_ENCODING = 10,
    /// {0} the encoding, {1} a similar encoding
    CONV_NO_ENCODING_BUT = 11,
    /// {0} the encoding
    CONV_NO_MARK = 12,
    /// {0} and {1} operands, {2} the file
    CONV_SAME_OUTPUT = 13,
    /// {0} directory
    CONV_IS_DIRECTORY = 14,
    /// {0} the version
    CONV_VERSION = 15,
    /// {0} the option
    CONV_NEEDS_MODE = 16,
    CONV_STANDARD_OUTPUT = 17,
    /// {0} the option, {1} the encoding
    CONV_ALL_VALID = 18,
    /// {0} and {1} operands, {2} directory
    CONV_MIXED_OUTPUTS = 19,
    /// {3} offset, {4} bytes, {5} encoding
    CONV_BAD_BYTES = 20,
    /// {3} offset, {4} bytes, {5} encoding
    CONV_CUT_OFF = 21,
    /// {3} code point, {4} encoding
    CONV_NO_CHARACTER = 22,
    /// {3} code point, {4} encoding
    CONV_BEST_FIT = 23,
    /// {0} encoding
    CONV_KEEP_NEEDS_MARK = 24,
    /// {0} output, {1} operand
    CONV_OUTPUT_IS_INPUT = 25,
    /// {0} the option
    CONV_NEEDS_OUTPUTS = 26,
    /// {3} code point, {4} the replacement
    CONV_TRANSLITERATED = 27,
    /// {3} offset, {4} bytes, {5} the bytes after the round trip
    CONV_NOT_REVERSIBLE = 28,
    /// {0} the option, {1} its argument, {2} the valid values
    CONV_BAD_WORD = 29,
    /// {1} reason
    CONV_CANNOT_READ = 30,
    /// {1} reason
    CONV_CANNOT_WRITE = 31,
    /// {1} reason
    CONV_CANNOT_LOCK = 32,
    CONV_LOCKED = 33,
    CONV_CHANGED = 34,
    CONV_NOT_REGULAR = 35,
    /// {1} the name for the original, {2} reason
    CONV_CANNOT_KEEP = 36,
    CONV_IS_OUTPUT = 37,
    /// {1} reason
    CONV_FAILED = 38,
    CONV_NOT_WRITTEN = 39,
    /// {1} a count
    CONV_REPLACED = 40,
    /// {1} the name of the old version
    CONV_CHANGED_LATE = 41,
    CONV_CHANGED_LOST = 42,
    /// {1} the process ID
    CONV_LOCKED_BY = 43,
    CONV_PASSED_LINK = 44,
    CONV_BROKEN_LINK = 45,
    /// {1} a count
    CONV_BEST_FITS = 46,
    /// {1} a count
    CONV_TRANSLITERATIONS = 47,
    /// {1} to {3} files, {4} characters
    CONV_SUMMARY = 48,
    /// {1} and {2} files
    CONV_SUMMARY_CHECK = 49,
    CONV_DONE = 50,
    /// {1} encoding
    CONV_KEPT = 51,
    /// {1} encoding
    CONV_VALID = 52,
    /// {0} output, {1} operand
    CONV_OUTPUT_IS_ITSELF = 53,
    CONV_LEASED = 54,
    CONV_ADVICE_FROM = 55,
    /// The progress line; {0} files, {1} megabytes.
    CONV_PROGRESS = 60,
    CONV_REMOVED = 70,
    /// {1} the process ID
    CONV_STILL_RUNNING = 71,
    CONV_STILL_OPEN = 72,
    CONV_NOT_OURS = 73,
    /// {1} reason
    CONV_UNKNOWN_IF_OPEN = 74,
    /// {1} reason
    CONV_CANNOT_REMOVE = 75,
    /// {0} the option
    CONV_NO_DIRECTORY = 76,
    /// {0} the operand, {1} the option
    CONV_ONE_PATTERN = 77,
    /// {1} reason
    CONV_CANNOT_SPOOL = 80,
    /// {1} encodings
    CONV_NONE_OF = 81,
    CONV_NO_FIT = 82,
    /// {1} encodings with the detector's confidence
    CONV_UNCLEAR = 83,
    /// {1} encodings with the same text
    CONV_FIT = 84,
    /// {1} encodings with the same text, {2} the confidence in percent
    CONV_FIT_PERCENT = 85,
    /// {1} line, {2} encoding, {3} text
    CONV_READS = 86,
    /// {1} encoding
    CONV_NEARLY = 87,
    CONV_OPT_FROM = 101,
    CONV_OPT_TO = 102,
    CONV_OPT_POLICY = 103,
    CONV_OPT_SKIP = 104,
    CONV_OPT_OUTPUT = 105,
    CONV_OPT_DIRECTORY = 106,
    CONV_OPT_IN_PLACE = 107,
    CONV_OPT_CHECK = 108,
    CONV_OPT_KEEP_VALID = 109,
    CONV_OPT_RECURSE = 110,
    CONV_OPT_MATCH = 111,
    CONV_OPT_JOBS = 112,
    CONV_OPT_BOM = 113,
    CONV_OPT_LOCK = 114,
    CONV_OPT_LANG = 115,
    CONV_OPT_XML = 116,
    CONV_OPT_QUIET = 117,
    CONV_OPT_VERBOSE = 118,
    CONV_OPT_LIST = 119,
    CONV_OPT_HELP = 120,
    CONV_OPT_VERSION = 121,
    CONV_OPT_COMPLETIONS = 122,
    CONV_OPT_EOL = 123,
    CONV_OPT_VERIFY = 124,
    CONV_OPT_JSON = 125,
    CONV_OPT_CLEAN = 140,
    CONV_OPT_GUESS = 141,
    /// The help text after the options; ends with a line end.
    CONV_USAGE_END = 150,
};

#endif
