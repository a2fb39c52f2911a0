#ifndef QBLCORE_MESSAGES_QBLMESSAGE_HPP
#define QBLCORE_MESSAGES_QBLMESSAGE_HPP

#include <memory>

#include "QBLCore/Messages/QBLMessageComponents.hpp"
#include "i18n/cpp/i18n_string.hpp"

class QBLMessagePattern;
class QBLResourceFile;

/// A message identifier with parameters, and the catalogue that has its text in each language: the
/// base name of binary message files, as of QBLResourceFactory.
///
/// The text is an ICU message pattern, in UTF-8, with the parameters as its arguments: integers of
/// either kind as signed ones of 32 bits, so that unsigned ones above 2147483647 deliberately show
/// negative; a message identifier as the text that the catalogue has for it; opaque values and
/// those of unknown type as an empty text. The first ten parameters count. A message without
/// parameters whose text has no "{0" shows it as it stands. Where there is no file, no text, or one
/// that is no pattern, the message shows its XML form instead.
///
/// Each format() opens the file anew; QBLMessageFile keeps it open.
///
/// Threads: as with QBLMessageBase.
class QBL_API QBLMessage : public QBLMessageComponents {
public:
    QBLMessage();
    /// @param file  the catalogue's base name, without language and extension
    explicit QBLMessage(const I18NString& file);
    explicit QBLMessage(const char* file);
    QBLMessage(const I18NString& file, unsigned long id);
    QBLMessage(const char* file, unsigned long id);
    /// A severity comes first.
    QBLMessage(const I18NString& file, QBLSeverity) = delete;
    QBLMessage(const char* file, QBLSeverity) = delete;
    QBLMessage(QBLSeverity severity, const I18NString& file, unsigned long id);
    QBLMessage(QBLSeverity severity, const char* file, unsigned long id);
    QBLMessage(const QBLMessage& other);
    QBLMessage& operator=(const QBLMessage& other);
    ~QBLMessage() override;

    QBLMessageBase* clone() const override;
    const char* getClassName() const override;
    void format(const char* language, const char* fallbackLanguage, I18NString& out) const override;
    void toString(const char* language, const char* fallbackLanguage, I18NString& out,
                  int flag) const override;

    void setMsgFile(const I18NString& file) { m_msgFile = file; }
    const I18NString& getMsgFile() const { return m_msgFile; }

protected:
    /// The locales that count: the language, else the fallback, else "en".
    static const char* chooseLocale(const char* language, const char* fallbackLanguage);
    /// Appends the text that an open file has, filled in.
    /// @param file  read as a whole, if the pattern is to be kept
    /// @param pattern  what an earlier call for the same open file and locale left there, which
    ///     spares parsing the same text again; null for the first
    /// @return false, with nothing appended, if there is no text or it cannot be filled in
    bool formatFrom(QBLResourceFile& file, const char* locale,
                    std::unique_ptr<QBLMessagePattern>& pattern, I18NString& out) const;

private:
    I18NString m_msgFile;
};

#endif
