#ifndef QBLCORE_MESSAGES_QBLMESSAGECOMPONENTS_HPP
#define QBLCORE_MESSAGES_QBLMESSAGECOMPONENTS_HPP

#include "QBLCore/Frame/QBLList.hpp"
#include "QBLCore/Messages/QBLMessageBase.hpp"
#include "QBLCore/Messages/QBLMessageParm.hpp"

/// A message identifier with parameters, without a message file. Its text is its XML form.
///
/// Threads: as with QBLMessageBase.
class QBL_API QBLMessageComponents : public QBLMessageBase {
public:
    QBLMessageComponents();
    explicit QBLMessageComponents(unsigned long id);
    /// Deleted: a severity is not an identifier.
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

    /// Appends a copy of a parameter. Parameter n is {n} in the text; the first is {0}.
    QBLMessageComponents& operator<<(const QBLMessageParm& parm);
    void addParameter(const QBLMessageParm& parm);
    unsigned getParmCount() const { return m_parms.size(); }
    /// @return parameter n, from 0, owned by the message; null if there is no such parameter
    const QBLMessageParm* getParmN(unsigned n) const;
    /// Removes all parameters.
    void clearParms();
    /// Removes all parameters and sets the identifier to 0. Severity and nesting stay.
    void clear();
    /// Replaces the parameters by copies of another message's parameters.
    void copyParms(const QBLMessageComponents& other);

protected:
    /// Appends the `<Message>` element.
    /// @param file  the message file's name; null for a message without a file
    void writeElement(const I18NString* file, const char* language, const char* fallbackLanguage,
                      I18NString& out, int flag) const;

private:
    unsigned long m_id;
    QBLList<QBLMessageParm*> m_parms;  // owned
};

#endif
