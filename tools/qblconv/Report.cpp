#include "tools/qblconv/Report.hpp"

#include <iterator>
#include <utility>

#include "QBLCore/Threads/QBLThreadGuard.hpp"
#include "tools/common/Print.hpp"

namespace conv {

namespace {

constexpr std::size_t kMostText = 0x10000;  // bytes kept for a file whose turn has not come
constexpr std::size_t kMostEnded = 0x1000;
constexpr std::size_t kMostEndedBytes = 0x800000;

// Programs read these words, so they never change.
const char* const kKinds[] = {"malformed", "truncated",      "lacking",
                              "best-fit",  "transliterated", "different"};
const char* const kOutcomes[] = {"skipped", "converted", "unchanged", "valid", "failed"};

const char* const kSeverities[] = {"fatal", "error", "warning", "information"};

std::string orDash(const std::string& text) { return text.empty() ? "-" : text; }

QBLTypedMessage messageOf(const std::string& file, const Finding& finding) {
    using Kind = Finding::Kind;
    const std::string line = std::to_string(finding.line), column = std::to_string(finding.column);
    const std::string offset = std::to_string(finding.offset), bytes = orDash(finding.bytes);
    const std::string replacement = orDash(finding.replacement);
    switch (finding.kind) {
        case Kind::kMalformed:
            return qblconvmsgs::convBadBytes(file, line, column, offset, bytes, finding.encoding);
        case Kind::kTruncated:
            return qblconvmsgs::convCutOff(file, line, column, offset, bytes, finding.encoding);
        case Kind::kLacking:
            return qblconvmsgs::convNoCharacter(file, line, column, finding.codePoint,
                                                finding.encoding);
        case Kind::kBestFit:
            return qblconvmsgs::convBestFit(file, line, column, finding.codePoint,
                                            finding.encoding);
        case Kind::kTransliterated:
            return qblconvmsgs::convTransliterated(file, line, column, finding.codePoint,
                                                   replacement);
        default:
            return qblconvmsgs::convNotReversible(file, line, column, offset, bytes, replacement);
    }
}

}  // namespace

void Tally::add(const Tally& other) {
    for (std::size_t i = 0; i < std::size(outcomes); ++i) outcomes[i] += other.outcomes[i];
    replaced += other.replaced;
    notUTF8 += other.notUTF8;
}

Report::Report(std::FILE* out, Form form, Progress& progress)
    : m_pOut(out), m_form(form), m_progress(progress) {
    if (form == Form::kXml) write("<Messages>\n");
}

bool Report::close() {
    if (m_form == Form::kXml) write("</Messages>\n");
    return tools::flush(m_pOut);
}

void Report::write(const std::string& text) {
    if (text.empty()) return;
    m_progress.clear();
    if (m_form == Form::kText) return tools::printText(m_pOut, text);
    tools::print(m_pOut, text);
}

void Report::print(std::uint64_t number, const std::string& text) {
    QBLThreadGuard guard(m_lock);
    while (m_uNext != number) {
        ++m_iWaiting;
        m_turn.wait(m_lock);
        --m_iWaiting;
    }
    write(text);
}

void Report::end(std::uint64_t number, std::string text, const Tally& tally) {
    QBLThreadGuard guard(m_lock);
    m_tally.add(tally);
    // The thread with the next number never waits here.
    while (number - m_uNext >= kMostEnded ||
           (number != m_uNext && m_iEndedBytes + text.size() > kMostEndedBytes)) {
        ++m_iWaiting;
        m_turn.wait(m_lock);
        --m_iWaiting;
    }
    if (number != m_uNext) {
        m_iEndedBytes += text.size();
        m_ended.emplace(number, std::move(text));
        return;
    }
    write(text);
    ++m_uNext;
    for (auto first = m_ended.begin(); first != m_ended.end() && first->first == m_uNext;
         first = m_ended.erase(first), ++m_uNext) {
        m_iEndedBytes -= first->second.size();
        write(first->second);
    }
    if (m_iWaiting > 0) m_turn.broadcast();
}

FileReport::~FileReport() {
    Tally tally;
    tally.replaced = m_iReplaced;
    tally.notUTF8 = m_bNotUTF8 ? 1 : 0;
    // A report about no file counts only if it failed.
    if (hasFailed() || !m_name.empty()) tally.outcomes[static_cast<int>(m_outcome)] = 1;
    const bool isObject = !m_name.empty() || !m_messages.isEmpty();
    if (m_report.form() == Report::Form::kJson && isObject) addLine(asObject());
    m_report.end(m_uNumber, std::move(m_text), tally);
}

void FileReport::error(const QBLTypedMessage& message) {
    countAsFailed();
    add(QBLSeverityError, message);
}

void FileReport::warning(const QBLTypedMessage& message) { add(QBLSeverityWarning, message); }

void FileReport::information(const QBLTypedMessage& message) {
    add(QBLSeverityInformation, message);
}

void FileReport::setOutcome(Outcome outcome) {
    if (!hasFailed()) m_outcome = outcome;
}

void FileReport::setEncodings(const std::string& from, const std::string& to) {
    m_from = from;
    m_to = to;
}

void FileReport::add(QBLSeverity severity, const QBLTypedMessage& message) {
    switch (m_report.form()) {
        case Report::Form::kXml:
            return addLine(m_texts.element(severity, message));
        case Report::Form::kText:
            return addLine(m_texts.text(message));
        case Report::Form::kJson:
            m_messages.add(tools::JsonObject()
                               .add("severity", kSeverities[severity])
                               .add("id", static_cast<std::int64_t>(message.getMessageID()))
                               .add("text", m_texts.text(message))
                               .text());
    }
}

void FileReport::finding(QBLSeverity severity, const std::string& file, const Finding& finding) {
    if (severity == QBLSeverityError) countAsFailed();
    if (finding.kind <= Finding::Kind::kTruncated && finding.encoding == "UTF-8") m_bNotUTF8 = true;
    const bool isReplaced = finding.kind >= Finding::Kind::kTransliterated;
    const char* const kind = kKinds[static_cast<int>(finding.kind)];
    QBLTypedMessage message = messageOf(file, finding);
    // These parameters are for programs that read the XML form. No text shows them.
    if (isReplaced) message.addParameter(finding.encoding);
    message.addParameter(kind);
    message.addParameter(finding.policy);
    if (m_report.form() != Report::Form::kJson) return add(severity, message);
    addLine(tools::JsonObject()
                .add("type", "finding")
                .add("file", file)
                .add("line", finding.line)
                .add("column", finding.column)
                .addOrNull("offset", finding.offset)
                .addOrNull("bytes", finding.bytes)
                .addOrNull("codePoint",
                           finding.codePoint.empty() ? std::string() : "U+" + finding.codePoint)
                .add("kind", kind)
                .add("policy", finding.policy)
                .add("encoding", finding.encoding)
                .addValue("replacement", isReplaced ? tools::jsonText(finding.replacement) : "null")
                .add("severity", kSeverities[severity])
                .add("text", m_texts.text(message))
                .text());
}

std::string FileReport::asObject() {
    return tools::JsonObject()
        .add("type", "file")
        .add("file", m_name)
        .add("status", kOutcomes[static_cast<int>(m_outcome)])
        .addOrNull("from", m_from)
        .addOrNull("to", m_to)
        .add("replaced", m_iReplaced)
        .addValue("messages", m_messages.text())
        .text();
}

void FileReport::addLine(const std::string& line) {
    if (m_text.size() > kMostText) {
        m_report.print(m_uNumber, m_text);
        m_text.clear();
    }
    m_text += line;
    m_text += '\n';
}

}  // namespace conv
