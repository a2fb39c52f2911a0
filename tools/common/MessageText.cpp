#include "tools/common/MessageText.hpp"

#include <utility>

#include "QBLCore/Messages/QBLXmlEscape.hpp"
#include "i18n/cpp/i18n_string.hpp"

namespace tools {

MessageText::MessageText(const std::string& catalogue, std::string locales)
    : m_message(catalogue.c_str()), m_locales(std::move(locales)) {}

void MessageText::fill(QBLSeverity severity, unsigned id, const Details& details, bool escaped) {
    m_message.setMessage(severity, id);
    m_message.clearParms();
    for (const std::string& detail : details)
        m_message << I18NString(
            (escaped ? qblXmlEscape(std::string_view(detail)) : detail).c_str());
}

std::string MessageText::text(unsigned id, const Details& details) {
    fill(QBLSeverityError, id, details, false);
    I18NString text;
    m_message.format(m_locales.c_str(), nullptr, text);
    return text.toUtf8();
}

std::string MessageText::element(QBLSeverity severity, unsigned id, const Details& details) {
    fill(severity, id, details, true);
    I18NString element;
    m_message.toString(m_locales.c_str(), nullptr, element, 1);
    return element.toUtf8();
}

}  // namespace tools
