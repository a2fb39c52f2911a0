#ifndef QBLCORE_EXCEPTIONS_QBLTHROWABLE_HPP
#define QBLCORE_EXCEPTIONS_QBLTHROWABLE_HPP

#include "QBLCore/Exceptions/QBLFileLocation.hpp"
#include "QBLCore/Exceptions/QBLSeverity.hpp"
#include "QBLCore/Frame/QBLExport.h"
#include "QBLCore/Frame/QBLList.hpp"

class I18NString;

/// Base class of the exceptions that the library throws. It has an error code (a number or a text),
/// a severity, a message text and a back-trace. The back-trace has an entry for each place where
/// the throwable was thrown or rethrown, the latest first. Throw with the macros of QBLThrow.hpp.
///
/// A throwable copies all its strings. If memory is exhausted, copying a throwable or making its
/// XML form throws std::bad_alloc. If there is no memory for a back-trace entry, the entry is left
/// out.
///
/// Threads: not synchronised; a throwable belongs to the thread that caught it. Hand it to
/// another thread in a QBLDeferredThrowable.
class QBL_API QBLThrowable {
public:
    /// The class of the object that hurl() throws, if a macro of QBLThrowableClass.hpp defines
    /// hurl(). In this class it is void; the macros redefine it.
    typedef void QBLHurledAs;

    /// @name Making a throwable
    /// @{

    /// Makes a throwable with code 0, severity Fatal and no text.
    QBLThrowable();
    /// @param code  the error number; its lower 32 bits are kept
    /// @param text  the message text; null means no text
    QBLThrowable(int code, const char* text);
    QBLThrowable(long code, const char* text);
    QBLThrowable(QBLSeverity severity, int code, const char* text);
    QBLThrowable(QBLSeverity severity, long code, const char* text);
    /// @param codeText  the error code as a text; null leaves the throwable without a code
    QBLThrowable(const char* codeText, const char* text);
    QBLThrowable(QBLSeverity severity, const char* codeText, const char* text);
    /// Deleted: a severity alone would silently be used as an error number.
    QBLThrowable(QBLSeverity, const char*) = delete;
    /// Copies everything, including the entries of the back-trace and the cached XML text.
    QBLThrowable(const QBLThrowable& other);
    /// Moves the texts and the trace entries. The other throwable keeps its number and severity.
    QBLThrowable(QBLThrowable&& other) noexcept;
    /// Calls clear() first. So if memory runs out, the old texts and the old trace are gone.
    QBLThrowable& operator=(const QBLThrowable& other);
    virtual ~QBLThrowable();
    /// @}

    /// @name Copying, throwing and showing
    /// @{

    /// Returns a copy of the same class on the heap. The caller deletes it.
    virtual QBLThrowable* clone() const = 0;
    /// Adds a trace entry to this object, and throws a copy of this object with its own class.
    [[noreturn]] virtual void hurl(const QBLFileLocation& where, const char* detail,
                                   const char* tag) = 0;
    /// Returns the message text, which the throwable owns; null if there is no text.
    virtual const char* getMessage();
    /// Returns the name of the class, as the XML form and the back-trace show it.
    virtual const char* getThrowableName() const = 0;
    /// Returns the XML form, on one line: `<Exception>` with Name, Error and Severity, then the
    /// message text and the trace entries, if there are any. Texts are inserted without escaping.
    /// Each call makes a new text, which is valid until the next call.
    virtual const char* toString();
    /// Returns a text for people: the messages of a QBLException in a language, joined by a
    /// separator, or the message text of another throwable. If there is no text, returns the name
    /// of the class, and the code unless it is 0. Empty messages are left out. The throwable does
    /// not change, so several threads may format one throwable that no thread changes. QBLWhat.hpp
    /// has the same text as a std::string on one line, and the XML form of a constant throwable.
    /// @param locales  in the order of preference, such as "de_AT de"; null or empty means the
    ///     default locales of QBLCatalogueSettings
    /// @param separator  UTF-8; null means an empty one
    /// @throws QBLOutOfMemoryError
    I18NString format(const char* locales = nullptr, const char* separator = " ") const;
    /// @}

    /// @name Code and severity
    /// @{

    /// Returns 0 if the code is a text.
    long getErrorCode() const { return errorCode; }
    /// Returns the code as a text, which the throwable owns; null if the throwable was made from a
    /// null code text.
    const char* getErrorCodeString();
    QBLSeverity getSeverity() const { return severity; }
    /// Returns "Fatal", "Error", "Warning" or "Information"; "Unknown" for any other value.
    static const char* getSeverityName(QBLSeverity severity);
    /// @}

    /// @name Back-trace
    /// @{

    /// Returns entries of the form `file(line): name: tag: detail`, the latest first.
    const QBLList<char*>& getBackTrace() const { return backTrace; }
    /// Adds an entry at the front. Leaves out a null or empty tag or detail, but keeps the
    /// separator before a missing detail. Does nothing if there is no memory for the entry.
    void addBackTrace(const QBLFileLocation& where, const char* detail, const char* tag) noexcept;
    /// Appends copies of all entries of a list. The list may be this throwable's own list.
    void copyBackTrace(const QBLList<char*>& entries);
    /// Moves all entries of another throwable to the end of this back-trace. Does nothing if the
    /// other throwable is this one.
    void transferBackTrace(QBLThrowable& other);
    /// @}

    /// @name Clearing
    /// @{

    /// Frees the back-trace, the texts and the cached XML text. The error number and the severity
    /// stay.
    void clear();
    /// @}

protected:
    char* xmlText;             ///< the latest XML form; null before the first request
    QBLList<char*> backTrace;  ///< owns its strings
    int numericCode;           ///< 1 if the error code is a number, 0 if it is a text
    int errorCode;
    char* errorCodeText;  ///< given, or formatted from errorCode at the first request
    QBLSeverity severity;
    char* messageText;

private:
    void copyFrom(const QBLThrowable& other);
};

#endif
