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

/// A part of a text that could not be converted, or that became a different text. Fields that a
/// kind does not use are empty or negative.
struct Finding {
    enum class Kind { kMalformed, kTruncated, kLacking, kBestFit, kTransliterated, kDifferent };

    Kind kind;
    const char* policy;  // the policy's name on the command line
    std::int64_t line, column;
    std::int64_t offset = -1;  // offset of the bytes in the input
    std::string bytes{};       // in hexadecimal
    std::string codePoint{};   // in hexadecimal
    std::string encoding{};    // the encoding that lacks the bytes or the code point
    std::string replacement{};
};

/// The result for a file.
enum class Outcome { kSkipped, kConverted, kUnchanged, kValid, kFailed };

/// The results of many files.
struct Tally {
    std::int64_t outcomes[5] = {};
    std::int64_t replaced = 0;  // characters and sequences, with any replacement
    std::int64_t notUTF8 = 0;   // texts that were read as UTF-8 and are malformed

    std::int64_t of(Outcome outcome) const { return outcomes[static_cast<int>(outcome)]; }
    void add(const Tally& other);
};

/// Prints the reports of files in the order of the files. The files have numbers, from 0. Threads
/// take the files in the order of the numbers, and end the report of each file once. A thread that
/// is too far ahead waits, which limits the memory for reports.
///
/// Threads: any thread may call any operation.
class Report {
public:
    enum class Form { kText, kXml, kJson };

    Report(std::FILE* out, Form form, Progress& progress);
    /// Ends the report.
    /// @return false if any output is lost
    [[nodiscard]] bool close();

    Form form() const { return m_form; }
    /// Prints a part of a file's report. Waits for the file's turn.
    void print(std::uint64_t number, const std::string& text);
    /// Prints the last part, or keeps it until the file's turn.
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
    // Guarded by m_lock.
    std::uint64_t m_uNext = 0;  // number of the file whose turn it is
    std::map<std::uint64_t, std::string> m_ended;
    std::size_t m_iEndedBytes = 0;  // bytes in m_ended
    std::size_t m_iWaiting = 0;
    Tally m_tally;
};

/// Collects the report of a file.
///
/// Threads: one at a time for each object.
class FileReport {
public:
    /// @param name  the file's name, as shown() returns it; empty for a report about no file
    FileReport(Report& report, std::uint64_t number, tools::MessageText& texts,
               std::string name = {})
        : m_report(report), m_uNumber(number), m_texts(texts), m_name(std::move(name)) {}
    /// Ends the report.
    ~FileReport();
    FileReport(const FileReport&) = delete;
    FileReport& operator=(const FileReport&) = delete;

    void error(const QBLTypedMessage& message);
    void warning(const QBLTypedMessage& message);
    void information(const QBLTypedMessage& message);
    /// Adds a result to the report that setResults() has set, else to this report.
    void result(const QBLTypedMessage& message) {
        (m_pResults != nullptr ? *m_pResults : *this).information(message);
    }
    /// @param results  receives the results of the same file; must outlive this object
    void setResults(FileReport& results) { m_pResults = &results; }
    /// Adds a finding in a text. An error makes the file fail.
    void finding(QBLSeverity severity, const std::string& file, const Finding& finding);
    bool hasFailed() const { return m_outcome == Outcome::kFailed; }
    /// Makes the outcome a failure, without a message.
    void countAsFailed() { m_outcome = Outcome::kFailed; }
    /// Sets the result for the file, unless the file has failed.
    void setOutcome(Outcome outcome);
    /// Sets the encodings, for reports that programs read.
    void setEncodings(const std::string& from, const std::string& to);
    void addReplaced(std::int64_t count) { m_iReplaced += count; }

private:
    void add(QBLSeverity severity, const QBLTypedMessage& message);
    void addLine(const std::string& line);
    std::string asObject();

    Report& m_report;
    const std::uint64_t m_uNumber;
    tools::MessageText& m_texts;
    const std::string m_name;
    std::string m_text;
    Outcome m_outcome = Outcome::kSkipped;
    std::int64_t m_iReplaced = 0;
    bool m_bNotUTF8 = false;
    std::string m_from, m_to;     // encodings
    tools::JsonArray m_messages;  // of the file's JSON object
    FileReport* m_pResults = nullptr;
};

using tools::shown;

}  // namespace conv

#endif
