// Made by qblmsgc from qblmsgcmsgs_en.msg.
#ifndef QBLMSGCMSGS_HPP
#define QBLMSGCMSGS_HPP

#include "QBLCore/Messages/QBLTypedMessage.hpp"

enum qblmsgcmsgs_ids {
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
    /// {0} file, {1} line, {2} column
    MSGC_NOT_UTF8 = 10,
    /// {0} file, {1} line, {2} column
    MSGC_CONTROL_CHARACTER = 11,
    /// {0} file, {1} line, {2} column
    MSGC_NO_ENTRY = 12,
    /// {0} file, {1} line, {2} column
    MSGC_BAD_ID = 13,
    /// {0} file, {1} line, {2} column
    MSGC_NO_TEXT = 14,
    /// {0} file, {1} line, {2} column
    MSGC_NO_TEXT_HERE = 15,
    /// {0} file, {1} line, {2} column
    MSGC_OPEN_TEXT = 16,
    /// {0} file, {1} line, {2} column
    MSGC_BAD_ESCAPE = 17,
    /// {0} file, {1} line, {2} column
    MSGC_TEXT_WITHOUT_ID = 18,
    /// {0} file, {1} line, {2} column, {3} identifier, {4} the other line
    MSGC_DUPLICATE_ID = 19,
    /// {0} file, {1} line, {2} column, {3} name, {4} the other line
    MSGC_DUPLICATE_NAME = 20,
    /// {0} file, {1} line, {2} column
    MSGC_TOO_LARGE = 21,
    /// {0} file, {1} line, {2} column
    MSGC_BRACES = 22,
    /// {0} file, {1} line, {2} column, {3} ICU's error
    MSGC_BAD_PATTERN = 23,
    /// {0} file, {1} line, {2} column
    MSGC_NO_OTHER = 24,
    /// {0} file, {1} line, {2} column, {3} argument
    MSGC_NAMED_ARGUMENT = 25,
    /// {0} file, {1} line, {2} column, {3} kind
    MSGC_UNKNOWN_KIND = 26,
    /// {0} file, {1} line, {2} column, {3} name
    MSGC_KEYWORD = 27,
    /// {0} file, {1} line, {2} column, {3} the maximum
    MSGC_TOO_MANY_CHOICES = 28,
    /// {0} file, {1} line, {2} column
    MSGC_EXPONENT = 29,
    /// {0} file, {1} line, {2} column, {3} one use, {4} another use
    MSGC_TWO_TYPES = 30,
    /// {0} file, {1} line, {2} column, {3} argument, {4} argument of the reference, {5} reference
    MSGC_OTHER_TYPE = 31,
    /// {0} file, {1} line, {2} column, {3} name, {4} other name, {5} function
    MSGC_SAME_FUNCTION = 32,
    /// {0} file, {1} line, {2} column, {3} severity, {4} number
    MSGC_QUOTED_ARGUMENT = 40,
    /// {0} file, {1} line, {2} column, {3} severity
    MSGC_DOUBLED_APOSTROPHE = 41,
    /// {0} file, {1} line, {2} column, {3} severity
    MSGC_AS_IS_PARSED = 42,
    /// {0} file, {1} line, {2} column, {3} severity
    MSGC_EMPTY_TEXT = 43,
    /// {0} file, {1} line, {2} column, {3} severity, {4} message, {5} translation
    MSGC_MISSING = 44,
    /// {0} file, {1} line, {2} column, {3} severity, {4} message, {5} reference
    MSGC_ADDED = 45,
    /// {0} file, {1} line, {2} column, {3} severity, {4} name in the reference, {5} reference
    MSGC_OTHER_NAME = 46,
    /// {0} file, {1} line, {2} column, {3} severity,
    /// {4} arguments, {5} those of the reference, {6} reference
    MSGC_OTHER_ARGUMENTS = 47,
    /// {0} file, {1} line, {2} column, {3} severity, {4} the keyword
    MSGC_PLURAL_KEYWORD = 48,
    /// {0} file, {1} offset, {2} one of the reasons below
    MSGC_NO_BMF = 60,
    MSGC_REASON_MAGIC = 61,
    MSGC_REASON_CUT = 62,
    MSGC_REASON_ORDER = 63,
    MSGC_REASON_OUTSIDE = 64,
    MSGC_REASON_ZERO = 65,
    MSGC_REASON_UTF8 = 66,
    /// {0} file
    MSGC_NOT_THE_SAME = 67,
    /// {0} file
    MSGC_DOES_NOT_OPEN = 68,
    /// {0} base name, {1} locales
    MSGC_NOT_FOUND = 69,
    /// {0} file, {1} identifier
    MSGC_NO_SUCH_TEXT = 70,
    /// {0} file, {1} identifier
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
    /// {0} one option, {1} other option
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
    /// {0} name of the class, {1} code, {2} severity
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

namespace qblmsgcmsgs {

inline constexpr QBLTypedCatalogue kCatalogue = {"qblmsgcmsgs", 0x19F209};

/// The usage text; ends with a line end.
inline QBLTypedMessage msgcUsage() { return {kCatalogue, ::MSGC_USAGE, {}}; }
/// {0} the option
inline QBLTypedMessage msgcNoOption(const QBLTypedText& option) {
    return {kCatalogue, ::MSGC_NO_OPTION, {option}};
}
/// {0} the option
inline QBLTypedMessage msgcOptionAlone(const QBLTypedText& option) {
    return {kCatalogue, ::MSGC_OPTION_ALONE, {option}};
}
/// {0} file, {1} reason
inline QBLTypedMessage msgcCannotRead(const QBLTypedText& file, const QBLTypedText& reason) {
    return {kCatalogue, ::MSGC_CANNOT_READ, {file, reason}};
}
/// {0} file, {1} reason
inline QBLTypedMessage msgcCannotWrite(const QBLTypedText& file, const QBLTypedText& reason) {
    return {kCatalogue, ::MSGC_CANNOT_WRITE, {file, reason}};
}
/// {0} source, {1} header
inline QBLTypedMessage msgcNoNames(const QBLTypedText& source, const QBLTypedText& header) {
    return {kCatalogue, ::MSGC_NO_NAMES, {source, header}};
}
/// {0} the version
inline QBLTypedMessage msgcVersion(const QBLTypedText& version) {
    return {kCatalogue, ::MSGC_VERSION, {version}};
}
/// {0} file
inline QBLTypedMessage msgcNotRegular(const QBLTypedText& file) {
    return {kCatalogue, ::MSGC_NOT_REGULAR, {file}};
}
inline QBLTypedMessage msgcStandardOutput() { return {kCatalogue, ::MSGC_STANDARD_OUTPUT, {}}; }
/// {0} file, {1} line, {2} column
inline QBLTypedMessage msgcNotUtf8(const QBLTypedText& file, const QBLTypedText& line,
                                   const QBLTypedText& column) {
    return {kCatalogue, ::MSGC_NOT_UTF8, {file, line, column}};
}
/// {0} file, {1} line, {2} column
inline QBLTypedMessage msgcControlCharacter(const QBLTypedText& file, const QBLTypedText& line,
                                            const QBLTypedText& column) {
    return {kCatalogue, ::MSGC_CONTROL_CHARACTER, {file, line, column}};
}
/// {0} file, {1} line, {2} column
inline QBLTypedMessage msgcNoEntry(const QBLTypedText& file, const QBLTypedText& line,
                                   const QBLTypedText& column) {
    return {kCatalogue, ::MSGC_NO_ENTRY, {file, line, column}};
}
/// {0} file, {1} line, {2} column
inline QBLTypedMessage msgcBadId(const QBLTypedText& file, const QBLTypedText& line,
                                 const QBLTypedText& column) {
    return {kCatalogue, ::MSGC_BAD_ID, {file, line, column}};
}
/// {0} file, {1} line, {2} column
inline QBLTypedMessage msgcNoText(const QBLTypedText& file, const QBLTypedText& line,
                                  const QBLTypedText& column) {
    return {kCatalogue, ::MSGC_NO_TEXT, {file, line, column}};
}
/// {0} file, {1} line, {2} column
inline QBLTypedMessage msgcNoTextHere(const QBLTypedText& file, const QBLTypedText& line,
                                      const QBLTypedText& column) {
    return {kCatalogue, ::MSGC_NO_TEXT_HERE, {file, line, column}};
}
/// {0} file, {1} line, {2} column
inline QBLTypedMessage msgcOpenText(const QBLTypedText& file, const QBLTypedText& line,
                                    const QBLTypedText& column) {
    return {kCatalogue, ::MSGC_OPEN_TEXT, {file, line, column}};
}
/// {0} file, {1} line, {2} column
inline QBLTypedMessage msgcBadEscape(const QBLTypedText& file, const QBLTypedText& line,
                                     const QBLTypedText& column) {
    return {kCatalogue, ::MSGC_BAD_ESCAPE, {file, line, column}};
}
/// {0} file, {1} line, {2} column
inline QBLTypedMessage msgcTextWithoutId(const QBLTypedText& file, const QBLTypedText& line,
                                         const QBLTypedText& column) {
    return {kCatalogue, ::MSGC_TEXT_WITHOUT_ID, {file, line, column}};
}
/// {0} file, {1} line, {2} column, {3} identifier, {4} the other line
inline QBLTypedMessage msgcDuplicateId(const QBLTypedText& file, const QBLTypedText& line,
                                       const QBLTypedText& column, const QBLTypedText& identifier,
                                       const QBLTypedText& otherLine) {
    return {kCatalogue, ::MSGC_DUPLICATE_ID, {file, line, column, identifier, otherLine}};
}
/// {0} file, {1} line, {2} column, {3} name, {4} the other line
inline QBLTypedMessage msgcDuplicateName(const QBLTypedText& file, const QBLTypedText& line,
                                         const QBLTypedText& column, const QBLTypedText& name,
                                         const QBLTypedText& otherLine) {
    return {kCatalogue, ::MSGC_DUPLICATE_NAME, {file, line, column, name, otherLine}};
}
/// {0} file, {1} line, {2} column
inline QBLTypedMessage msgcTooLarge(const QBLTypedText& file, const QBLTypedText& line,
                                    const QBLTypedText& column) {
    return {kCatalogue, ::MSGC_TOO_LARGE, {file, line, column}};
}
/// {0} file, {1} line, {2} column
inline QBLTypedMessage msgcBraces(const QBLTypedText& file, const QBLTypedText& line,
                                  const QBLTypedText& column) {
    return {kCatalogue, ::MSGC_BRACES, {file, line, column}};
}
/// {0} file, {1} line, {2} column, {3} ICU's error
inline QBLTypedMessage msgcBadPattern(const QBLTypedText& file, const QBLTypedText& line,
                                      const QBLTypedText& column, const QBLTypedText& icuError) {
    return {kCatalogue, ::MSGC_BAD_PATTERN, {file, line, column, icuError}};
}
/// {0} file, {1} line, {2} column
inline QBLTypedMessage msgcNoOther(const QBLTypedText& file, const QBLTypedText& line,
                                   const QBLTypedText& column) {
    return {kCatalogue, ::MSGC_NO_OTHER, {file, line, column}};
}
/// {0} file, {1} line, {2} column, {3} argument
inline QBLTypedMessage msgcNamedArgument(const QBLTypedText& file, const QBLTypedText& line,
                                         const QBLTypedText& column, const QBLTypedText& argument) {
    return {kCatalogue, ::MSGC_NAMED_ARGUMENT, {file, line, column, argument}};
}
/// {0} file, {1} line, {2} column, {3} kind
inline QBLTypedMessage msgcUnknownKind(const QBLTypedText& file, const QBLTypedText& line,
                                       const QBLTypedText& column, const QBLTypedText& kind) {
    return {kCatalogue, ::MSGC_UNKNOWN_KIND, {file, line, column, kind}};
}
/// {0} file, {1} line, {2} column, {3} name
inline QBLTypedMessage msgcKeyword(const QBLTypedText& file, const QBLTypedText& line,
                                   const QBLTypedText& column, const QBLTypedText& name) {
    return {kCatalogue, ::MSGC_KEYWORD, {file, line, column, name}};
}
/// {0} file, {1} line, {2} column, {3} the maximum
inline QBLTypedMessage msgcTooManyChoices(const QBLTypedText& file, const QBLTypedText& line,
                                          const QBLTypedText& column, const QBLTypedText& maximum) {
    return {kCatalogue, ::MSGC_TOO_MANY_CHOICES, {file, line, column, maximum}};
}
/// {0} file, {1} line, {2} column
inline QBLTypedMessage msgcExponent(const QBLTypedText& file, const QBLTypedText& line,
                                    const QBLTypedText& column) {
    return {kCatalogue, ::MSGC_EXPONENT, {file, line, column}};
}
/// {0} file, {1} line, {2} column, {3} one use, {4} another use
inline QBLTypedMessage msgcTwoTypes(const QBLTypedText& file, const QBLTypedText& line,
                                    const QBLTypedText& column, const QBLTypedText& oneUse,
                                    const QBLTypedText& anotherUse) {
    return {kCatalogue, ::MSGC_TWO_TYPES, {file, line, column, oneUse, anotherUse}};
}
/// {0} file, {1} line, {2} column, {3} argument, {4} argument of the reference, {5} reference
inline QBLTypedMessage msgcOtherType(const QBLTypedText& file, const QBLTypedText& line,
                                     const QBLTypedText& column, const QBLTypedText& argument,
                                     const QBLTypedText& argumentOfTheReference,
                                     const QBLTypedText& reference) {
    return {kCatalogue,
            ::MSGC_OTHER_TYPE,
            {file, line, column, argument, argumentOfTheReference, reference}};
}
/// {0} file, {1} line, {2} column, {3} name, {4} other name, {5} function
inline QBLTypedMessage msgcSameFunction(const QBLTypedText& file, const QBLTypedText& line,
                                        const QBLTypedText& column, const QBLTypedText& name,
                                        const QBLTypedText& otherName,
                                        const QBLTypedText& function) {
    return {kCatalogue, ::MSGC_SAME_FUNCTION, {file, line, column, name, otherName, function}};
}
/// {0} file, {1} line, {2} column, {3} severity, {4} number
inline QBLTypedMessage msgcQuotedArgument(const QBLTypedText& file, const QBLTypedText& line,
                                          const QBLTypedText& column, const QBLTypedText& severity,
                                          const QBLTypedText& number) {
    return {kCatalogue, ::MSGC_QUOTED_ARGUMENT, {file, line, column, severity, number}};
}
/// {0} file, {1} line, {2} column, {3} severity
inline QBLTypedMessage msgcDoubledApostrophe(const QBLTypedText& file, const QBLTypedText& line,
                                             const QBLTypedText& column,
                                             const QBLTypedText& severity) {
    return {kCatalogue, ::MSGC_DOUBLED_APOSTROPHE, {file, line, column, severity}};
}
/// {0} file, {1} line, {2} column, {3} severity
inline QBLTypedMessage msgcAsIsParsed(const QBLTypedText& file, const QBLTypedText& line,
                                      const QBLTypedText& column, const QBLTypedText& severity) {
    return {kCatalogue, ::MSGC_AS_IS_PARSED, {file, line, column, severity}};
}
/// {0} file, {1} line, {2} column, {3} severity
inline QBLTypedMessage msgcEmptyText(const QBLTypedText& file, const QBLTypedText& line,
                                     const QBLTypedText& column, const QBLTypedText& severity) {
    return {kCatalogue, ::MSGC_EMPTY_TEXT, {file, line, column, severity}};
}
/// {0} file, {1} line, {2} column, {3} severity, {4} message, {5} translation
inline QBLTypedMessage msgcMissing(const QBLTypedText& file, const QBLTypedText& line,
                                   const QBLTypedText& column, const QBLTypedText& severity,
                                   const QBLTypedText& message, const QBLTypedText& translation) {
    return {kCatalogue, ::MSGC_MISSING, {file, line, column, severity, message, translation}};
}
/// {0} file, {1} line, {2} column, {3} severity, {4} message, {5} reference
inline QBLTypedMessage msgcAdded(const QBLTypedText& file, const QBLTypedText& line,
                                 const QBLTypedText& column, const QBLTypedText& severity,
                                 const QBLTypedText& message, const QBLTypedText& reference) {
    return {kCatalogue, ::MSGC_ADDED, {file, line, column, severity, message, reference}};
}
/// {0} file, {1} line, {2} column, {3} severity, {4} name in the reference, {5} reference
inline QBLTypedMessage msgcOtherName(const QBLTypedText& file, const QBLTypedText& line,
                                     const QBLTypedText& column, const QBLTypedText& severity,
                                     const QBLTypedText& nameInTheReference,
                                     const QBLTypedText& reference) {
    return {kCatalogue,
            ::MSGC_OTHER_NAME,
            {file, line, column, severity, nameInTheReference, reference}};
}
/// {0} file, {1} line, {2} column, {3} severity,
/// {4} arguments, {5} those of the reference, {6} reference
inline QBLTypedMessage msgcOtherArguments(const QBLTypedText& file, const QBLTypedText& line,
                                          const QBLTypedText& column, const QBLTypedText& severity,
                                          const QBLTypedText& arguments,
                                          const QBLTypedText& thoseOfTheReference,
                                          const QBLTypedText& reference) {
    return {kCatalogue,
            ::MSGC_OTHER_ARGUMENTS,
            {file, line, column, severity, arguments, thoseOfTheReference, reference}};
}
/// {0} file, {1} line, {2} column, {3} severity, {4} the keyword
inline QBLTypedMessage msgcPluralKeyword(const QBLTypedText& file, const QBLTypedText& line,
                                         const QBLTypedText& column, const QBLTypedText& severity,
                                         const QBLTypedText& keyword) {
    return {kCatalogue, ::MSGC_PLURAL_KEYWORD, {file, line, column, severity, keyword}};
}
/// {0} file, {1} offset, {2} one of the reasons below
inline QBLTypedMessage msgcNoBmf(const QBLTypedText& file, const QBLTypedText& offset,
                                 const QBLTypedText& oneOfTheReasonsBelow) {
    return {kCatalogue, ::MSGC_NO_BMF, {file, offset, oneOfTheReasonsBelow}};
}
inline QBLTypedMessage msgcReasonMagic() { return {kCatalogue, ::MSGC_REASON_MAGIC, {}}; }
inline QBLTypedMessage msgcReasonCut() { return {kCatalogue, ::MSGC_REASON_CUT, {}}; }
inline QBLTypedMessage msgcReasonOrder() { return {kCatalogue, ::MSGC_REASON_ORDER, {}}; }
inline QBLTypedMessage msgcReasonOutside() { return {kCatalogue, ::MSGC_REASON_OUTSIDE, {}}; }
inline QBLTypedMessage msgcReasonZero() { return {kCatalogue, ::MSGC_REASON_ZERO, {}}; }
inline QBLTypedMessage msgcReasonUtf8() { return {kCatalogue, ::MSGC_REASON_UTF8, {}}; }
/// {0} file
inline QBLTypedMessage msgcNotTheSame(const QBLTypedText& file) {
    return {kCatalogue, ::MSGC_NOT_THE_SAME, {file}};
}
/// {0} file
inline QBLTypedMessage msgcDoesNotOpen(const QBLTypedText& file) {
    return {kCatalogue, ::MSGC_DOES_NOT_OPEN, {file}};
}
/// {0} base name, {1} locales
inline QBLTypedMessage msgcNotFound(const QBLTypedText& baseName, const QBLTypedText& locales) {
    return {kCatalogue, ::MSGC_NOT_FOUND, {baseName, locales}};
}
/// {0} file, {1} identifier
inline QBLTypedMessage msgcNoSuchText(const QBLTypedText& file, const QBLTypedText& identifier) {
    return {kCatalogue, ::MSGC_NO_SUCH_TEXT, {file, identifier}};
}
/// {0} file, {1} identifier
inline QBLTypedMessage msgcCannotFormat(const QBLTypedText& file, const QBLTypedText& identifier) {
    return {kCatalogue, ::MSGC_CANNOT_FORMAT, {file, identifier}};
}
/// {0} the invalid text
inline QBLTypedMessage msgcNoIdHere(const QBLTypedText& invalidText) {
    return {kCatalogue, ::MSGC_NO_ID_HERE, {invalidText}};
}
/// {0} the invalid text
inline QBLTypedMessage msgcNoParameter(const QBLTypedText& invalidText) {
    return {kCatalogue, ::MSGC_NO_PARAMETER, {invalidText}};
}
/// {0} the option, {1} a similar option
inline QBLTypedMessage msgcNoOptionBut(const QBLTypedText& option,
                                       const QBLTypedText& similarOption) {
    return {kCatalogue, ::MSGC_NO_OPTION_BUT, {option, similarOption}};
}
/// {0} the option
inline QBLTypedMessage msgcNoArgument(const QBLTypedText& option) {
    return {kCatalogue, ::MSGC_NO_ARGUMENT, {option}};
}
/// {0} the option, {1} its argument
inline QBLTypedMessage msgcBadArgument(const QBLTypedText& option,
                                       const QBLTypedText& itsArgument) {
    return {kCatalogue, ::MSGC_BAD_ARGUMENT, {option, itsArgument}};
}
/// {0} one option, {1} other option
inline QBLTypedMessage msgcNotTogether(const QBLTypedText& oneOption,
                                       const QBLTypedText& otherOption) {
    return {kCatalogue, ::MSGC_NOT_TOGETHER, {oneOption, otherOption}};
}
inline QBLTypedMessage msgcNoOperand() { return {kCatalogue, ::MSGC_NO_OPERAND, {}}; }
/// {0} the operand
inline QBLTypedMessage msgcNoMoreOperands(const QBLTypedText& operand) {
    return {kCatalogue, ::MSGC_NO_MORE_OPERANDS, {operand}};
}
/// {0} the output, {1} a file that is read, or the other output
inline QBLTypedMessage msgcSameFile(const QBLTypedText& output,
                                    const QBLTypedText& fileThatIsRead) {
    return {kCatalogue, ::MSGC_SAME_FILE, {output, fileThatIsRead}};
}
/// {0} file
inline QBLTypedMessage msgcNoBmfName(const QBLTypedText& file) {
    return {kCatalogue, ::MSGC_NO_BMF_NAME, {file}};
}
/// {0} the option, {1} its argument, {2} the valid values
inline QBLTypedMessage msgcBadWord(const QBLTypedText& option, const QBLTypedText& itsArgument,
                                   const QBLTypedText& validValues) {
    return {kCatalogue, ::MSGC_BAD_WORD, {option, itsArgument, validValues}};
}
inline QBLTypedMessage msgcFatal() { return {kCatalogue, ::MSGC_FATAL, {}}; }
inline QBLTypedMessage msgcError() { return {kCatalogue, ::MSGC_ERROR, {}}; }
inline QBLTypedMessage msgcWarning() { return {kCatalogue, ::MSGC_WARNING, {}}; }
inline QBLTypedMessage msgcInformation() { return {kCatalogue, ::MSGC_INFORMATION, {}}; }
/// {0} name of the class, {1} code, {2} severity
inline QBLTypedMessage msgcReportError(const QBLTypedText& nameOfTheClass, const QBLTypedText& code,
                                       const QBLTypedText& severity) {
    return {kCatalogue, ::MSGC_REPORT_ERROR, {nameOfTheClass, code, severity}};
}
/// {0} severity, {1} text
inline QBLTypedMessage msgcReportMessage(const QBLTypedText& severity, const QBLTypedText& text) {
    return {kCatalogue, ::MSGC_REPORT_MESSAGE, {severity, text}};
}
/// {0} entry of the back-trace
inline QBLTypedMessage msgcReportTrace(const QBLTypedText& entryOfTheBackTrace) {
    return {kCatalogue, ::MSGC_REPORT_TRACE, {entryOfTheBackTrace}};
}
/// {0} catalogue or class, {1} identifier and parameters
inline QBLTypedMessage msgcReportNoText(const QBLTypedText& catalogueOrClass,
                                        const QBLTypedText& identifierAndParameters) {
    return {kCatalogue, ::MSGC_REPORT_NO_TEXT, {catalogueOrClass, identifierAndParameters}};
}
/// {0} offset
inline QBLTypedMessage msgcReportBroken(const QBLTypedText& offset) {
    return {kCatalogue, ::MSGC_REPORT_BROKEN, {offset}};
}
inline QBLTypedMessage msgcOptOutput() { return {kCatalogue, ::MSGC_OPT_OUTPUT, {}}; }
inline QBLTypedMessage msgcOptHeader() { return {kCatalogue, ::MSGC_OPT_HEADER, {}}; }
inline QBLTypedMessage msgcOptReference() { return {kCatalogue, ::MSGC_OPT_REFERENCE, {}}; }
inline QBLTypedMessage msgcOptCheck() { return {kCatalogue, ::MSGC_OPT_CHECK, {}}; }
inline QBLTypedMessage msgcOptStrict() { return {kCatalogue, ::MSGC_OPT_STRICT, {}}; }
inline QBLTypedMessage msgcOptQuiet() { return {kCatalogue, ::MSGC_OPT_QUIET, {}}; }
inline QBLTypedMessage msgcOptXml() { return {kCatalogue, ::MSGC_OPT_XML, {}}; }
inline QBLTypedMessage msgcOptDump() { return {kCatalogue, ::MSGC_OPT_DUMP, {}}; }
inline QBLTypedMessage msgcOptGet() { return {kCatalogue, ::MSGC_OPT_GET, {}}; }
inline QBLTypedMessage msgcOptWhere() { return {kCatalogue, ::MSGC_OPT_WHERE, {}}; }
inline QBLTypedMessage msgcOptLang() { return {kCatalogue, ::MSGC_OPT_LANG, {}}; }
inline QBLTypedMessage msgcOptHelp() { return {kCatalogue, ::MSGC_OPT_HELP, {}}; }
inline QBLTypedMessage msgcOptVersion() { return {kCatalogue, ::MSGC_OPT_VERSION, {}}; }
inline QBLTypedMessage msgcOptCompletions() { return {kCatalogue, ::MSGC_OPT_COMPLETIONS, {}}; }
inline QBLTypedMessage msgcOptShowReport() { return {kCatalogue, ::MSGC_OPT_SHOW_REPORT, {}}; }
inline QBLTypedMessage msgcOptTyped() { return {kCatalogue, ::MSGC_OPT_TYPED, {}}; }
/// The help text after the options; ends with a line end.
inline QBLTypedMessage msgcUsageEnd() { return {kCatalogue, ::MSGC_USAGE_END, {}}; }

}  // namespace qblmsgcmsgs

#endif
