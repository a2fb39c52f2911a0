#ifndef QBLCORE_UTILITY_QBLMINILOGGER_HPP
#define QBLCORE_UTILITY_QBLMINILOGGER_HPP

#include <cstdio>

#include "QBLCore/Frame/QBLExport.h"

/// The smallest possible logger, for where nothing else can be relied upon. It appends records to
/// a file in the directory "../logs/", taken from the effective working directory of QBLFmDir:
///
///     2006-03-09 10:05:00.123<tab>CAPTION Error
///     <-
///     TEXT, as it is, in as many lines as it has
///     ->
///     (an empty line)
///
/// Nothing throws or reports a failure: without the directory, or the right to write there,
/// nothing is logged. Nor is anything logged to a link, to a file with several names, to what is no
/// regular file, or by a name with a ".." that would lead out of the directory.
///
/// The text is deliberately written as it is. One that has a line "->" ends its record for whoever
/// reads the file, and can go on as if another record followed: indent the lines of a text that
/// comes from elsewhere before it is logged.
///
/// Threads: one at a time for each object. Each record is written at once, so that several loggers
/// of one name do not mix theirs, as long as a record is not longer than the stream's buffer.
class QBL_API QBLMiniLogger {
public:
    /// Logs to "qbl.log".
    QBLMiniLogger();
    /// Logs to the name with ".log" appended; null or empty means "qbl". It may have directories in
    /// front.
    explicit QBLMiniLogger(const char* name);
    virtual ~QBLMiniLogger();
    QBLMiniLogger(const QBLMiniLogger&) = delete;
    QBLMiniLogger& operator=(const QBLMiniLogger&) = delete;

    /// Opens the file of another name instead.
    void init(const char* name);
    /// Appends a record of an error. Null is an empty text.
    void log(const char* caption, const char* text);
    /// The same with the word "Trace".
    void logTrace(const char* caption, const char* text);

private:
    void write(const char* caption, const char* kind, const char* text);

    FILE* m_pStream;  // null when the file could not be opened
};

#endif
