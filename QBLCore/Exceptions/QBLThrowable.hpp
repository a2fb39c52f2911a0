#ifndef QBLCORE_EXCEPTIONS_QBLTHROWABLE_HPP
#define QBLCORE_EXCEPTIONS_QBLTHROWABLE_HPP

#include "QBLCore/Exceptions/QBLFileLocation.hpp"
#include "QBLCore/Exceptions/QBLSeverity.hpp"
#include "QBLCore/Frame/QBLExport.h"
#include "QBLCore/Frame/QBLList.hpp"

/// Root of everything that the library throws: an error code (a number or a text), a
/// severity, a message text, and a back-trace with an entry for each place it was thrown or
/// rethrown at, latest first. Throw with the macros of QBLThrow.hpp.
///
/// All strings are copies of its own. Copying and the XML form let a failed allocation pass
/// as std::bad_alloc; a trace entry that finds no memory is left out instead.
///
/// Threads: not synchronised; a throwable belongs to the thread that caught it. Hand it to
/// another thread in a QBLDeferredThrowable.
class QBL_API QBLThrowable {
public:
    /// @name Making a throwable
    /// @{

    /// Code 0, severity Fatal, no text.
    QBLThrowable();
    /// @param code  the error number; its lower 32 bits are kept
    /// @param text  the message text; null for none
    QBLThrowable(int code, const char* text);
    QBLThrowable(long code, const char* text);
    QBLThrowable(QBLSeverity severity, int code, const char* text);
    QBLThrowable(QBLSeverity severity, long code, const char* text);
    /// @param codeText  the error code as a text; null leaves the throwable without a code
    QBLThrowable(const char* codeText, const char* text);
    QBLThrowable(QBLSeverity severity, const char* codeText, const char* text);
    /// A severity alone would silently be taken for an error number.
    QBLThrowable(QBLSeverity, const char*) = delete;
    /// Copies everything, the back-trace entry by entry and the cached XML text too.
    QBLThrowable(const QBLThrowable& other);
    QBLThrowable& operator=(const QBLThrowable& other);
    virtual ~QBLThrowable();
    /// @}

    /// @name Copying, throwing and showing
    /// @{

    /// A copy on the heap of the same class; the caller deletes it.
    virtual QBLThrowable* clone() const = 0;
    /// Adds a trace entry to this object and throws a copy of it, as its own class.
    [[noreturn]] virtual void hurl(const QBLFileLocation& where, const char* detail,
                                   const char* tag) = 0;
    /// The message text, owned by the throwable; null when there is none.
    virtual const char* getMessage();
    /// The name of the class, as the XML form and the back-trace show it.
    virtual const char* getThrowableName() const = 0;
    /// The XML form, on one line: `<Exception>` with Name, Error and Severity, then the message
    /// text and the trace entries where there are any. Texts are inserted as they are, without
    /// escaping. Built anew by each call; stays valid until the next one.
    virtual const char* toString();
    /// @}

    /// @name Code and severity
    /// @{

    /// 0 when the code is a text.
    long getErrorCode() const { return errorCode; }
    /// The code as text, owned by the throwable; null when it was made from a null code text.
    const char* getErrorCodeString();
    QBLSeverity getSeverity() const { return severity; }
    /// "Fatal", "Error", "Warning" or "Information"; "Unknown" for any other value.
    static const char* getSeverityName(QBLSeverity severity);
    /// @}

    /// @name Back-trace
    /// @{

    /// Entries of the form `file(line): name: tag: detail`, the latest first.
    const QBLList<char*>& getBackTrace() const { return backTrace; }
    /// Puts an entry at the front. A null or empty tag or detail is left out (a separator in
    /// front of a missing detail stays). Without memory for the entry nothing happens.
    void addBackTrace(const QBLFileLocation& where, const char* detail, const char* tag) noexcept;
    /// Appends copies of all entries of a list that may be this throwable's own.
    void copyBackTrace(const QBLList<char*>& entries);
    /// Moves all entries of another throwable to the end of this one's; onto itself, nothing.
    void transferBackTrace(QBLThrowable& other);
    /// @}

    /// @name Emptying
    /// @{

    /// Frees the back-trace, the texts and the cached XML text; number and severity stay.
    void clear();
    /// @}

protected:
    char* xmlText;             ///< the latest XML form; null until one was asked for
    QBLList<char*> backTrace;  ///< owns its strings
    int numericCode;           ///< 1 when the error code is a number, 0 when it is a text
    int errorCode;
    char* errorCodeText;  ///< given, or formatted from errorCode when first asked for
    QBLSeverity severity;
    char* messageText;

private:
    void copyFrom(const QBLThrowable& other);
};

#endif
