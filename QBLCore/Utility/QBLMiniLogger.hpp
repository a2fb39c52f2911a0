#ifndef QBLCORE_UTILITY_QBLMINILOGGER_HPP
#define QBLCORE_UTILITY_QBLMINILOGGER_HPP

#include <cstdio>

#include "QBLCore/Frame/QBLExport.h"
#include "QBLCore/Frame/QBLLanguage.hpp"

/// A minimal logger for situations in which nothing else is reliable. It appends records to a file
/// in the directory "../logs/", relative to the effective working directory of QBLFmDir:
///
///     2006-03-09 10:05:00.123<tab>CAPTION Error
///     <-
///     TEXT, unchanged, with all its lines
///     ->
///     (an empty line)
///
/// No operation throws or reports a failure. The logger writes nothing if the directory does not
/// exist or the file cannot be written. It also refuses a file that is a symbolic link, has several
/// hard links or is not a regular file. It refuses a name that contains the directory "..", because
/// such a name could lead out of "../logs/".
///
/// The logger deliberately writes the text unchanged. A line "->" in the text therefore seems to
/// end the record, and the lines after it can look like another record. Indent the lines of a text
/// from an untrusted source before you log it.
///
/// Threads: one thread at a time for each object. The records of several loggers with the same name
/// do not mix if each record fits into the stream's buffer, because the stream then writes each
/// record in one call.
class QBL_API QBLMiniLogger {
public:
    /// Logs to "qbl.log".
    QBLMiniLogger();
    /// Logs to the file `name` with ".log" appended; null or empty means "qbl". The name may
    /// contain directories.
    explicit QBLMiniLogger(const char* name);
    virtual ~QBLMiniLogger();
    QBLMiniLogger(const QBLMiniLogger&) = delete;
    QBLMiniLogger& operator=(const QBLMiniLogger&) = delete;

    /// Closes the file and opens the file for another name.
    void init(const char* name);
    /// Appends a record with the word "Error". Null stands for an empty text.
    void log(const char* caption, const char* text);
    /// Appends a record with the word "Trace". Null stands for an empty text.
    void logTrace(const char* caption, const char* text);

private:
    void write(const char* caption, const char* kind, const char* text);

    FILE* m_pStream;  // null if the file could not be opened
};

#endif
