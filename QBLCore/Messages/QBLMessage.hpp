#ifndef QBLCORE_MESSAGES_QBLMESSAGE_HPP
#define QBLCORE_MESSAGES_QBLMESSAGE_HPP

#include <memory>

#include "QBLCore/Messages/QBLMessageComponents.hpp"
#include "i18n/cpp/i18n_string.hpp"

class QBLMessagePattern;
class QBLResourceFile;

/// A message identifier with parameters, and the catalogue that has its text in each language. The
/// name of the catalogue is the base name of its message files, as for QBLResourceFactory.
///
/// The text is an ICU message pattern in UTF-8. The first ten parameters are its arguments:
/// - All integers are shown as signed 32-bit integers. Unsigned integers above 2147483647
///   deliberately appear negative.
/// - A message identifier is shown as its text in the catalogue.
/// - Opaque values and values of unknown type are shown as an empty text.
///
/// If the message has no parameters and its text has no "{0", the text is shown unchanged. If the
/// file or the text is missing, or the text is not a valid pattern, the message shows its XML form.
///
/// Each format() shows the texts that the file has at that time. The process keeps catalogues in
/// memory, so an unchanged file is rarely opened again.
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
    /// Deleted: a severity must be the first argument.
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
    /// Does the same as format(). If the file has another shape, appends the XML form instead.
    /// @param shape  as in QBLTypedCatalogue; 0 accepts every file
    void formatIf(unsigned shape, const char* language, const char* fallbackLanguage,
                  I18NString& out) const;
    /// Returns the language if it is neither null nor empty, otherwise the fallback language in the
    /// same way, otherwise QBLCatalogueSettings::getDefaultLocales(). The fallback language is not
    /// used for a language without a text.
    static const char* chooseLocale(const char* language, const char* fallbackLanguage);
    /// Appends the text from an open file, with the parameters filled in.
    /// @param file  must be preloaded if the caller keeps the pattern
    /// @param pattern  null in the first call; in later calls for the same open file and locale,
    ///     the pattern that the previous call stored. The same text is then not parsed again.
    /// @return false, without appending anything, if there is no text or the text cannot be
    ///     formatted
    bool formatFrom(QBLResourceFile& file, const char* locale,
                    std::unique_ptr<QBLMessagePattern>& pattern, I18NString& out) const;

private:
    I18NString m_msgFile;
};

#endif
