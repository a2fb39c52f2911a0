#include "QBLCore/Messages/QBLMessage.hpp"

#include <cstring>
#include <list>
#include <memory>
#include <optional>
#include <string>

#include "QBLCore/Exceptions/QBLAllocation.hpp"
#include "QBLCore/Messages/internal/QBLMessagePattern.hpp"
#include "QBLCore/Messages/internal/QBLNumberText.hpp"
#include "QBLCore/Messages/internal/QBLPatternLoan.hpp"
#include "QBLCore/Resources/QBLCatalogueSettings.hpp"
#include "QBLCore/Resources/QBLResourceFile.hpp"
#include "QBLCore/Resources/shared/QBLCatalogue.hpp"
#include "QBLCore/Resources/shared/QBLCatalogueCache.hpp"

namespace {

bool isNullOrEmpty(const char* text) { return text == nullptr || *text == '\0'; }

/// The texts of an open file, or of a catalogue that the process keeps.
class Texts {
public:
    explicit Texts(QBLResourceFile& file) : m_pFile(&file), m_pCatalogue(nullptr) {}
    explicit Texts(const QBLCatalogue& catalogue) : m_pFile(nullptr), m_pCatalogue(&catalogue) {}

    /// Returns the text for an identifier, valid until the next call; null if there is no text or
    /// the text is empty.
    const char* get(unsigned long id) const {
        if (m_pCatalogue != nullptr) return nullIfEmpty(m_pCatalogue->getText(id));
        char* text = nullptr;
        return m_pFile->getResource(id, &text) ? nullIfEmpty(text) : nullptr;
    }

private:
    static const char* nullIfEmpty(const char* text) {
        return isNullOrEmpty(text) ? nullptr : text;
    }

    QBLResourceFile* m_pFile;
    const QBLCatalogue* m_pCatalogue;
};

/// @param kept  receives the text that the argument points to, if nothing else owns it
QBLMessageArgument argumentOf(const QBLMessageParm& parm, const Texts& texts,
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
            const char* text = texts.get(unsignedValue);
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

/// Appends the text of a message with its parameters.
/// @param patternOf  returns the pattern for a text
/// @return false, without appending anything, if there is no text or the text cannot be formatted
template <class PatternOf>
bool fillIn(const QBLMessageComponents& message, const Texts& texts, const PatternOf& patternOf,
            I18NString& out) {
    QBL_ALLOC_TRY
    const char* text = texts.get(message.getMessageID());
    if (text == nullptr) return false;
    const int count = message.getParmCount() < QBLMessagePattern::kMaxArguments
                          ? static_cast<int>(message.getParmCount())
                          : QBLMessagePattern::kMaxArguments;
    if (count == 0 && std::strstr(text, "{0") == nullptr) {
        out.append(text);
        return true;
    }
    // From here on, the pattern has a copy of the text; the next lookup may overwrite the text.
    QBLMessagePattern& pattern = patternOf(text);
    QBLMessageArgument arguments[QBLMessagePattern::kMaxArguments];
    std::list<I18NString> kept;  // texts that arguments point to
    for (int i = 0; i < count; ++i)
        arguments[i] = argumentOf(*message.getParmN(static_cast<unsigned>(i)), texts, kept);
    const char* filled = pattern.format(arguments, count);
    if (filled == nullptr) return false;
    out.append(filled);
    return true;
    QBL_ALLOC_CATCH
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
    formatIf(0, language, fallbackLanguage, out);
}

void QBLMessage::formatIf(unsigned shape, const char* language, const char* fallbackLanguage,
                          I18NString& out) const {
    const char* locale = chooseLocale(language, fallbackLanguage);
    const std::string base = m_msgFile.toUtf8();
    std::optional<QBLPatternLoan> loan;
    const auto patternOf = [&](const char* text) -> QBLMessagePattern& {
        return loan.emplace(text, locale).get();
    };
    bool formatted = false;
    if (const auto catalogue = QBLCatalogueCache::get(base, locale)) {
        formatted = (shape == 0 || catalogue->getShape() == shape) &&
                    fillIn(*this, Texts(*catalogue), patternOf, out);
    } else {
        // Not preloaded: this call needs only one text and the texts that this text refers to.
        QBLResourceFile file(0);
        formatted = file.open(base, locale) && (shape == 0 || file.getShape() == shape) &&
                    fillIn(*this, Texts(file), patternOf, out);
    }
    if (!formatted) writeElement(&m_msgFile, language, fallbackLanguage, out, 0);
}

void QBLMessage::toString(const char* language, const char* fallbackLanguage, I18NString& out,
                          int flag) const {
    writeElement(&m_msgFile, language, fallbackLanguage, out, flag);
}

const char* QBLMessage::chooseLocale(const char* language, const char* fallbackLanguage) {
    if (!isNullOrEmpty(language)) return language;
    return isNullOrEmpty(fallbackLanguage) ? QBLCatalogueSettings::getDefaultLocales()
                                           : fallbackLanguage;
}

bool QBLMessage::formatFrom(QBLResourceFile& file, const char* locale,
                            std::unique_ptr<QBLMessagePattern>& pattern, I18NString& out) const {
    const auto patternOf = [&](const char* text) -> QBLMessagePattern& {
        if (pattern == nullptr || !pattern->isFor(text))
            pattern = std::make_unique<QBLMessagePattern>(text, locale);
        return *pattern;
    };
    return fillIn(*this, Texts(file), patternOf, out);
}
