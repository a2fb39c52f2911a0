#include "QBLCore/Exceptions/QBLThrowable.hpp"

#include <charconv>
#include <memory>
#include <new>
#include <stdexcept>
#include <string>
#include <utility>

#include "QBLCore/Exceptions/internal/QBLCopyString.hpp"
#include "QBLCore/Exceptions/internal/QBLThrowableXml.hpp"

namespace {

const char kNoName[] = "<NULL THROWABLE NAME>";
const char kNoFile[] = "<NULL FILE>";
const char* const kSeverityNames[] = {"Fatal", "Error", "Warning", "Information"};

/// An int as decimal text, in its own buffer.
class Decimal {
public:
    explicit Decimal(int value)
        : m_pEnd(std::to_chars(m_text, m_text + sizeof m_text, value).ptr) {}
    std::string_view text() const {
        return std::string_view(m_text, static_cast<std::size_t>(m_pEnd - m_text));
    }

private:
    char m_text[12];
    char* m_pEnd;
};

void append(QBLList<char*>& list, const char* entry) {
    std::unique_ptr<char[]> copy(qblCopyString(entry));
    list.push_back(copy.get());
    copy.release();
}

}  // namespace

QBLThrowable::QBLThrowable()
    : xmlText(nullptr),
      numericCode(1),
      errorCode(0),
      errorCodeText(nullptr),
      severity(QBLSeverityFatal),
      messageText(nullptr) {}

// The other constructors delegate to the default constructor. If an allocation fails halfway, the
// destructor therefore frees the memory that was already allocated.
QBLThrowable::QBLThrowable(QBLSeverity theSeverity, int code, const char* text) : QBLThrowable() {
    errorCode = code;
    severity = theSeverity;
    messageText = qblCopyString(text);
}

QBLThrowable::QBLThrowable(QBLSeverity theSeverity, const char* codeText, const char* text)
    : QBLThrowable() {
    numericCode = 0;
    severity = theSeverity;
    errorCodeText = qblCopyString(codeText);
    messageText = qblCopyString(text);
}

QBLThrowable::QBLThrowable(int code, const char* text)
    : QBLThrowable(QBLSeverityFatal, code, text) {}

QBLThrowable::QBLThrowable(long code, const char* text)
    : QBLThrowable(QBLSeverityFatal, static_cast<int>(code), text) {}

QBLThrowable::QBLThrowable(QBLSeverity theSeverity, long code, const char* text)
    : QBLThrowable(theSeverity, static_cast<int>(code), text) {}

QBLThrowable::QBLThrowable(const char* codeText, const char* text)
    : QBLThrowable(QBLSeverityFatal, codeText, text) {}

QBLThrowable::QBLThrowable(const QBLThrowable& other) : QBLThrowable() { copyFrom(other); }

QBLThrowable::QBLThrowable(QBLThrowable&& other) noexcept
    : xmlText(std::exchange(other.xmlText, nullptr)),
      numericCode(other.numericCode),
      errorCode(other.errorCode),
      errorCodeText(std::exchange(other.errorCodeText, nullptr)),
      severity(other.severity),
      messageText(std::exchange(other.messageText, nullptr)) {
    transferBackTrace(other);
}

QBLThrowable& QBLThrowable::operator=(const QBLThrowable& other) {
    if (this != &other) {
        clear();
        copyFrom(other);
    }
    return *this;
}

QBLThrowable::~QBLThrowable() { clear(); }

void QBLThrowable::copyFrom(const QBLThrowable& other) {
    numericCode = other.numericCode;
    errorCode = other.errorCode;
    severity = other.severity;
    errorCodeText = qblCopyString(other.errorCodeText);
    messageText = qblCopyString(other.messageText);
    xmlText = qblCopyString(other.xmlText);
    copyBackTrace(other.backTrace);
}

const char* QBLThrowable::getMessage() { return messageText; }

const char* QBLThrowable::toString() {
    std::string xml;
    const auto appendMessages = [this, &xml] {
        if (messageText == nullptr) return;
        xml.append("<Messages><MessageText>").append(messageText);
        xml.append("</MessageText></Messages>");
    };
    const char* const code = getErrorCodeString();
    try {
        qblAppendThrowable(xml, getThrowableName(), code, getSeverityName(severity), appendMessages,
                           backTrace, "\"/>");
    } catch (const std::length_error&) {
        throw std::bad_alloc();  // as for every text that does not fit into memory
    }
    char* text = qblCopyString(std::string_view(xml));
    delete[] xmlText;
    xmlText = text;
    return xmlText;
}

const char* QBLThrowable::getErrorCodeString() {
    if (errorCodeText != nullptr || numericCode == 0) return errorCodeText;
    if (errorCode == 0) return "0";
    errorCodeText = qblCopyString(Decimal(errorCode).text());
    return errorCodeText;
}

const char* QBLThrowable::getSeverityName(QBLSeverity value) {
    const auto index = static_cast<unsigned int>(value);
    return index < 4 ? kSeverityNames[index] : "Unknown";
}

void QBLThrowable::addBackTrace(const QBLFileLocation& where, const char* detail,
                                const char* tag) noexcept {
    const char* name = getThrowableName();
    if (name == nullptr) name = kNoName;
    const char* file = where.getFile() != nullptr ? where.getFile() : kNoFile;
    const Decimal line(where.getLine());
    const bool tagged = tag != nullptr && *tag != '\0';
    const std::string_view parts[] = {file,
                                      "(",
                                      line.text(),
                                      "): ",
                                      name,
                                      ": ",
                                      tagged ? tag : "",
                                      tagged ? ": " : "",
                                      detail != nullptr ? detail : ""};
    // Several parts may be the same text, so their total size may exceed the address space.
    std::size_t size = 1;
    for (std::string_view part : parts)
        if (__builtin_add_overflow(size, part.size(), &size)) return;
    std::unique_ptr<char[]> entry(new (std::nothrow) char[size]);
    if (entry == nullptr) return;
    char* out = entry.get();
    for (std::string_view part : parts) out += part.copy(out, part.size());
    *out = '\0';
    try {
        backTrace.push_front(entry.get());
        entry.release();
    } catch (...) {
        // Leaves out the entry, because the error itself matters more than its trace.
    }
}

void QBLThrowable::copyBackTrace(const QBLList<char*>& entries) {
    // The list may be this throwable's own list, which grows during the loop.
    unsigned int left = entries.size();
    for (auto it = entries.begin(); left != 0; ++it, --left) append(backTrace, *it);
}

void QBLThrowable::transferBackTrace(QBLThrowable& other) {
    if (this == &other) return;
    while (!other.backTrace.empty())
        backTrace.splice(backTrace.end(), other.backTrace, other.backTrace.begin());
}

void QBLThrowable::clear() {
    for (char* entry : backTrace) delete[] entry;
    backTrace.clear();
    delete[] messageText;
    delete[] errorCodeText;
    delete[] xmlText;
    messageText = errorCodeText = xmlText = nullptr;
}
