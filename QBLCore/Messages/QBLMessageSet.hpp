#ifndef QBLCORE_MESSAGES_QBLMESSAGESET_HPP
#define QBLCORE_MESSAGES_QBLMESSAGESET_HPP

#include "QBLCore/Exceptions/QBLSeverity.hpp"
#include "QBLCore/Frame/QBLExport.h"
#include "QBLCore/Frame/QBLList.hpp"

class I18NString;
class QBLMessageBase;

/// Messages in an order, which the set owns, and a depth of nesting.
///
/// Errors: QBLOutOfMemoryError, after which the set is as it was.
///
/// Threads: not synchronised; a set belongs to one thread at a time, constant operations included.
class QBL_API QBLMessageSet {
public:
    QBLMessageSet();
    QBLMessageSet(const QBLMessageSet& other);
    QBLMessageSet& operator=(const QBLMessageSet& other);
    virtual ~QBLMessageSet();

    /// Append a copy of a message.
    QBLMessageSet& operator<<(const QBLMessageBase& message);
    void addMessage(const QBLMessageBase& message);
    /// Appends a message and takes it over, after a failure too; null does nothing.
    void addMessage(QBLMessageBase* message);
    /// Puts a copy of a message in front of all others.
    void addMessageFront(const QBLMessageBase& message);
    unsigned getMessageCount() const { return m_messages.size(); }
    /// @return the message, owned by the set; null if there are not as many
    const QBLMessageBase* getMessageN(unsigned n) const;
    /// Moves all messages of another set behind its own; onto itself, nothing.
    void transferMessages(QBLMessageSet& other);
    /// Takes copies of another's messages, and its nesting, in place of its own.
    void copy(const QBLMessageSet& other);
    /// Deletes all messages.
    void deleteList();
    /// The same, and sets the nesting to 0.
    void clear();

    void increaseNesting() { ++m_nesting; }
    unsigned long getNesting() const { return m_nesting; }
    /// That of the first message; QBLSeverityError for an empty set.
    QBLSeverity getSeverity() const;

    /// Appends the texts for people, one after the other, as QBLMessageBase::format does each.
    void format(const char* language, const char* fallbackLanguage, I18NString& out) const;
    /// Appends a `<Messages>` element with those of the messages; nothing for an empty set.
    void toString(const char* language, const char* fallbackLanguage, I18NString& out,
                  int flag) const;

private:
    QBLList<QBLMessageBase*> m_messages;  // owned
    unsigned long m_nesting;
};

#endif
