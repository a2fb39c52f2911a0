#include "QBLCore/Messages/QBLMessageBase.hpp"

#include "QBLCore/Exceptions/QBLThrowable.hpp"
#include "QBLCore/Messages/internal/QBLNumberText.hpp"
#include "i18n/cpp/i18n_string.hpp"

QBLMessageBase::QBLMessageBase(QBLSeverity severity) : m_severity(severity), m_nesting(0) {}

QBLMessageBase::~QBLMessageBase() = default;

QBLSeverity QBLMessageBase::getSeverity() const { return m_severity; }

const char* QBLMessageBase::getSeverityName(QBLSeverity severity) {
    return QBLThrowable::getSeverityName(severity);
}

void QBLMessageBase::openElement(const I18NString* file, I18NString& out) const {
    out.append("<Message Name=\"").append(getClassName()).append("\" File=\"");
    if (file != nullptr) out.append(*file);
    out.append("\" Severity=\"").append(getSeverityName(getSeverity())).append("\" Nesting=\"");
    out.append(QBLNumberText::decimal(static_cast<int>(m_nesting)).c_str()).append("\" >");
}
