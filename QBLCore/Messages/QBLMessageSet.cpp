#include "QBLCore/Messages/QBLMessageSet.hpp"

#include <memory>

#include "QBLCore/Exceptions/QBLAllocation.hpp"
#include "QBLCore/Messages/QBLMessageBase.hpp"
#include "i18n/cpp/i18n_string.hpp"

QBLMessageSet::QBLMessageSet() : m_nesting(0) {}

QBLMessageSet::QBLMessageSet(const QBLMessageSet& other) : QBLMessageSet() { copy(other); }

QBLMessageSet& QBLMessageSet::operator=(const QBLMessageSet& other) {
    copy(other);
    return *this;
}

QBLMessageSet::~QBLMessageSet() { deleteList(); }

QBLMessageSet& QBLMessageSet::operator<<(const QBLMessageBase& message) {
    addMessage(message);
    return *this;
}

void QBLMessageSet::addMessage(const QBLMessageBase& message) { addMessage(message.clone()); }

void QBLMessageSet::addMessage(QBLMessageBase* message) {
    if (message == nullptr) return;
    QBL_ALLOC_TRY
    std::unique_ptr<QBLMessageBase> owned(message);
    m_messages.push_back(message);
    static_cast<void>(owned.release());
    QBL_ALLOC_CATCH
}

void QBLMessageSet::addMessageFront(const QBLMessageBase& message) {
    QBL_ALLOC_TRY
    std::unique_ptr<QBLMessageBase> copied(message.clone());
    m_messages.push_front(copied.get());
    static_cast<void>(copied.release());
    QBL_ALLOC_CATCH
}

const QBLMessageBase* QBLMessageSet::getMessageN(unsigned n) const {
    return n < m_messages.size() ? m_messages[n] : nullptr;
}

void QBLMessageSet::transferMessages(QBLMessageSet& other) {
    if (this == &other) return;
    while (!other.m_messages.empty())
        m_messages.splice(m_messages.end(), other.m_messages, other.m_messages.begin());
}

void QBLMessageSet::copy(const QBLMessageSet& other) {
    if (this == &other) return;
    QBLMessageSet copies;
    for (const QBLMessageBase* message : other.m_messages) copies.addMessage(*message);
    deleteList();
    transferMessages(copies);
    m_nesting = other.m_nesting;
}

void QBLMessageSet::deleteList() {
    for (const QBLMessageBase* message : m_messages) delete message;
    m_messages.clear();
}

void QBLMessageSet::clear() {
    deleteList();
    m_nesting = 0;
}

QBLSeverity QBLMessageSet::getSeverity() const {
    return m_messages.empty() ? QBLSeverityError : m_messages[0]->getSeverity();
}

void QBLMessageSet::format(const char* language, const char* fallbackLanguage,
                           I18NString& out) const {
    for (const QBLMessageBase* message : m_messages)
        message->format(language, fallbackLanguage, out);
}

void QBLMessageSet::toString(const char* language, const char* fallbackLanguage, I18NString& out,
                             int flag) const {
    if (m_messages.empty()) return;
    out.append("<Messages>");
    for (const QBLMessageBase* message : m_messages)
        message->toString(language, fallbackLanguage, out, flag);
    out.append("</Messages>");
}
