#ifndef QBLCORE_EXCEPTIONS_QBLEXCEPTION_HPP
#define QBLCORE_EXCEPTIONS_QBLEXCEPTION_HPP

#include "QBLCore/Exceptions/QBLThrowable.hpp"
#include "QBLCore/Exceptions/QBLThrowableClass.hpp"
#include "QBLCore/Messages/QBLMessageSet.hpp"

/// A throwable that carries messages, which it shows in the language of whoever looks at it. It
/// becomes concrete in a line:
///
///     class DiskError : public QBLException {
///     public:
///         using QBLException::QBLException;
///         QBL_EXCEPTION_METHODS(DiskError)
///     };
///     QBL_THROW(DiskError(7) << QBLMessage("mytexts", 104) << QBLErrnoMessage(errno));
///
/// The severity is "Error" unless another is given, whatever that of the messages.
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
    /// A severity alone would silently be taken for an error number.
    explicit QBLException(QBLSeverity) = delete;
    QBLException(const QBLException& other);
    QBLException& operator=(const QBLException& other);
    ~QBLException() override;

    /// The messages in English, one after the other, as UTF-8; formatted by the first call, or
    /// before that by a call of the constant form, and the same from then on.
    const char* getMessage() override;
    /// The XML form with the messages in English; made by the first call, and the same from then
    /// on, whatever is added later.
    const char* toString() override;
    virtual const char* getMessage() const;
    /// Appends the XML form with the messages as they show themselves in a language.
    /// @param language, fallbackLanguage, flag  as of QBLMessageBase::toString
    virtual void toString(const char* language, const char* fallbackLanguage, I18NString& out,
                          int flag);

    /// Adds a copy of a message.
    QBLException& operator<<(const QBLMessageBase& message);
    QBLSeverity getSeverity() const { return QBLThrowable::getSeverity(); }
    /// Clears the throwable and the messages; number and severity stay.
    void clear();
};

#endif
