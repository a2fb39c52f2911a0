#ifndef TOOLS_QBLCONV_REPORT_HPP
#define TOOLS_QBLCONV_REPORT_HPP

#include <cstdint>
#include <cstdio>
#include <map>
#include <string>

#include "QBLCore/Threads/QBLThreadConditionVariable.hpp"
#include "QBLCore/Threads/QBLThreadCriticalSection.hpp"
#include "tools/common/Shown.hpp"
#include "tools/qblconv/Problem.hpp"
#include "tools/qblconv/Progress.hpp"

namespace conv {

/// Brings what is said about files into the order of the files. Every number from 0 on is begun
/// and ended once, by threads that take the numbers in order; whoever is too far ahead waits, so
/// that what is kept for later is bounded.
///
/// Threads: any thread may call any operation.
class Report {
public:
    enum class Form { kText, kXml };

    Report(std::FILE* out, Form form, Progress& progress);
    /// Ends the report. @return false if some of it is lost
    [[nodiscard]] bool close();

    Form form() const { return m_form; }
    /// Prints a part of what is said about a file, when its turn has come.
    void print(std::uint64_t number, const std::string& text);
    /// The last part.
    void end(std::uint64_t number, std::string text, bool failed);
    bool hasFailures() const { return m_hasFailures; }

private:
    void write(const std::string& text);

    std::FILE* const m_out;
    const Form m_form;
    Progress& m_progress;
    QBLThreadCriticalSection m_lock;
    QBLThreadConditionVariable m_turn;  // waited on under m_lock
    // Under m_lock.
    std::uint64_t m_next = 0;  // whose turn it is
    std::map<std::uint64_t, std::string> m_ended;
    std::size_t m_iEndedBytes = 0;  // of them
    std::size_t m_iWaiting = 0;
    bool m_hasFailures = false;
};

/// What is said about a file.
///
/// Threads: one at a time for each object.
class FileReport {
public:
    FileReport(Report& report, std::uint64_t number, tools::MessageText& texts)
        : m_report(report), m_number(number), m_texts(texts) {}
    /// Ends it.
    ~FileReport();
    FileReport(const FileReport&) = delete;
    FileReport& operator=(const FileReport&) = delete;

    void error(qblconvmsgs id, const Details& details);
    void warning(qblconvmsgs id, const Details& details);
    void information(qblconvmsgs id, const Details& details);
    bool hasFailed() const { return m_hasFailed; }
    /// Counts as failed, without saying so.
    void fail() { m_hasFailed = true; }

private:
    void add(QBLSeverity severity, qblconvmsgs id, const Details& details);

    Report& m_report;
    const std::uint64_t m_number;
    tools::MessageText& m_texts;
    std::string m_text;
    bool m_hasFailed = false;
};

using tools::shown;

}  // namespace conv

#endif
