#include "tools/qblmsgc/Report.hpp"

#include <algorithm>
#include <tuple>
#include <utility>

#include "QBLCore/Messages/QBLMessageFile.hpp"
#include "QBLCore/Messages/QBLXmlEscape.hpp"
#include "i18n/cpp/i18n_string.hpp"
#include "tools/qblmsgc/Environment.hpp"

namespace msgc {

namespace {

/// A message of the tool. @param escaped  for XML
void fill(QBLMessageFile& message, QBLSeverity severity, qblmsgcmsgs id, const Details& details,
          bool escaped) {
    message.setMessage(severity, id);
    message.clearParms();
    for (const std::string& detail : details)
        message << I18NString((escaped ? qblXmlEscape(std::string_view(detail)) : detail).c_str());
}

std::string formatted(const QBLMessageFile& message) {
    I18NString text;
    message.format(userLocale().c_str(), nullptr, text);
    return text.toUtf8();
}

}  // namespace

std::string textOf(qblmsgcmsgs id, const Details& details) {
    QBLMessageFile message(ownCatalogue().c_str());
    fill(message, QBLSeverityError, id, details, false);
    return formatted(message);
}

void Report::begin(const Source& source) { numberOf(source); }

std::size_t Report::numberOf(const Source& source) {
    auto file = std::find(m_files.begin(), m_files.end(), source.name());
    if (file == m_files.end()) file = m_files.insert(file, source.name());
    return static_cast<std::size_t>(file - m_files.begin()) + 1;
}

void Report::error(const Source& source, std::size_t offset, qblmsgcmsgs id, Details details) {
    m_hasErrors = true;
    add(QBLSeverityError, source, offset, id, std::move(details));
}

void Report::warning(const Source& source, std::size_t offset, qblmsgcmsgs id, Details details) {
    m_hasWarnings = true;
    add(QBLSeverityWarning, source, offset, id, std::move(details));
}

void Report::fault(qblmsgcmsgs id, Details details) {
    m_hasErrors = true;
    m_findings.push_back({QBLSeverityError, 0, 0, id, std::move(details)});
}

void Report::add(QBLSeverity severity, const Source& source, std::size_t offset, qblmsgcmsgs id,
                 Details details) {
    const Place place = source.placeOf(offset);
    details.insert(details.begin(),
                   {source.name(), std::to_string(place.line), std::to_string(place.column)});
    m_findings.push_back({severity, numberOf(source), offset, id, std::move(details)});
}

void Report::print(std::FILE* out, Form form, bool quiet) {
    std::stable_sort(m_findings.begin(), m_findings.end(), [](const Finding& a, const Finding& b) {
        return std::tie(a.file, a.offset) < std::tie(b.file, b.offset);
    });
    QBLMessageFile message(ownCatalogue().c_str());
    bool any = false;
    for (const Finding& finding : m_findings) {
        if (quiet && finding.severity != QBLSeverityError) continue;
        fill(message, finding.severity, finding.id, finding.details, form == Form::kXml);
        if (form == Form::kText) {
            std::fprintf(out, "%s\n", formatted(message).c_str());
            continue;
        }
        if (!any) std::fputs("<Messages>\n", out);
        any = true;
        I18NString element;
        message.toString(userLocale().c_str(), nullptr, element, 1);
        std::fprintf(out, "%s\n", element.c_str());
    }
    if (any) std::fputs("</Messages>\n", out);
}

}  // namespace msgc
