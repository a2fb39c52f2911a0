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
    /// Takes a standard text; see I18NString.
    template <class Text, std::enable_if_t<kI18NIsStdText<Text>, int> = 0>
    explicit QBLMessageString(const Text& text) : QBLMessageString(I18NString(text)) {}
    QBLMessageString(QBLSeverity severity, const I18NString& text);
    QBLMessageString(QBLSeverity severity, const char* utf8);
    template <class Text, std::enable_if_t<kI18NIsStdText<Text>, int> = 0>
    QBLMessageString(QBLSeverity severity, const Text& text)
        : QBLMessageString(severity, I18NString(text)) {}
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
