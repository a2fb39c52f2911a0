#include "QBLCore/Messages/QBLMessageString.hpp"

#include "QBLCore/Exceptions/QBLAllocation.hpp"

QBLMessageString::QBLMessageString() = default;

QBLMessageString::QBLMessageString(const I18NString& text) : m_text(text) {}

QBLMessageString::QBLMessageString(const char* utf8) : m_text(utf8) {}

QBLMessageString::QBLMessageString(QBLSeverity severity, const I18NString& text)
    : QBLMessageBase(severity), m_text(text) {}

QBLMessageString::QBLMessageString(QBLSeverity severity, const char* utf8)
    : QBLMessageBase(severity), m_text(utf8) {}

QBLMessageString::QBLMessageString(const QBLMessageString& other) = default;

QBLMessageString& QBLMessageString::operator=(const QBLMessageString& other) = default;

QBLMessageString::~QBLMessageString() = default;

QBLMessageBase* QBLMessageString::clone() const {
    QBL_ALLOC_TRY
    return new QBLMessageString(*this);
    QBL_ALLOC_CATCH
}

const char* QBLMessageString::getClassName() const { return "QBLMessageString"; }

void QBLMessageString::format(const char*, const char*, I18NString& out) const {
    out.append(m_text);
}

void QBLMessageString::toString(const char*, const char*, I18NString& out, int) const {
    openElement(nullptr, out);
    out.append("<MessageText>").append(m_text).append("</MessageText></Message>");
}
