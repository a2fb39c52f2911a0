#ifndef QBLCORE_MESSAGES_QBLMESSAGEFILE_HPP
#define QBLCORE_MESSAGES_QBLMESSAGEFILE_HPP

#include "QBLCore/Messages/QBLMessage.hpp"

/// A message that is shown often. Between calls of format(), the object keeps its message file
/// open, and keeps its text as a parsed pattern. It closes the file if the caller requests another
/// file or language, or calls close(). It discards the pattern when it closes the file or shows
/// another text. A copy of the object does not share the open file or the pattern.
///
/// Threads: one thread at a time for each object, even for format() and toString().
class QBL_API QBLMessageFile : public QBLMessage {
public:
    QBLMessageFile();
    explicit QBLMessageFile(const I18NString& file);
    explicit QBLMessageFile(const char* file);
    QBLMessageFile(const I18NString& file, unsigned long id);
    QBLMessageFile(const char* file, unsigned long id);
    /// A severity must be the first argument.
    QBLMessageFile(const I18NString& file, QBLSeverity) = delete;
    QBLMessageFile(const char* file, QBLSeverity) = delete;
    QBLMessageFile(QBLSeverity severity, const I18NString& file, unsigned long id);
    QBLMessageFile(QBLSeverity severity, const char* file, unsigned long id);
    QBLMessageFile(const QBLMessageFile& other);
    QBLMessageFile& operator=(const QBLMessageFile& other);
    ~QBLMessageFile() override;

    QBLMessageBase* clone() const override;
    const char* getClassName() const override;
    void format(const char* language, const char* fallbackLanguage, I18NString& out) const override;

    /// Sets another file and closes the open file.
    void setMsgFile(const I18NString& file);
    void close();

private:
    struct Open;

    mutable Open* m_pOpen;  // owned; null if nothing is open
};

#endif
