#include "tools/common/MessageText.hpp"

#include <unicode/fmtable.h>
#include <unicode/locid.h>
#include <unicode/msgfmt.h>

#include <algorithm>
#include <cstring>
#include <utility>

#include "QBLCore/Messages/QBLMessage.hpp"
#include "QBLCore/Messages/QBLXmlEscape.hpp"
#include "i18n/cpp/i18n_string.hpp"
#include "tools/common/BuiltInTexts.hpp"

namespace tools {

namespace {

const char kElement[] = "<Message ";  // start of the output for a message without a text
constexpr std::size_t kMostDetails = 10;

/// Fills in a built-in text like QBLMessage fills in the texts of catalogues.
std::string filledIn(const char* text, const Details& details) {
    if (details.empty() && std::strstr(text, "{0") == nullptr) return text;
    UErrorCode status = U_ZERO_ERROR;
    const icu::MessageFormat pattern(icu::UnicodeString::fromUTF8(text), icu::Locale::getEnglish(),
                                     status);
    icu::Formattable values[kMostDetails];
    const std::size_t count = std::min(details.size(), kMostDetails);
    for (std::size_t i = 0; i < count; ++i)
        values[i] = icu::Formattable(icu::UnicodeString::fromUTF8(details[i]));
    icu::UnicodeString filled;
    icu::FieldPosition position(icu::FieldPosition::DONT_CARE);
    if (U_SUCCESS(status))
        pattern.format(values, static_cast<int32_t>(count), filled, position, status);
    std::string utf8;
    return U_SUCCESS(status) ? filled.toUTF8String(utf8) : text;
}

}  // namespace

MessageText::MessageText(const std::string& catalogue, std::string locales)
    : m_message(catalogue.c_str()),
      m_catalogue(catalogue, catalogue.rfind('/') + 1),
      m_locales(std::move(locales)) {}

std::string MessageText::text(unsigned id, const Details& details) {
    m_message.setMessage(QBLSeverityError, id);
    m_message.clearParms();
    for (const std::string& detail : details) m_message << I18NString(detail.c_str());
    I18NString text;
    m_message.format(m_locales.c_str(), nullptr, text);
    std::string utf8 = text.toUtf8();
    if (utf8.compare(0, sizeof kElement - 1, kElement) != 0) return utf8;
    I18NString element;
    m_message.toString(m_locales.c_str(), nullptr, element, 0);
    const char* const builtIn = text == element ? builtInText(id) : nullptr;
    return builtIn != nullptr ? filledIn(builtIn, details) : utf8;
}

// Writes only the catalogue's name: other programs find the catalogue by their own search path.
std::string MessageText::element(QBLSeverity severity, unsigned id, const Details& details) {
    QBLMessage message(severity, m_catalogue.c_str(), id);
    // The library does not escape parameters for XML.
    for (const std::string& detail : details)
        message << I18NString(qblXmlEscape(std::string_view(detail)).c_str());
    I18NString components;
    message.toString(nullptr, nullptr, components, 0);
    std::string element = components.toUtf8();
    const std::string escaped = qblXmlEscape(std::string_view(text(id, details)));
    return element.insert(element.find("<MessageComponents"),
                          "<MessageText>" + escaped + "</MessageText>");
}

}  // namespace tools
