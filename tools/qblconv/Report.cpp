#include "tools/qblconv/Report.hpp"

#include <utility>

#include "QBLCore/Threads/QBLThreadGuard.hpp"
#include "tools/common/LocaleText.hpp"

namespace conv {

namespace {

constexpr std::size_t kMostText = 0x10000;  // of a file whose turn has not come
constexpr std::size_t kMostEnded = 0x1000;
constexpr std::size_t kMostEndedBytes = 0x800000;

}  // namespace

Report::Report(std::FILE* out, Form form, Progress& progress)
    : m_out(out), m_form(form), m_progress(progress) {
    if (form == Form::kXml) write("<Messages>\n");
}

bool Report::close() {
    if (m_form == Form::kXml) write("</Messages>\n");
    return std::fflush(m_out) == 0 && std::ferror(m_out) == 0;
}

void Report::write(const std::string& text) {
    if (text.empty()) return;
    m_progress.clear();
    if (m_form == Form::kText) return tools::printText(m_out, text);
    std::fwrite(text.data(), 1, text.size(), m_out);
}

void Report::print(std::uint64_t number, const std::string& text) {
    QBLThreadGuard guard(m_lock);
    while (m_next != number) {
        ++m_iWaiting;
        m_turn.wait(m_lock);
        --m_iWaiting;
    }
    write(text);
}

void Report::end(std::uint64_t number, std::string text, bool failed) {
    QBLThreadGuard guard(m_lock);
    m_hasFailures = m_hasFailures || failed;
    // Whoever has the next number is not one that waits.
    while (number - m_next >= kMostEnded ||
           (number != m_next && m_iEndedBytes + text.size() > kMostEndedBytes)) {
        ++m_iWaiting;
        m_turn.wait(m_lock);
        --m_iWaiting;
    }
    if (number != m_next) {
        m_iEndedBytes += text.size();
        m_ended.emplace(number, std::move(text));
        return;
    }
    write(text);
    ++m_next;
    for (auto first = m_ended.begin(); first != m_ended.end() && first->first == m_next;
         first = m_ended.erase(first), ++m_next) {
        m_iEndedBytes -= first->second.size();
        write(first->second);
    }
    if (m_iWaiting > 0) m_turn.broadcast();
}

FileReport::~FileReport() { m_report.end(m_number, std::move(m_text), m_hasFailed); }

void FileReport::error(qblconvmsgs id, const Details& details) {
    m_hasFailed = true;
    add(QBLSeverityError, id, details);
}

void FileReport::warning(qblconvmsgs id, const Details& details) {
    add(QBLSeverityWarning, id, details);
}

void FileReport::information(qblconvmsgs id, const Details& details) {
    add(QBLSeverityInformation, id, details);
}

void FileReport::add(QBLSeverity severity, qblconvmsgs id, const Details& details) {
    if (m_text.size() > kMostText) {
        m_report.print(m_number, m_text);
        m_text.clear();
    }
    m_text += m_report.form() == Report::Form::kXml ? m_texts.element(severity, id, details)
                                                    : m_texts.text(id, details);
    m_text += '\n';
}

}  // namespace conv
