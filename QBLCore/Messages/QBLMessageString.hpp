#ifndef QBLCORE_MESSAGES_QBLMESSAGESTRING_HPP
#define QBLCORE_MESSAGES_QBLMESSAGESTRING_HPP

#include "QBLCore/Messages/QBLMessageBase.hpp"
#include "i18n/cpp/i18n_string.hpp"

/// A literal text, the same in every language.
///
/// Threads: as with QBLMessageBase.
class QBL_API QBLMessageString : public QBLMessageBase {
public:
    QBLMessageString();
    explicit QBLMessageString(const I18NString& text);
    /// @param utf8  null stands for an empty text
    explicit QBLMessageString(const char* utf8);
    QBLMessageString(QBLSeverity severity, const I18NString& text);
    QBLMessageString(QBLSeverity severity, const char* utf8);
    QBLMessageString(const QBLMessageString& other);
    QBLMessageString& operator=(const QBLMessageString& other);
    ~QBLMessageString() override;

    QBLMessageBase* clone() const override;
    const char* getClassName() const override;
    void format(const char* language, const char* fallbackLanguage, I18NString& out) const override;
    /// Shows the text; ignores the flag.
    void toString(const char* language, const char* fallbackLanguage, I18NString& out,
                  int flag) const override;

private:
    I18NString m_text;
};

#endif
