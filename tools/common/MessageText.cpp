#include "tools/common/MessageText.hpp"

#include <unicode/fmtable.h>
#include <unicode/locid.h>
#include <unicode/msgfmt.h>

#include <algorithm>
#include <cstring>
#include <utility>

#include "QBLCore/Messages/QBLXmlEscape.hpp"
#include "i18n/cpp/i18n_string.hpp"
#include "tools/common/BuiltInTexts.hpp"

namespace tools {

namespace {

const char kElement[] = "<Message ";  // start of the output for a message without a text
constexpr unsigned kMostParameters = 10;

std::string utf8Of(const QBLMessageParm& parameter) {
    I18NString text;
    parameter.getValue(text);
    return text.toUtf8();
}

/// Returns a message with all its text arguments changed by a function.
template <class Change>
QBLTypedMessage withTexts(const QBLTypedMessage& message, const Change& change) {
    QBLTypedMessage changed = message;
    changed.clearParms();
    for (unsigned i = 0; i < message.getParmCount(); ++i) {
        const QBLMessageParm& parameter = *message.getParmN(i);
        if (parameter.getType() == QBLMsgParmString)
            changed.addParameter(change(utf8Of(parameter)));
        else
            changed.addParameter(parameter);
    }
    return changed;
}

/// Fills in a built-in text like QBLMessage fills in the texts of catalogues.
std::string filledIn(const char* text, const QBLMessageComponents& message) {
    if (message.getParmCount() == 0 && std::strstr(text, "{0") == nullptr) return text;
    UErrorCode status = U_ZERO_ERROR;
    const icu::MessageFormat pattern(icu::UnicodeString::fromUTF8(text), icu::Locale::getEnglish(),
                                     status);
    icu::Formattable values[kMostParameters];
    const unsigned count = std::min(message.getParmCount(), kMostParameters);
    for (unsigned i = 0; i < count; ++i) {
        const QBLMessageParm& parameter = *message.getParmN(i);
        long integer = 0;
        double number = 0;
        if (parameter.getValue(integer))
            values[i] = icu::Formattable(static_cast<int32_t>(integer));
        else if (parameter.getValue(number))
            values[i] = icu::Formattable(number);
        else
            values[i] = icu::Formattable(icu::UnicodeString::fromUTF8(utf8Of(parameter)));
    }
    icu::UnicodeString filled;
    icu::FieldPosition position(icu::FieldPosition::DONT_CARE);
    if (U_SUCCESS(status))
        pattern.format(values, static_cast<int32_t>(count), filled, position, status);
    std::string utf8;
    return U_SUCCESS(status) ? filled.toUTF8String(utf8) : text;
}

}  // namespace

MessageText::MessageText(Catalogue catalogue, std::string locales)
    : m_catalogue(std::move(catalogue)),
      m_locales(std::move(locales)),
      m_message(m_catalogue.base.c_str()) {}

std::string MessageText::text(const QBLTypedMessage& message) { return textOf(message); }

std::string MessageText::text(unsigned id) { return textOf(QBLMessageComponents(id)); }

std::string MessageText::textOf(const QBLMessageComponents& message) {
    if (!m_bIsOfShape)
        m_bIsOfShape = QBLTypedCatalogue{m_catalogue.base.c_str(), m_catalogue.shape}.matches(
            m_locales.c_str());
    const char* const builtIn = builtInText(static_cast<unsigned>(message.getMessageID()));
    if (!*m_bIsOfShape && builtIn != nullptr) return filledIn(builtIn, message);
    m_message.setMessage(message.getMessageID());
    m_message.copyParms(message);
    I18NString text;
    m_message.format(m_locales.c_str(), nullptr, text);
    std::string utf8 = text.toUtf8();
    if (builtIn == nullptr || utf8.compare(0, sizeof kElement - 1, kElement) != 0) return utf8;
    I18NString element;
    m_message.toString(m_locales.c_str(), nullptr, element, 0);
    return text == element ? filledIn(builtIn, message) : utf8;
}

// Writes only the catalogue's name: other programs find the catalogue by their own search path.
std::string MessageText::element(QBLSeverity severity, const QBLTypedMessage& message) {
    // The library does not escape parameters for XML.
    QBLTypedMessage escaped = withTexts(
        message, [](const std::string& text) { return qblXmlEscape(std::string_view(text)); });
    escaped.setSeverity(severity);
    I18NString components;
    escaped.toString(nullptr, nullptr, components, 0);
    std::string element = components.toUtf8();
    return element.insert(
        element.find("<MessageComponents"),
        "<MessageText>" + qblXmlEscape(std::string_view(text(message))) + "</MessageText>");
}

}  // namespace tools
