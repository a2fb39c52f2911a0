// Made by qblmsgc from qblmsgcmsgs_en.msg.
#ifndef QBLMSGCMSGS_HPP
#define QBLMSGCMSGS_HPP

enum qblmsgcmsgs {
    /// The usage text; ends with a line end.
    MSGC_USAGE = 1,
    /// {0} the option
    MSGC_NO_OPTION = 2,
    /// {0} the option
    MSGC_OPTION_ALONE = 3,
    /// {0} file, {1} reason
    MSGC_CANNOT_READ = 4,
    /// {0} file, {1} reason
    MSGC_CANNOT_WRITE = 5,
    /// {0} source, {1} header
    MSGC_NO_NAMES = 6,
    /// {0} the version
    MSGC_VERSION = 7,
    /// {0} file
    MSGC_NOT_REGULAR = 8,
    MSGC_STANDARD_OUTPUT = 9,
    MSGC_NOT_UTF8 = 10,
    MSGC_CONTROL_CHARACTER = 11,
    MSGC_NO_ENTRY = 12,
    MSGC_BAD_ID = 13,
    MSGC_NO_TEXT = 14,
    MSGC_NO_TEXT_HERE = 15,
    MSGC_OPEN_TEXT = 16,
    MSGC_BAD_ESCAPE = 17,
    MSGC_TEXT_WITHOUT_ID = 18,
    /// {3} identifier, {4} line
    MSGC_DUPLICATE_ID = 19,
    /// {3} name, {4} line
    MSGC_DUPLICATE_NAME = 20,
    MSGC_TOO_LARGE = 21,
    MSGC_BRACES = 22,
    /// {3} ICU's error
    MSGC_BAD_PATTERN = 23,
    MSGC_NO_OTHER = 24,
    /// {3} argument
    MSGC_NAMED_ARGUMENT = 25,
    /// {3} kind
    MSGC_UNKNOWN_KIND = 26,
    /// {3} name
    MSGC_KEYWORD = 27,
    /// {3} the maximum
    MSGC_TOO_MANY_CHOICES = 28,
    MSGC_EXPONENT = 29,
    /// {3} and {4} uses
    MSGC_TWO_TYPES = 30,
    /// {3} argument, {4} the argument in the reference or -, {5} reference
    MSGC_OTHER_TYPE = 31,
    /// {3} name, {4} other name, {5} function
    MSGC_SAME_FUNCTION = 32,
    /// {3} number
    MSGC_QUOTED_ARGUMENT = 40,
    MSGC_DOUBLED_APOSTROPHE = 41,
    MSGC_AS_IS_PARSED = 42,
    MSGC_EMPTY_TEXT = 43,
    /// {3} message, {4} translation
    MSGC_MISSING = 44,
    /// {3} message, {4} reference
    MSGC_ADDED = 45,
    /// {3} name in the reference, {4} reference
    MSGC_OTHER_NAME = 46,
    /// {3} arguments, {4} arguments in the reference, {5} reference
    MSGC_OTHER_ARGUMENTS = 47,
    /// {3} the keyword
    MSGC_PLURAL_KEYWORD = 48,
    /// {1} offset, {2} one of the reasons below
    MSGC_NO_BMF = 60,
    MSGC_REASON_MAGIC = 61,
    MSGC_REASON_CUT = 62,
    MSGC_REASON_ORDER = 63,
    MSGC_REASON_OUTSIDE = 64,
    MSGC_REASON_ZERO = 65,
    MSGC_REASON_UTF8 = 66,
    MSGC_NOT_THE_SAME = 67,
    MSGC_DOES_NOT_OPEN = 68,
    /// {0} base name, {1} locales
    MSGC_NOT_FOUND = 69,
    /// {1} identifier
    MSGC_NO_SUCH_TEXT = 70,
    /// {1} identifier
    MSGC_CANNOT_FORMAT = 71,
    /// {0} the invalid text
    MSGC_NO_ID_HERE = 72,
    /// {0} the invalid text
    MSGC_NO_PARAMETER = 73,
    /// {0} the option, {1} a similar option
    MSGC_NO_OPTION_BUT = 80,
    /// {0} the option
    MSGC_NO_ARGUMENT = 81,
    /// {0} the option, {1} its argument
    MSGC_BAD_ARGUMENT = 82,
    /// {0} and {1} options
    MSGC_NOT_TOGETHER = 83,
    MSGC_NO_OPERAND = 84,
    /// {0} the operand
    MSGC_NO_MORE_OPERANDS = 85,
    /// {0} the output, {1} a file that is read, or the other output
    MSGC_SAME_FILE = 86,
    /// {0} file
    MSGC_NO_BMF_NAME = 87,
    /// {0} the option, {1} its argument, {2} the valid values
    MSGC_BAD_WORD = 88,
    MSGC_FATAL = 90,
    MSGC_ERROR = 91,
    MSGC_WARNING = 92,
    MSGC_INFORMATION = 93,
    /// {0} class, {1} code, {2} severity
    MSGC_REPORT_ERROR = 94,
    /// {0} severity, {1} text
    MSGC_REPORT_MESSAGE = 95,
    /// {0} entry of the back-trace
    MSGC_REPORT_TRACE = 96,
    /// {0} catalogue or class, {1} identifier and parameters
    MSGC_REPORT_NO_TEXT = 97,
    /// {0} offset
    MSGC_REPORT_BROKEN = 98,
    MSGC_OPT_OUTPUT = 101,
    MSGC_OPT_HEADER = 102,
    MSGC_OPT_REFERENCE = 103,
    MSGC_OPT_CHECK = 104,
    MSGC_OPT_STRICT = 105,
    MSGC_OPT_QUIET = 106,
    MSGC_OPT_XML = 107,
    MSGC_OPT_DUMP = 108,
    MSGC_OPT_GET = 109,
    MSGC_OPT_WHERE = 110,
    MSGC_OPT_LANG = 111,
    MSGC_OPT_HELP = 112,
    MSGC_OPT_VERSION = 113,
    MSGC_OPT_COMPLETIONS = 114,
    MSGC_OPT_SHOW_REPORT = 120,
    MSGC_OPT_TYPED = 121,
    /// The help text after the options; ends with a line end.
    MSGC_USAGE_END = 150,
};

#endif
