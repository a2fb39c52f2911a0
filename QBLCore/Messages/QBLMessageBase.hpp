#ifndef QBLCORE_MESSAGES_QBLMESSAGEBASE_HPP
#define QBLCORE_MESSAGES_QBLMESSAGEBASE_HPP

#include "QBLCore/Exceptions/QBLSeverity.hpp"
#include "QBLCore/Frame/QBLExport.h"

class I18NString;

/// A text for people, with a severity and a nesting depth. It can be shown in a language or as XML.
///
/// Errors: QBLOutOfMemoryError. A missing message file, text or translation is not an error.
///
/// Threads: not synchronised; only one thread at a time may use a message, even for constant
/// operations.
class QBL_API QBLMessageBase {
public:
    explicit QBLMessageBase(QBLSeverity severity = QBLSeverityError);
    QBLMessageBase(const QBLMessageBase& other) = default;
    QBLMessageBase& operator=(const QBLMessageBase& other) = default;
    virtual ~QBLMessageBase();

    /// Returns a copy of the same class; the caller deletes it.
    virtual QBLMessageBase* clone() const = 0;
    virtual const char* getClassName() const = 0;
    /// Appends the text for people.
    /// @param language  locales in the order of preference, such as "de_AT de"; null or empty means
    ///     the fallback language; if that is also null or empty, the default locales of
    ///     QBLCatalogueSettings, "en" unless the program sets others
    virtual void format(const char* language, const char* fallbackLanguage,
                        I18NString& out) const = 0;
    /// Appends a `<Message>` element. Texts are inserted without escaping.
    /// @param flag  if 0, shows the identifier and the parameters; otherwise shows the text in the
    ///     language
    virtual void toString(const char* language, const char* fallbackLanguage, I18NString& out,
                          int flag) const = 0;
    virtual QBLSeverity getSeverity() const;

    void setSeverity(QBLSeverity severity) { m_severity = severity; }
    unsigned long getNesting() const { return m_nesting; }
    void setNesting(unsigned long depth) { m_nesting = depth; }
    void increaseNesting(unsigned long levels) { m_nesting += levels; }
    /// Returns "Fatal", "Error", "Warning" or "Information"; "Unknown" for any other value.
    static const char* getSeverityName(QBLSeverity severity);

protected:
    /// Appends the opening `<Message>` tag.
    /// @param file  the message file's name; null for a message without a file
    void openElement(const I18NString* file, I18NString& out) const;

private:
    QBLSeverity m_severity;
    unsigned long m_nesting;  // initially 0
};

#endif
