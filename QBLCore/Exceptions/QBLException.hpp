#ifndef QBLCORE_EXCEPTIONS_QBLEXCEPTION_HPP
#define QBLCORE_EXCEPTIONS_QBLEXCEPTION_HPP

#include "QBLCore/Exceptions/QBLThrowable.hpp"
#include "QBLCore/Exceptions/QBLThrowableClass.hpp"
#include "QBLCore/Messages/QBLMessageSet.hpp"

/// A throwable with messages, which it shows in the reader's language. One line makes a derived
/// class concrete:
///
///     class DiskError : public QBLException {
///     public:
///         using QBLException::QBLException;
///         QBL_EXCEPTION_METHODS(DiskError)
///     };
///     QBL_THROW(DiskError(7) << QBLMessage("mytexts", 104) << QBLErrnoMessage(errno));
///
/// The severity is "Error" unless the constructor gets another severity. The severities of the
/// messages do not change the severity of the exception.
///
/// Threads: as with QBLThrowable.
class QBL_API QBLException : public QBLThrowable, public QBLMessageSet {
public:
    explicit QBLException(int code);
    explicit QBLException(long code);
    QBLException(QBLSeverity severity, int code);
    QBLException(QBLSeverity severity, long code);
    /// @param codeText  the error code as a text; null leaves the exception without a code
    explicit QBLException(const char* codeText);
    QBLException(QBLSeverity severity, const char* codeText);
    /// Deleted: a severity alone would silently be used as an error number.
    explicit QBLException(QBLSeverity) = delete;
    QBLException(const QBLException& other);
    QBLException& operator=(const QBLException& other);
    ~QBLException() override;

    /// Returns the messages in English, one after the other, as UTF-8. The first call of this
    /// operation or its const form formats the messages. Later calls return the same text.
    const char* getMessage() override;
    /// Returns the XML form with the messages in English. The first call makes this text. Later
    /// calls return the same text, even after messages were added.
    const char* toString() override;
    virtual const char* getMessage() const;
    /// Appends the XML form, with the messages in a language.
    /// @param language, fallbackLanguage, flag  as for QBLMessageBase::toString
    virtual void toString(const char* language, const char* fallbackLanguage, I18NString& out,
                          int flag);

    using QBLMessageSet::format;
    using QBLThrowable::format;

    /// Adds a copy of a message.
    QBLException& operator<<(const QBLMessageBase& message);
    QBLSeverity getSeverity() const { return QBLThrowable::getSeverity(); }
    /// Clears the throwable and the messages; the error number and the severity stay.
    void clear();
};

#endif
