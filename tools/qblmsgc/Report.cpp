#include "tools/qblmsgc/Report.hpp"

#include <algorithm>
#include <tuple>
#include <utility>

#include "tools/common/Print.hpp"
#include "tools/common/Shown.hpp"
#include "tools/qblmsgc/Environment.hpp"

namespace msgc {

std::string formatMessage(qblmsgcmsgs id, const Details& details) {
    return tools::MessageText(ownCatalogue(), userLocale()).text(id, tools::shown(details));
}

void Report::begin(const Source& source) { numberOf(source); }

std::size_t Report::numberOf(const Source& source) {
    auto file = std::find(m_files.begin(), m_files.end(), source.name());
    if (file == m_files.end()) file = m_files.insert(file, source.name());
    return static_cast<std::size_t>(file - m_files.begin()) + 1;
}

void Report::error(const Source& source, std::size_t offset, qblmsgcmsgs id, Details details) {
    m_bHasErrors = true;
    add(QBLSeverityError, source, offset, id, std::move(details));
}

void Report::warning(const Source& source, std::size_t offset, qblmsgcmsgs id, Details details) {
    m_bHasWarnings = true;
    add(QBLSeverityWarning, source, offset, id, std::move(details));
}

void Report::fault(qblmsgcmsgs id, Details details) {
    m_bHasErrors = true;
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
    tools::MessageText texts(ownCatalogue(), userLocale());
    bool any = false;
    for (const Finding& finding : m_findings) {
        if (quiet && finding.severity != QBLSeverityError) continue;
        if (form == Form::kText) {
            tools::printText(out, texts.text(finding.id, tools::shown(finding.details)) + "\n");
            continue;
        }
        if (!any) tools::print(out, "<Messages>\n");
        any = true;
        tools::print(
            out, texts.element(finding.severity, finding.id, tools::shown(finding.details)) + "\n");
    }
    if (any) tools::print(out, "</Messages>\n");
}

}  // namespace msgc
