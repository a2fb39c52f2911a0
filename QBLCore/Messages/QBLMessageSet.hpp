#ifndef QBLCORE_MESSAGES_QBLMESSAGESET_HPP
#define QBLCORE_MESSAGES_QBLMESSAGESET_HPP

#include "QBLCore/Exceptions/QBLSeverity.hpp"
#include "QBLCore/Frame/QBLExport.h"
#include "QBLCore/Frame/QBLList.hpp"

class I18NString;
class QBLMessageBase;

/// An ordered list of messages, which the set owns, and a nesting depth.
///
/// Errors: QBLOutOfMemoryError; the set is then unchanged.
///
/// Threads: not synchronised; only one thread at a time may use a set, even for constant
/// operations.
class QBL_API QBLMessageSet {
public:
    QBLMessageSet();
    QBLMessageSet(const QBLMessageSet& other);
    QBLMessageSet& operator=(const QBLMessageSet& other);
    virtual ~QBLMessageSet();

    /// Appends a copy of a message.
    QBLMessageSet& operator<<(const QBLMessageBase& message);
    void addMessage(const QBLMessageBase& message);
    /// Appends a message and takes ownership of it, even if the operation fails. Null has no
    /// effect.
    void addMessage(QBLMessageBase* message);
    /// Inserts a copy of a message before all other messages.
    void addMessageFront(const QBLMessageBase& message);
    unsigned getMessageCount() const { return m_messages.size(); }
    /// @return message n, from 0, owned by the set; null if there is no such message
    const QBLMessageBase* getMessageN(unsigned n) const;
    /// Moves all messages of another set to the end of this set. Has no effect for the same set.
    void transferMessages(QBLMessageSet& other);
    /// Replaces the messages by copies of another set's messages, and copies its nesting.
    void copy(const QBLMessageSet& other);
    /// Deletes all messages.
    void deleteList();
    /// Deletes all messages and sets the nesting to 0.
    void clear();

    void increaseNesting() { ++m_nesting; }
    unsigned long getNesting() const { return m_nesting; }
    /// Returns the severity of the first message; QBLSeverityError for an empty set.
    QBLSeverity getSeverity() const;

    /// Appends the texts of all messages, one after the other, as QBLMessageBase::format() does.
    void format(const char* language, const char* fallbackLanguage, I18NString& out) const;
    /// Appends a `<Messages>` element with the elements of the messages; appends nothing for an
    /// empty set.
    void toString(const char* language, const char* fallbackLanguage, I18NString& out,
                  int flag) const;

private:
    QBLList<QBLMessageBase*> m_messages;  // owned
    unsigned long m_nesting;
};

#endif
