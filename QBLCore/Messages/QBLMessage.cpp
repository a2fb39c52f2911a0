#include "QBLCore/Messages/QBLMessage.hpp"

#include <cstring>
#include <list>
#include <memory>

#include "QBLCore/Exceptions/QBLAllocation.hpp"
#include "QBLCore/Messages/internal/QBLMessagePattern.hpp"
#include "QBLCore/Messages/internal/QBLNumberText.hpp"
#include "QBLCore/Resources/QBLResourceFile.hpp"

namespace {

const char kDefaultLocale[] = "en";

bool isNullOrEmpty(const char* text) { return text == nullptr || *text == '\0'; }

/// Returns the text that a file has for an identifier; null if there is none or it is empty.
const char* resourceText(QBLResourceFile& file, unsigned long id) {
    char* text = nullptr;
    return file.getResource(id, &text) && !isNullOrEmpty(text) ? text : nullptr;
}

/// @param kept  receives the text that the argument points to, if nothing else owns it
QBLMessageArgument argumentOf(const QBLMessageParm& parm, QBLResourceFile& file,
                              std::list<I18NString>& kept) {
    QBLMessageArgument argument = {QBLMessageArgument::kText, 0, 0, {}};
    unsigned long unsignedValue = 0;
    long value = 0;
    switch (parm.getType()) {
        case QBLMsgParmULong:
            parm.getValue(unsignedValue);
            argument.kind = QBLMessageArgument::kInteger;
            argument.integer = static_cast<int>(unsignedValue);
            break;
        case QBLMsgParmLong:
            parm.getValue(value);
            argument.kind = QBLMessageArgument::kInteger;
            argument.integer = static_cast<int>(value);
            break;
        case QBLMsgParmDouble:
            argument.kind = QBLMessageArgument::kDouble;
            parm.getValue(argument.number);
            break;
        case QBLMsgParmDate:
            parm.getValue(value);
            argument.kind = QBLMessageArgument::kDate;
            argument.number = static_cast<double>(value);
            break;
        case QBLMsgParmString:
            if (parm.getText() != nullptr) argument.text = parm.getText()->c_str();
            break;
        case QBLMsgParmMsgId: {
            parm.getValue(unsignedValue);
            const char* text = resourceText(file, unsignedValue);
            kept.emplace_back();
            if (text != nullptr)
                kept.back() = text;
            else
                parm.format(nullptr, kept.back());
            argument.text = kept.back().c_str();
            break;
        }
        default:
            break;
    }
    return argument;
}

}  // namespace

QBLMessage::QBLMessage() = default;

QBLMessage::QBLMessage(const I18NString& file) : m_msgFile(file) {}

QBLMessage::QBLMessage(const char* file) : m_msgFile(file) {}

QBLMessage::QBLMessage(const I18NString& file, unsigned long id)
    : QBLMessageComponents(id), m_msgFile(file) {}

QBLMessage::QBLMessage(const char* file, unsigned long id)
    : QBLMessageComponents(id), m_msgFile(file) {}

QBLMessage::QBLMessage(QBLSeverity severity, const I18NString& file, unsigned long id)
    : QBLMessageComponents(severity, id), m_msgFile(file) {}

QBLMessage::QBLMessage(QBLSeverity severity, const char* file, unsigned long id)
    : QBLMessageComponents(severity, id), m_msgFile(file) {}

QBLMessage::QBLMessage(const QBLMessage& other) = default;

QBLMessage& QBLMessage::operator=(const QBLMessage& other) = default;

QBLMessage::~QBLMessage() = default;

QBLMessageBase* QBLMessage::clone() const {
    QBL_ALLOC_TRY
    return new QBLMessage(*this);
    QBL_ALLOC_CATCH
}

const char* QBLMessage::getClassName() const { return "QBLMessage"; }

void QBLMessage::format(const char* language, const char* fallbackLanguage, I18NString& out) const {
    const char* locale = chooseLocale(language, fallbackLanguage);
    // Not preloaded: this call needs only one text and the texts that it refers to.
    QBLResourceFile file(0);
    std::unique_ptr<QBLMessagePattern> pattern;
    const bool formatted =
        file.open(m_msgFile.toUtf8(), locale) && formatFrom(file, locale, pattern, out);
    if (!formatted) writeElement(&m_msgFile, language, fallbackLanguage, out, 0);
}

void QBLMessage::toString(const char* language, const char* fallbackLanguage, I18NString& out,
                          int flag) const {
    writeElement(&m_msgFile, language, fallbackLanguage, out, flag);
}

const char* QBLMessage::chooseLocale(const char* language, const char* fallbackLanguage) {
    if (!isNullOrEmpty(language)) return language;
    return isNullOrEmpty(fallbackLanguage) ? kDefaultLocale : fallbackLanguage;
}

bool QBLMessage::formatFrom(QBLResourceFile& file, const char* locale,
                            std::unique_ptr<QBLMessagePattern>& pattern, I18NString& out) const {
    QBL_ALLOC_TRY
    const char* text = resourceText(file, getMessageID());
    if (text == nullptr) return false;
    const int count = getParmCount() < QBLMessagePattern::kMaxArguments
                          ? static_cast<int>(getParmCount())
                          : QBLMessagePattern::kMaxArguments;
    if (count == 0 && std::strstr(text, "{0") == nullptr) {
        out.append(text);
        return true;
    }
    // From here on, the pattern has a copy of the text; the next lookup may overwrite the text.
    if (pattern == nullptr || !pattern->isFor(text))
        pattern = std::make_unique<QBLMessagePattern>(text, locale);
    QBLMessageArgument arguments[QBLMessagePattern::kMaxArguments];
    std::list<I18NString> kept;  // texts that arguments point to
    for (int i = 0; i < count; ++i)
        arguments[i] = argumentOf(*getParmN(static_cast<unsigned>(i)), file, kept);
    const char* filled = pattern->format(arguments, count);
    if (filled == nullptr) return false;
    out.append(filled);
    return true;
    QBL_ALLOC_CATCH
}
