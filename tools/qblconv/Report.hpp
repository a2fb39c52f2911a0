#ifndef TOOLS_QBLCONV_REPORT_HPP
#define TOOLS_QBLCONV_REPORT_HPP

#include <cstdint>
#include <cstdio>
#include <map>
#include <string>

#include "QBLCore/Threads/QBLThreadConditionVariable.hpp"
#include "QBLCore/Threads/QBLThreadCriticalSection.hpp"
#include "tools/common/Json.hpp"
#include "tools/common/Shown.hpp"
#include "tools/qblconv/Problem.hpp"
#include "tools/qblconv/Progress.hpp"

namespace conv {

/// Something in a text that could not be converted, or not to itself. Empty strings and negative
/// numbers are what its kind does not have.
struct Finding {
    enum class Kind { kMalformed, kTruncated, kLacking, kBestFit, kTransliterated, kDifferent };

    Kind kind;
    const char* policy;  // as the command line calls it
    std::int64_t line, column;
    std::int64_t offset = -1;  // of the bytes in the input
    std::string bytes{};       // in digits
    std::string codePoint{};   // in digits
    std::string encoding{};    // that the bytes or the code point are not in
    std::string replacement{};
};

/// What became of a file.
enum class Outcome { kSkipped, kConverted, kUnchanged, kValid, kFailed };

/// The same of many.
struct Tally {
    std::int64_t outcomes[5] = {};
    std::int64_t replaced = 0;  // characters and sequences, whatever replaced them

    std::int64_t of(Outcome outcome) const { return outcomes[static_cast<int>(outcome)]; }
    void add(const Tally& other);
};

/// Brings what is said about files into the order of the files. Every number from 0 on is begun
/// and ended once, by threads that take the numbers in order; whoever is too far ahead waits, so
/// that what is kept for later is bounded.
///
/// Threads: any thread may call any operation.
class Report {
public:
    enum class Form { kText, kXml, kJson };

    Report(std::FILE* out, Form form, Progress& progress);
    /// Ends the report. @return false if some of it is lost
    [[nodiscard]] bool close();

    Form form() const { return m_form; }
    /// Prints a part of what is said about a file, when its turn has come.
    void print(std::uint64_t number, const std::string& text);
    /// The last part.
    void end(std::uint64_t number, std::string text, const Tally& tally);
    bool hasFailures() const { return m_tally.of(Outcome::kFailed) > 0; }
    const Tally& tally() const { return m_tally; }

private:
    void write(const std::string& text);

    std::FILE* const m_pOut;
    const Form m_form;
    Progress& m_progress;
    QBLThreadCriticalSection m_lock;
    QBLThreadConditionVariable m_turn;  // waited on under m_lock
    // Under m_lock.
    std::uint64_t m_uNext = 0;  // whose turn it is
    std::map<std::uint64_t, std::string> m_ended;
    std::size_t m_iEndedBytes = 0;  // of them
    std::size_t m_iWaiting = 0;
    Tally m_tally;
};

/// What is said about a file.
///
/// Threads: one at a time for each object.
class FileReport {
public:
    /// @param name  of the file, as shown; empty for what is said about none
    FileReport(Report& report, std::uint64_t number, tools::MessageText& texts,
               std::string name = {})
        : m_report(report), m_uNumber(number), m_texts(texts), m_name(std::move(name)) {}
    /// Ends it.
    ~FileReport();
    FileReport(const FileReport&) = delete;
    FileReport& operator=(const FileReport&) = delete;

    void error(qblconvmsgs id, const Details& details);
    void warning(qblconvmsgs id, const Details& details);
    void information(qblconvmsgs id, const Details& details);
    /// Says what was asked for: among the rest, or where results go.
    void result(qblconvmsgs id, const Details& details) {
        (m_pResults != nullptr ? *m_pResults : *this).information(id, details);
    }
    /// @param results  of the same file; must outlive this one
    void setResults(FileReport& results) { m_pResults = &results; }
    /// Says what has been found in a text; an error makes the file fail.
    void finding(QBLSeverity severity, qblconvmsgs id, const std::string& file,
                 const Finding& finding);
    bool hasFailed() const { return m_outcome == Outcome::kFailed; }
    /// Makes the outcome a failure, without a message.
    void countAsFailed() { m_outcome = Outcome::kFailed; }
    /// What became of the file, unless it failed.
    void setOutcome(Outcome outcome);
    /// For programs that read the report.
    void setEncodings(const std::string& from, const std::string& to);
    void addReplaced(std::int64_t count) { m_iReplaced += count; }

private:
    void add(QBLSeverity severity, qblconvmsgs id, const Details& details);
    void addLine(const std::string& line);
    std::string asElement(QBLSeverity severity, qblconvmsgs id, const Details& details,
                          const Finding& finding);
    std::string asObject();

    Report& m_report;
    const std::uint64_t m_uNumber;
    tools::MessageText& m_texts;
    const std::string m_name;
    std::string m_text;
    Outcome m_outcome = Outcome::kSkipped;
    std::int64_t m_iReplaced = 0;
    std::string m_from, m_to;     // encodings
    tools::JsonArray m_messages;  // of the file's object
    FileReport* m_pResults = nullptr;
};

using tools::shown;

}  // namespace conv

#endif
