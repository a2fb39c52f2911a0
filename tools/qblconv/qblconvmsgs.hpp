// Made by qblmsgc from qblconvmsgs_en.msg.
#ifndef QBLCONVMSGS_HPP
#define QBLCONVMSGS_HPP

#include "QBLCore/Messages/QBLTypedMessage.hpp"

enum qblconvmsgs_ids {
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
    /// {0} one option, {1} other option
    CONV_NOT_TOGETHER = 8,
    /// {0} the option
    CONV_NO_OPERANDS = 9,
    /// {0} the encoding
    CONV_NO_ENCODING = 10,
    /// {0} the encoding, {1} a similar encoding
    CONV_NO_ENCODING_BUT = 11,
    /// {0} the encoding
    CONV_NO_MARK = 12,
    /// {0} one operand, {1} other operand, {2} the file
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
    /// {0} one operand, {1} other operand, {2} directory
    CONV_MIXED_OUTPUTS = 19,
    /// {0} file, {1} line, {2} column, {3} offset, {4} bytes, {5} encoding
    CONV_BAD_BYTES = 20,
    /// {0} file, {1} line, {2} column, {3} offset, {4} bytes, {5} encoding
    CONV_CUT_OFF = 21,
    /// {0} file, {1} line, {2} column, {3} code point, {4} encoding
    CONV_NO_CHARACTER = 22,
    /// {0} file, {1} line, {2} column, {3} code point, {4} encoding
    CONV_BEST_FIT = 23,
    /// {0} encoding
    CONV_KEEP_NEEDS_MARK = 24,
    /// {0} output, {1} operand
    CONV_OUTPUT_IS_INPUT = 25,
    /// {0} the option
    CONV_NEEDS_OUTPUTS = 26,
    /// {0} file, {1} line, {2} column, {3} code point, {4} the replacement
    CONV_TRANSLITERATED = 27,
    /// {0} file, {1} line, {2} column, {3} offset, {4} bytes, {5} the bytes after the round trip
    CONV_NOT_REVERSIBLE = 28,
    /// {0} the option, {1} its argument, {2} the valid values
    CONV_BAD_WORD = 29,
    /// {0} file, {1} reason
    CONV_CANNOT_READ = 30,
    /// {0} file, {1} reason
    CONV_CANNOT_WRITE = 31,
    /// {0} file, {1} reason
    CONV_CANNOT_LOCK = 32,
    /// {0} file
    CONV_LOCKED = 33,
    /// {0} file
    CONV_CHANGED = 34,
    /// {0} file
    CONV_NOT_REGULAR = 35,
    /// {0} file, {1} the name for the original, {2} reason
    CONV_CANNOT_KEEP = 36,
    /// {0} file
    CONV_IS_OUTPUT = 37,
    /// {0} file, {1} reason
    CONV_FAILED = 38,
    /// {0} file
    CONV_NOT_WRITTEN = 39,
    /// {0} file, {1} a count
    CONV_REPLACED = 40,
    /// {0} file, {1} the name of the old version
    CONV_CHANGED_LATE = 41,
    /// {0} file
    CONV_CHANGED_LOST = 42,
    /// {0} file, {1} the process ID
    CONV_LOCKED_BY = 43,
    /// {0} file
    CONV_PASSED_LINK = 44,
    /// {0} file
    CONV_BROKEN_LINK = 45,
    /// {0} file, {1} a count
    CONV_BEST_FITS = 46,
    /// {0} file, {1} a count
    CONV_TRANSLITERATIONS = 47,
    /// {0} files, {1} converted, {2} unchanged, {3} failed, {4} characters replaced
    CONV_SUMMARY = 48,
    /// {0} files, {1} valid, {2} failed
    CONV_SUMMARY_CHECK = 49,
    /// {0} file, {1} encoding
    CONV_DONE = 50,
    /// {0} file, {1} encoding
    CONV_KEPT = 51,
    /// {0} file, {1} encoding
    CONV_VALID = 52,
    /// {0} output, {1} operand
    CONV_OUTPUT_IS_ITSELF = 53,
    /// {0} file
    CONV_LEASED = 54,
    CONV_ADVICE_FROM = 55,
    /// The progress line; {0} files, {1} megabytes.
    CONV_PROGRESS = 60,
    /// {0} file
    CONV_REMOVED = 70,
    /// {0} file, {1} the process ID
    CONV_STILL_RUNNING = 71,
    /// {0} file
    CONV_STILL_OPEN = 72,
    /// {0} file
    CONV_NOT_OURS = 73,
    /// {0} file, {1} reason
    CONV_UNKNOWN_IF_OPEN = 74,
    /// {0} file, {1} reason
    CONV_CANNOT_REMOVE = 75,
    /// {0} the option
    CONV_NO_DIRECTORY = 76,
    /// {0} the operand, {1} the option
    CONV_ONE_PATTERN = 77,
    /// {0} file, {1} reason
    CONV_CANNOT_SPOOL = 80,
    /// {0} file, {1} encodings
    CONV_NONE_OF = 81,
    /// {0} file
    CONV_NO_FIT = 82,
    /// {0} file, {1} encodings with the detector's confidence
    CONV_UNCLEAR = 83,
    /// {0} file, {1} encodings with the same text
    CONV_FIT = 84,
    /// {0} file, {1} encodings with the same text, {2} the confidence in percent
    CONV_FIT_PERCENT = 85,
    /// {0} file, {1} line, {2} encoding, {3} text
    CONV_READS = 86,
    /// {0} file, {1} encoding
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

namespace qblconvmsgs {

inline constexpr QBLTypedCatalogue kCatalogue = {"qblconvmsgs", 0xD57F13};

/// The usage text; ends with a line end.
inline QBLTypedMessage convUsage() { return {kCatalogue, ::CONV_USAGE, {}}; }
/// {0} the option
inline QBLTypedMessage convNoOption(const QBLTypedText& option) {
    return {kCatalogue, ::CONV_NO_OPTION, {option}};
}
/// {0} the option, {1} a similar option
inline QBLTypedMessage convNoOptionBut(const QBLTypedText& option,
                                       const QBLTypedText& similarOption) {
    return {kCatalogue, ::CONV_NO_OPTION_BUT, {option, similarOption}};
}
/// {0} the option
inline QBLTypedMessage convOptionAlone(const QBLTypedText& option) {
    return {kCatalogue, ::CONV_OPTION_ALONE, {option}};
}
/// {0} the option
inline QBLTypedMessage convNoArgument(const QBLTypedText& option) {
    return {kCatalogue, ::CONV_NO_ARGUMENT, {option}};
}
/// {0} the option, {1} its argument
inline QBLTypedMessage convBadArgument(const QBLTypedText& option,
                                       const QBLTypedText& itsArgument) {
    return {kCatalogue, ::CONV_BAD_ARGUMENT, {option, itsArgument}};
}
/// {0} the option, {1} its argument, {2} a similar argument
inline QBLTypedMessage convBadArgumentBut(const QBLTypedText& option,
                                          const QBLTypedText& itsArgument,
                                          const QBLTypedText& similarArgument) {
    return {kCatalogue, ::CONV_BAD_ARGUMENT_BUT, {option, itsArgument, similarArgument}};
}
/// {0} one option, {1} other option
inline QBLTypedMessage convNotTogether(const QBLTypedText& oneOption,
                                       const QBLTypedText& otherOption) {
    return {kCatalogue, ::CONV_NOT_TOGETHER, {oneOption, otherOption}};
}
/// {0} the option
inline QBLTypedMessage convNoOperands(const QBLTypedText& option) {
    return {kCatalogue, ::CONV_NO_OPERANDS, {option}};
}
/// {0} the encoding
inline QBLTypedMessage convNoEncoding(const QBLTypedText& encoding) {
    return {kCatalogue, ::CONV_NO_ENCODING, {encoding}};
}
/// {0} the encoding, {1} a similar encoding
inline QBLTypedMessage convNoEncodingBut(const QBLTypedText& encoding,
                                         const QBLTypedText& similarEncoding) {
    return {kCatalogue, ::CONV_NO_ENCODING_BUT, {encoding, similarEncoding}};
}
/// {0} the encoding
inline QBLTypedMessage convNoMark(const QBLTypedText& encoding) {
    return {kCatalogue, ::CONV_NO_MARK, {encoding}};
}
/// {0} one operand, {1} other operand, {2} the file
inline QBLTypedMessage convSameOutput(const QBLTypedText& oneOperand,
                                      const QBLTypedText& otherOperand, const QBLTypedText& file) {
    return {kCatalogue, ::CONV_SAME_OUTPUT, {oneOperand, otherOperand, file}};
}
/// {0} directory
inline QBLTypedMessage convIsDirectory(const QBLTypedText& directory) {
    return {kCatalogue, ::CONV_IS_DIRECTORY, {directory}};
}
/// {0} the version
inline QBLTypedMessage convVersion(const QBLTypedText& version) {
    return {kCatalogue, ::CONV_VERSION, {version}};
}
/// {0} the option
inline QBLTypedMessage convNeedsMode(const QBLTypedText& option) {
    return {kCatalogue, ::CONV_NEEDS_MODE, {option}};
}
inline QBLTypedMessage convStandardOutput() { return {kCatalogue, ::CONV_STANDARD_OUTPUT, {}}; }
/// {0} the option, {1} the encoding
inline QBLTypedMessage convAllValid(const QBLTypedText& option, const QBLTypedText& encoding) {
    return {kCatalogue, ::CONV_ALL_VALID, {option, encoding}};
}
/// {0} one operand, {1} other operand, {2} directory
inline QBLTypedMessage convMixedOutputs(const QBLTypedText& oneOperand,
                                        const QBLTypedText& otherOperand,
                                        const QBLTypedText& directory) {
    return {kCatalogue, ::CONV_MIXED_OUTPUTS, {oneOperand, otherOperand, directory}};
}
/// {0} file, {1} line, {2} column, {3} offset, {4} bytes, {5} encoding
inline QBLTypedMessage convBadBytes(const QBLTypedText& file, const QBLTypedText& line,
                                    const QBLTypedText& column, const QBLTypedText& offset,
                                    const QBLTypedText& bytes, const QBLTypedText& encoding) {
    return {kCatalogue, ::CONV_BAD_BYTES, {file, line, column, offset, bytes, encoding}};
}
/// {0} file, {1} line, {2} column, {3} offset, {4} bytes, {5} encoding
inline QBLTypedMessage convCutOff(const QBLTypedText& file, const QBLTypedText& line,
                                  const QBLTypedText& column, const QBLTypedText& offset,
                                  const QBLTypedText& bytes, const QBLTypedText& encoding) {
    return {kCatalogue, ::CONV_CUT_OFF, {file, line, column, offset, bytes, encoding}};
}
/// {0} file, {1} line, {2} column, {3} code point, {4} encoding
inline QBLTypedMessage convNoCharacter(const QBLTypedText& file, const QBLTypedText& line,
                                       const QBLTypedText& column, const QBLTypedText& codePoint,
                                       const QBLTypedText& encoding) {
    return {kCatalogue, ::CONV_NO_CHARACTER, {file, line, column, codePoint, encoding}};
}
/// {0} file, {1} line, {2} column, {3} code point, {4} encoding
inline QBLTypedMessage convBestFit(const QBLTypedText& file, const QBLTypedText& line,
                                   const QBLTypedText& column, const QBLTypedText& codePoint,
                                   const QBLTypedText& encoding) {
    return {kCatalogue, ::CONV_BEST_FIT, {file, line, column, codePoint, encoding}};
}
/// {0} encoding
inline QBLTypedMessage convKeepNeedsMark(const QBLTypedText& encoding) {
    return {kCatalogue, ::CONV_KEEP_NEEDS_MARK, {encoding}};
}
/// {0} output, {1} operand
inline QBLTypedMessage convOutputIsInput(const QBLTypedText& output, const QBLTypedText& operand) {
    return {kCatalogue, ::CONV_OUTPUT_IS_INPUT, {output, operand}};
}
/// {0} the option
inline QBLTypedMessage convNeedsOutputs(const QBLTypedText& option) {
    return {kCatalogue, ::CONV_NEEDS_OUTPUTS, {option}};
}
/// {0} file, {1} line, {2} column, {3} code point, {4} the replacement
inline QBLTypedMessage convTransliterated(const QBLTypedText& file, const QBLTypedText& line,
                                          const QBLTypedText& column, const QBLTypedText& codePoint,
                                          const QBLTypedText& replacement) {
    return {kCatalogue, ::CONV_TRANSLITERATED, {file, line, column, codePoint, replacement}};
}
/// {0} file, {1} line, {2} column, {3} offset, {4} bytes, {5} the bytes after the round trip
inline QBLTypedMessage convNotReversible(const QBLTypedText& file, const QBLTypedText& line,
                                         const QBLTypedText& column, const QBLTypedText& offset,
                                         const QBLTypedText& bytes,
                                         const QBLTypedText& bytesAfterTheRoundTrip) {
    return {kCatalogue,
            ::CONV_NOT_REVERSIBLE,
            {file, line, column, offset, bytes, bytesAfterTheRoundTrip}};
}
/// {0} the option, {1} its argument, {2} the valid values
inline QBLTypedMessage convBadWord(const QBLTypedText& option, const QBLTypedText& itsArgument,
                                   const QBLTypedText& validValues) {
    return {kCatalogue, ::CONV_BAD_WORD, {option, itsArgument, validValues}};
}
/// {0} file, {1} reason
inline QBLTypedMessage convCannotRead(const QBLTypedText& file, const QBLTypedText& reason) {
    return {kCatalogue, ::CONV_CANNOT_READ, {file, reason}};
}
/// {0} file, {1} reason
inline QBLTypedMessage convCannotWrite(const QBLTypedText& file, const QBLTypedText& reason) {
    return {kCatalogue, ::CONV_CANNOT_WRITE, {file, reason}};
}
/// {0} file, {1} reason
inline QBLTypedMessage convCannotLock(const QBLTypedText& file, const QBLTypedText& reason) {
    return {kCatalogue, ::CONV_CANNOT_LOCK, {file, reason}};
}
/// {0} file
inline QBLTypedMessage convLocked(const QBLTypedText& file) {
    return {kCatalogue, ::CONV_LOCKED, {file}};
}
/// {0} file
inline QBLTypedMessage convChanged(const QBLTypedText& file) {
    return {kCatalogue, ::CONV_CHANGED, {file}};
}
/// {0} file
inline QBLTypedMessage convNotRegular(const QBLTypedText& file) {
    return {kCatalogue, ::CONV_NOT_REGULAR, {file}};
}
/// {0} file, {1} the name for the original, {2} reason
inline QBLTypedMessage convCannotKeep(const QBLTypedText& file,
                                      const QBLTypedText& nameForTheOriginal,
                                      const QBLTypedText& reason) {
    return {kCatalogue, ::CONV_CANNOT_KEEP, {file, nameForTheOriginal, reason}};
}
/// {0} file
inline QBLTypedMessage convIsOutput(const QBLTypedText& file) {
    return {kCatalogue, ::CONV_IS_OUTPUT, {file}};
}
/// {0} file, {1} reason
inline QBLTypedMessage convFailed(const QBLTypedText& file, const QBLTypedText& reason) {
    return {kCatalogue, ::CONV_FAILED, {file, reason}};
}
/// {0} file
inline QBLTypedMessage convNotWritten(const QBLTypedText& file) {
    return {kCatalogue, ::CONV_NOT_WRITTEN, {file}};
}
/// {0} file, {1} a count
inline QBLTypedMessage convReplaced(const QBLTypedText& file, const QBLTypedText& count) {
    return {kCatalogue, ::CONV_REPLACED, {file, count}};
}
/// {0} file, {1} the name of the old version
inline QBLTypedMessage convChangedLate(const QBLTypedText& file,
                                       const QBLTypedText& nameOfTheOldVersion) {
    return {kCatalogue, ::CONV_CHANGED_LATE, {file, nameOfTheOldVersion}};
}
/// {0} file
inline QBLTypedMessage convChangedLost(const QBLTypedText& file) {
    return {kCatalogue, ::CONV_CHANGED_LOST, {file}};
}
/// {0} file, {1} the process ID
inline QBLTypedMessage convLockedBy(const QBLTypedText& file, const QBLTypedText& processId) {
    return {kCatalogue, ::CONV_LOCKED_BY, {file, processId}};
}
/// {0} file
inline QBLTypedMessage convPassedLink(const QBLTypedText& file) {
    return {kCatalogue, ::CONV_PASSED_LINK, {file}};
}
/// {0} file
inline QBLTypedMessage convBrokenLink(const QBLTypedText& file) {
    return {kCatalogue, ::CONV_BROKEN_LINK, {file}};
}
/// {0} file, {1} a count
inline QBLTypedMessage convBestFits(const QBLTypedText& file, const QBLTypedText& count) {
    return {kCatalogue, ::CONV_BEST_FITS, {file, count}};
}
/// {0} file, {1} a count
inline QBLTypedMessage convTransliterations(const QBLTypedText& file, const QBLTypedText& count) {
    return {kCatalogue, ::CONV_TRANSLITERATIONS, {file, count}};
}
/// {0} files, {1} converted, {2} unchanged, {3} failed, {4} characters replaced
inline QBLTypedMessage convSummary(const QBLTypedText& files, const QBLTypedText& converted,
                                   const QBLTypedText& unchanged, const QBLTypedText& failed,
                                   const QBLTypedText& charactersReplaced) {
    return {kCatalogue, ::CONV_SUMMARY, {files, converted, unchanged, failed, charactersReplaced}};
}
/// {0} files, {1} valid, {2} failed
inline QBLTypedMessage convSummaryCheck(const QBLTypedText& files, const QBLTypedText& valid,
                                        const QBLTypedText& failed) {
    return {kCatalogue, ::CONV_SUMMARY_CHECK, {files, valid, failed}};
}
/// {0} file, {1} encoding
inline QBLTypedMessage convDone(const QBLTypedText& file, const QBLTypedText& encoding) {
    return {kCatalogue, ::CONV_DONE, {file, encoding}};
}
/// {0} file, {1} encoding
inline QBLTypedMessage convKept(const QBLTypedText& file, const QBLTypedText& encoding) {
    return {kCatalogue, ::CONV_KEPT, {file, encoding}};
}
/// {0} file, {1} encoding
inline QBLTypedMessage convValid(const QBLTypedText& file, const QBLTypedText& encoding) {
    return {kCatalogue, ::CONV_VALID, {file, encoding}};
}
/// {0} output, {1} operand
inline QBLTypedMessage convOutputIsItself(const QBLTypedText& output, const QBLTypedText& operand) {
    return {kCatalogue, ::CONV_OUTPUT_IS_ITSELF, {output, operand}};
}
/// {0} file
inline QBLTypedMessage convLeased(const QBLTypedText& file) {
    return {kCatalogue, ::CONV_LEASED, {file}};
}
inline QBLTypedMessage convAdviceFrom() { return {kCatalogue, ::CONV_ADVICE_FROM, {}}; }
/// The progress line; {0} files, {1} megabytes.
inline QBLTypedMessage convProgress(const QBLTypedText& files, const QBLTypedText& megabytes) {
    return {kCatalogue, ::CONV_PROGRESS, {files, megabytes}};
}
/// {0} file
inline QBLTypedMessage convRemoved(const QBLTypedText& file) {
    return {kCatalogue, ::CONV_REMOVED, {file}};
}
/// {0} file, {1} the process ID
inline QBLTypedMessage convStillRunning(const QBLTypedText& file, const QBLTypedText& processId) {
    return {kCatalogue, ::CONV_STILL_RUNNING, {file, processId}};
}
/// {0} file
inline QBLTypedMessage convStillOpen(const QBLTypedText& file) {
    return {kCatalogue, ::CONV_STILL_OPEN, {file}};
}
/// {0} file
inline QBLTypedMessage convNotOurs(const QBLTypedText& file) {
    return {kCatalogue, ::CONV_NOT_OURS, {file}};
}
/// {0} file, {1} reason
inline QBLTypedMessage convUnknownIfOpen(const QBLTypedText& file, const QBLTypedText& reason) {
    return {kCatalogue, ::CONV_UNKNOWN_IF_OPEN, {file, reason}};
}
/// {0} file, {1} reason
inline QBLTypedMessage convCannotRemove(const QBLTypedText& file, const QBLTypedText& reason) {
    return {kCatalogue, ::CONV_CANNOT_REMOVE, {file, reason}};
}
/// {0} the option
inline QBLTypedMessage convNoDirectory(const QBLTypedText& option) {
    return {kCatalogue, ::CONV_NO_DIRECTORY, {option}};
}
/// {0} the operand, {1} the option
inline QBLTypedMessage convOnePattern(const QBLTypedText& operand, const QBLTypedText& option) {
    return {kCatalogue, ::CONV_ONE_PATTERN, {operand, option}};
}
/// {0} file, {1} reason
inline QBLTypedMessage convCannotSpool(const QBLTypedText& file, const QBLTypedText& reason) {
    return {kCatalogue, ::CONV_CANNOT_SPOOL, {file, reason}};
}
/// {0} file, {1} encodings
inline QBLTypedMessage convNoneOf(const QBLTypedText& file, const QBLTypedText& encodings) {
    return {kCatalogue, ::CONV_NONE_OF, {file, encodings}};
}
/// {0} file
inline QBLTypedMessage convNoFit(const QBLTypedText& file) {
    return {kCatalogue, ::CONV_NO_FIT, {file}};
}
/// {0} file, {1} encodings with the detector's confidence
inline QBLTypedMessage convUnclear(const QBLTypedText& file,
                                   const QBLTypedText& encodingsWithTheDetectorConfidence) {
    return {kCatalogue, ::CONV_UNCLEAR, {file, encodingsWithTheDetectorConfidence}};
}
/// {0} file, {1} encodings with the same text
inline QBLTypedMessage convFit(const QBLTypedText& file,
                               const QBLTypedText& encodingsWithTheSameText) {
    return {kCatalogue, ::CONV_FIT, {file, encodingsWithTheSameText}};
}
/// {0} file, {1} encodings with the same text, {2} the confidence in percent
inline QBLTypedMessage convFitPercent(const QBLTypedText& file,
                                      const QBLTypedText& encodingsWithTheSameText,
                                      const QBLTypedText& confidenceInPercent) {
    return {kCatalogue, ::CONV_FIT_PERCENT, {file, encodingsWithTheSameText, confidenceInPercent}};
}
/// {0} file, {1} line, {2} encoding, {3} text
inline QBLTypedMessage convReads(const QBLTypedText& file, const QBLTypedText& line,
                                 const QBLTypedText& encoding, const QBLTypedText& text) {
    return {kCatalogue, ::CONV_READS, {file, line, encoding, text}};
}
/// {0} file, {1} encoding
inline QBLTypedMessage convNearly(const QBLTypedText& file, const QBLTypedText& encoding) {
    return {kCatalogue, ::CONV_NEARLY, {file, encoding}};
}
inline QBLTypedMessage convOptFrom() { return {kCatalogue, ::CONV_OPT_FROM, {}}; }
inline QBLTypedMessage convOptTo() { return {kCatalogue, ::CONV_OPT_TO, {}}; }
inline QBLTypedMessage convOptPolicy() { return {kCatalogue, ::CONV_OPT_POLICY, {}}; }
inline QBLTypedMessage convOptSkip() { return {kCatalogue, ::CONV_OPT_SKIP, {}}; }
inline QBLTypedMessage convOptOutput() { return {kCatalogue, ::CONV_OPT_OUTPUT, {}}; }
inline QBLTypedMessage convOptDirectory() { return {kCatalogue, ::CONV_OPT_DIRECTORY, {}}; }
inline QBLTypedMessage convOptInPlace() { return {kCatalogue, ::CONV_OPT_IN_PLACE, {}}; }
inline QBLTypedMessage convOptCheck() { return {kCatalogue, ::CONV_OPT_CHECK, {}}; }
inline QBLTypedMessage convOptKeepValid() { return {kCatalogue, ::CONV_OPT_KEEP_VALID, {}}; }
inline QBLTypedMessage convOptRecurse() { return {kCatalogue, ::CONV_OPT_RECURSE, {}}; }
inline QBLTypedMessage convOptMatch() { return {kCatalogue, ::CONV_OPT_MATCH, {}}; }
inline QBLTypedMessage convOptJobs() { return {kCatalogue, ::CONV_OPT_JOBS, {}}; }
inline QBLTypedMessage convOptBom() { return {kCatalogue, ::CONV_OPT_BOM, {}}; }
inline QBLTypedMessage convOptLock() { return {kCatalogue, ::CONV_OPT_LOCK, {}}; }
inline QBLTypedMessage convOptLang() { return {kCatalogue, ::CONV_OPT_LANG, {}}; }
inline QBLTypedMessage convOptXml() { return {kCatalogue, ::CONV_OPT_XML, {}}; }
inline QBLTypedMessage convOptQuiet() { return {kCatalogue, ::CONV_OPT_QUIET, {}}; }
inline QBLTypedMessage convOptVerbose() { return {kCatalogue, ::CONV_OPT_VERBOSE, {}}; }
inline QBLTypedMessage convOptList() { return {kCatalogue, ::CONV_OPT_LIST, {}}; }
inline QBLTypedMessage convOptHelp() { return {kCatalogue, ::CONV_OPT_HELP, {}}; }
inline QBLTypedMessage convOptVersion() { return {kCatalogue, ::CONV_OPT_VERSION, {}}; }
inline QBLTypedMessage convOptCompletions() { return {kCatalogue, ::CONV_OPT_COMPLETIONS, {}}; }
inline QBLTypedMessage convOptEol() { return {kCatalogue, ::CONV_OPT_EOL, {}}; }
inline QBLTypedMessage convOptVerify() { return {kCatalogue, ::CONV_OPT_VERIFY, {}}; }
inline QBLTypedMessage convOptJson() { return {kCatalogue, ::CONV_OPT_JSON, {}}; }
inline QBLTypedMessage convOptClean() { return {kCatalogue, ::CONV_OPT_CLEAN, {}}; }
inline QBLTypedMessage convOptGuess() { return {kCatalogue, ::CONV_OPT_GUESS, {}}; }
/// The help text after the options; ends with a line end.
inline QBLTypedMessage convUsageEnd() { return {kCatalogue, ::CONV_USAGE_END, {}}; }

}  // namespace qblconvmsgs

#endif
