#ifndef QBLCORE_MESSAGES_QBLMESSAGEFILE_HPP
#define QBLCORE_MESSAGES_QBLMESSAGEFILE_HPP

#include "QBLCore/Messages/QBLMessage.hpp"

/// A message that keeps its message file open between formats, and the pattern that its text was
/// parsed into: for one that is shown often. Both stay until another file or language is asked for,
/// or close(); the pattern also until another text is shown. A copy has the name alone.
///
/// Threads: one at a time for each object, for format() and toString() too.
class QBL_API QBLMessageFile : public QBLMessage {
public:
    QBLMessageFile();
    explicit QBLMessageFile(const I18NString& file);
    explicit QBLMessageFile(const char* file);
    QBLMessageFile(const I18NString& file, unsigned long id);
    QBLMessageFile(const char* file, unsigned long id);
    /// A severity comes first.
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

    /// Names another file and closes the one that is open.
    void setMsgFile(const I18NString& file);
    void close();

private:
    struct Open;

    mutable Open* m_pOpen;  // owned; null when nothing is open
};

#endif
