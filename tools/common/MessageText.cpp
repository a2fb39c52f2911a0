#include "tools/common/MessageText.hpp"

#include <utility>

#include "QBLCore/Messages/QBLMessageString.hpp"
#include "QBLCore/Messages/QBLXmlEscape.hpp"
#include "i18n/cpp/i18n_string.hpp"

namespace tools {

MessageText::MessageText(const std::string& catalogue, std::string locales)
    : m_message(catalogue.c_str()), m_locales(std::move(locales)) {}

std::string MessageText::text(unsigned id, const Details& details) {
    m_message.setMessage(QBLSeverityError, id);
    m_message.clearParms();
    for (const std::string& detail : details) m_message << I18NString(detail.c_str());
    I18NString text;
    m_message.format(m_locales.c_str(), nullptr, text);
    return text.toUtf8();
}

// The element of the message itself would have the catalogue's path, with whatever is in that.
std::string MessageText::element(QBLSeverity severity, unsigned id, const Details& details) {
    const std::string escaped = qblXmlEscape(std::string_view(text(id, details)));
    I18NString element;
    QBLMessageString(severity, escaped.c_str()).toString(nullptr, nullptr, element, 1);
    return element.toUtf8();
}

}  // namespace tools
