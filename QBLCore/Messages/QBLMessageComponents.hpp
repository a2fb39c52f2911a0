#ifndef QBLCORE_MESSAGES_QBLMESSAGECOMPONENTS_HPP
#define QBLCORE_MESSAGES_QBLMESSAGECOMPONENTS_HPP

#include "QBLCore/Frame/QBLList.hpp"
#include "QBLCore/Messages/QBLMessageBase.hpp"
#include "QBLCore/Messages/QBLMessageParm.hpp"

/// A message identifier with parameters, without a file that has a text for it: its text is its
/// XML form.
///
/// Threads: as with QBLMessageBase.
class QBL_API QBLMessageComponents : public QBLMessageBase {
public:
    QBLMessageComponents();
    explicit QBLMessageComponents(unsigned long id);
    /// A severity alone is no identifier.
    explicit QBLMessageComponents(QBLSeverity) = delete;
    QBLMessageComponents(QBLSeverity severity, unsigned long id);
    QBLMessageComponents(const QBLMessageComponents& other);
    QBLMessageComponents& operator=(const QBLMessageComponents& other);
    ~QBLMessageComponents() override;

    QBLMessageBase* clone() const override;
    const char* getClassName() const override;
    void format(const char* language, const char* fallbackLanguage, I18NString& out) const override;
    void toString(const char* language, const char* fallbackLanguage, I18NString& out,
                  int flag) const override;

    void setMessage(unsigned long id) { m_id = id; }
    void setMessage(QBLSeverity) = delete;
    void setMessage(QBLSeverity severity, unsigned long id);
    unsigned long getMessageID() const { return m_id; }

    /// Append a copy of a parameter, which becomes {n} in the text, from 0.
    QBLMessageComponents& operator<<(const QBLMessageParm& parm);
    void addParameter(const QBLMessageParm& parm);
    unsigned getParmCount() const { return m_parms.size(); }
    /// @return the parameter, owned by the message; null if there are not as many
    const QBLMessageParm* getParmN(unsigned n) const;
    /// Takes the parameters away.
    void clearParms();
    /// The same, and sets the identifier to 0. Severity and nesting stay.
    void clear();
    /// Takes copies of another's parameters in place of its own.
    void copyParms(const QBLMessageComponents& other);

protected:
    /// Appends the element.
    /// @param file  the message file's name; null for a message without one
    void writeElement(const I18NString* file, const char* language, const char* fallbackLanguage,
                      I18NString& out, int flag) const;

private:
    unsigned long m_id;
    QBLList<QBLMessageParm*> m_parms;  // owned
};

#endif
