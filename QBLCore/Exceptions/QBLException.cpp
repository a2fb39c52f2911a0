#include "QBLCore/Exceptions/QBLException.hpp"

#include "QBLCore/Exceptions/QBLI18NStringAllocator.hpp"
#include "QBLCore/Exceptions/internal/QBLThrowableXml.hpp"
#include "i18n/cpp/i18n_string.hpp"

namespace {

const char kLanguage[] = "en";

/// Returns a block for delete[], like all texts of a throwable.
char* toOwned(const I18NString& text) {
    char* bytes = nullptr;
    text.toBytes(&bytes, nullptr, nullptr, QBLI18NStringAllocator, nullptr);
    return bytes;
}

}  // namespace

QBLException::QBLException(int code) : QBLException(QBLSeverityError, code) {}

QBLException::QBLException(long code) : QBLException(QBLSeverityError, code) {}

QBLException::QBLException(QBLSeverity theSeverity, int code)
    : QBLThrowable(theSeverity, code, nullptr) {}

QBLException::QBLException(QBLSeverity theSeverity, long code)
    : QBLThrowable(theSeverity, code, nullptr) {}

QBLException::QBLException(const char* codeText) : QBLException(QBLSeverityError, codeText) {}

QBLException::QBLException(QBLSeverity theSeverity, const char* codeText)
    : QBLThrowable(theSeverity, codeText, nullptr) {}

QBLException::QBLException(const QBLException& other) = default;

QBLException& QBLException::operator=(const QBLException& other) = default;

QBLException::~QBLException() = default;

const char* QBLException::getMessage() {
    if (messageText == nullptr) {
        I18NString text;
        format(kLanguage, nullptr, text);
        messageText = toOwned(text);
    }
    return messageText;
}

const char* QBLException::getMessage() const {
    return const_cast<QBLException*>(this)->getMessage();
}

const char* QBLException::toString() {
    if (xmlText == nullptr) {
        I18NString xml;
        toString(nullptr, kLanguage, xml, 1);
        xmlText = toOwned(xml);
    }
    return xmlText;
}

// Unlike QBLThrowable's form, this form has a blank before the end of a trace element. Programs
// that read these reports rely on both forms.
void QBLException::toString(const char* language, const char* fallbackLanguage, I18NString& out,
                            int flag) {
    const auto appendMessages = [&] {
        QBLMessageSet::toString(language, fallbackLanguage, out, flag);
    };
    qblAppendThrowable(out, getThrowableName(), getErrorCodeString(),
                       getSeverityName(getSeverity()), appendMessages, backTrace, "\" />");
}

QBLException& QBLException::operator<<(const QBLMessageBase& message) {
    addMessage(message);
    return *this;
}

void QBLException::clear() {
    QBLThrowable::clear();
    QBLMessageSet::clear();
}
