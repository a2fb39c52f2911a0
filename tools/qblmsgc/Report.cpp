#include "tools/qblmsgc/Report.hpp"

#include <algorithm>
#include <tuple>

#include "tools/common/Print.hpp"
#include "tools/qblmsgc/Environment.hpp"

namespace msgc {

std::string formatMessage(const QBLTypedMessage& message) {
    return tools::MessageText(ownCatalogue(), userLocale()).text(message);
}

void Report::begin(const Source& source) { numberOf(source); }

std::size_t Report::numberOf(const Source& source) {
    auto file = std::find(m_files.begin(), m_files.end(), source.name());
    if (file == m_files.end()) file = m_files.insert(file, source.name());
    return static_cast<std::size_t>(file - m_files.begin()) + 1;
}

void Report::error(const Source& source, std::size_t offset, const PlacedMessage& message) {
    m_bHasErrors = true;
    add(false, source, offset, message);
}

void Report::warning(const Source& source, std::size_t offset, const PlacedMessage& message) {
    m_bHasWarnings = true;
    add(true, source, offset, message);
}

void Report::fault(const QBLTypedMessage& message) {
    m_bHasErrors = true;
    m_findings.push_back({false, 0, 0, message});
}

void Report::add(bool isWarning, const Source& source, std::size_t offset,
                 const PlacedMessage& message) {
    const Place place = source.placeOf(offset);
    const PlaceText at = {tools::shown(source.name()), std::to_string(place.line),
                          std::to_string(place.column),
                          isWarning && !m_bStrict ? "warning" : "error"};
    m_findings.push_back({isWarning, numberOf(source), offset, message(at)});
}

void Report::print(std::FILE* out, Form form, bool quiet) {
    std::stable_sort(m_findings.begin(), m_findings.end(), [](const Finding& a, const Finding& b) {
        return std::tie(a.file, a.offset) < std::tie(b.file, b.offset);
    });
    tools::MessageText texts(ownCatalogue(), userLocale());
    bool any = false;
    for (const Finding& finding : m_findings) {
        if (quiet && finding.isWarning) continue;
        const QBLSeverity severity =
            finding.isWarning && !m_bStrict ? QBLSeverityWarning : QBLSeverityError;
        if (form == Form::kText) {
            tools::printText(out, texts.text(finding.message) + "\n");
            continue;
        }
        if (!any) tools::print(out, "<Messages>\n");
        any = true;
        tools::print(out, texts.element(severity, finding.message) + "\n");
    }
    if (any) tools::print(out, "</Messages>\n");
}

}  // namespace msgc
