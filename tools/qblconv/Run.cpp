#include "tools/qblconv/Run.hpp"

#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <climits>
#include <cstdio>
#include <cstring>
#include <memory>
#include <optional>
#include <thread>

#include "QBLCore/Exceptions/QBLOutOfMemoryError.hpp"
#include "QBLCore/Exceptions/QBLThreadResourceError.hpp"
#include "QBLCore/Exceptions/QBLThrowable.hpp"
#include "QBLCore/Exceptions/QBLWhat.hpp"
#include "QBLCore/ThreadPools/QBLTaskGroup.hpp"
#include "QBLCore/ThreadPools/QBLThreadPoolQueued.hpp"
#include "QBLCore/Threads/QBLThreadGuard.hpp"
#include "tools/common/Environment.hpp"
#include "tools/common/Help.hpp"
#include "tools/common/Print.hpp"
#include "tools/common/Reason.hpp"
#include "tools/qblconv/Clean.hpp"
#include "tools/qblconv/Encodings.hpp"
#include "tools/qblconv/Interrupt.hpp"
#include "tools/qblconv/Join.hpp"
#include "tools/qblconv/Operands.hpp"
#include "tools/qblconv/Worker.hpp"

namespace conv {

namespace {

using Mode = Options::Mode;

/// XML and JSON go to the standard output, where programs read, unless the converted text goes
/// there.
std::FILE* reportFile(const Options& options) {
    const bool isTaken = options.mode == Mode::kJoin && options.output.empty();
    return (options.xml || options.json) && !isTaken ? stdout : stderr;
}

Report::Form reportForm(const Options& options) {
    if (options.json) return Report::Form::kJson;
    return options.xml ? Report::Form::kXml : Report::Form::kText;
}

/// Returns the text of an error, or the name of its class if it has no text.
std::string messageOf(QBLThrowable& error) {
    const char* const text = error.getMessage();
    return text != nullptr ? text : error.getThrowableName();
}

/// Converts or checks files.
class Run {
public:
    Run(const Options& options, const tools::Catalogue& catalogue)
        : m_options(options),
          m_catalogue(catalogue),
          m_operands(options),
          m_root(options.directory),
          m_progress(isProgressWanted(options), catalogue, options.locales),
          m_report(reportFile(options), reportForm(options), m_progress),
          m_bHasResults(options.mode == Mode::kGuess && reportForm(options) == Report::Form::kText),
          m_results(stdout, Report::Form::kText, m_progress) {}

    Status run() {
        std::optional<std::string> failure;
        try {
            if (m_options.mode == Mode::kJoin)
                join();
            else if (m_options.mode == Mode::kClean)
                clean();
            else
                workOnAll();
        } catch (QBLThrowable& error) {
            failure = messageOf(error);
        } catch (const std::exception&) {
            failure = qblWhat();
        }
        if (failure) {
            tools::MessageText texts(m_catalogue, m_options.locales);
            FileReport(m_report, m_iTaken++, texts)
                .error(qblconvmsgs::convFailed("qblconv", *failure));
        }
        m_progress.clear();
        summarise();
        adviseOnEncoding();
        bool isWhole = m_report.close();
        if (m_bHasResults) isWhole = m_results.close() && isWhole;
        return m_report.hasFailures() || !isWhole ? kFailed : kDone;
    }

private:
    /// Reports a summary for several files. For joined files, the output alone is enough.
    void summarise() {
        const Tally& tally = m_report.tally();
        std::int64_t count = 0;
        for (const std::int64_t each : tally.outcomes) count += each;
        count -= tally.of(Outcome::kSkipped);
        const bool isOfMany = m_options.mode == Mode::kDirectory ||
                              m_options.mode == Mode::kInPlace || m_options.mode == Mode::kCheck;
        if (!isOfMany || count < 2 || m_options.quiet || m_options.json || isInterrupted()) return;
        const auto number = [](std::int64_t value) { return std::to_string(value); };
        tools::MessageText texts(m_catalogue, m_options.locales);
        FileReport report(m_report, m_iTaken++, texts);
        if (m_options.mode == Mode::kCheck)
            report.information(qblconvmsgs::convSummaryCheck(number(count),
                                                             number(tally.of(Outcome::kValid)),
                                                             number(tally.of(Outcome::kFailed))));
        else
            report.information(qblconvmsgs::convSummary(
                number(count), number(tally.of(Outcome::kConverted)),
                number(tally.of(Outcome::kUnchanged)), number(tally.of(Outcome::kFailed)),
                number(tally.replaced)));
    }

    /// Tells a person what to do if the input is not in the default encoding. Programs that read
    /// the report do not get this line.
    void adviseOnEncoding() {
        const bool isForPerson = isatty(STDERR_FILENO) != 0 && !m_options.quiet &&
                                 m_report.form() == Report::Form::kText;
        if (!isForPerson || m_options.isFromGiven || m_report.tally().notUTF8 == 0) return;
        tools::MessageText texts(m_catalogue, m_options.locales);
        FileReport(m_report, m_iTaken++, texts).information(qblconvmsgs::convAdviceFrom());
    }

    /// Returns false if converted text goes to the terminal, because the progress line would erase
    /// it. Also returns false if the user wants no messages.
    static bool isProgressWanted(const Options& options) {
        const bool isText = options.mode == Mode::kJoin && options.output.empty();
        return !options.quiet && !(isText && isatty(STDOUT_FILENO) != 0);
    }

    /// Each worker opens a file, its new version, and the directories on the way to them.
    static unsigned mostWorkers() {
        constexpr rlim_t kStandard = 3, kEach = 8;
        rlimit files = {};
        if (getrlimit(RLIMIT_NOFILE, &files) != 0 || files.rlim_cur == RLIM_INFINITY)
            return UINT_MAX;
        const rlim_t most = files.rlim_cur > kStandard ? (files.rlim_cur - kStandard) / kEach : 0;
        return static_cast<unsigned>(std::clamp<rlim_t>(most, 1, UINT_MAX));
    }

    /// This thread is one worker; a pool runs the others. Starts fewer workers if the system has no
    /// more threads.
    void workOnAll() {
        unsigned jobs = m_options.jobs;
        if (jobs == 0) jobs = std::max(1U, std::thread::hardware_concurrency());
        jobs = std::min(jobs, mostWorkers());
        if (!m_options.recurse)
            jobs = static_cast<unsigned>(std::min<std::size_t>(jobs, m_options.operands.size()));
        std::unique_ptr<QBLThreadPoolQueued> pool;
        for (; jobs > 1 && pool == nullptr; jobs = pool != nullptr ? jobs : jobs / 2) {
            try {
                pool = std::make_unique<QBLThreadPoolQueued>(jobs - 1, jobs);
            } catch (const QBLThreadResourceError&) {  // tries half as many jobs
            }
        }
        Worker worker(m_options, m_progress, &m_root);
        if (pool == nullptr) return work(worker);
        QBLTaskGroup group(*pool);
        for (unsigned i = 1; i < jobs; ++i) group.run([this] { help(); });
        work(worker);
        group.wait();
    }

    void help() {
        std::optional<Worker> worker;
        try {
            worker.emplace(m_options, m_progress, &m_root);
        } catch (const QBLOutOfMemoryError&) {
            return;  // the other workers do all the work
        }
        work(*worker);
    }

    void work(Worker& worker) {
        tools::MessageText texts(m_catalogue, m_options.locales);
        Item item;
        std::uint64_t number = 0;
        while (take(item, number)) {
            std::optional<FileReport> results;
            if (m_bHasResults) results.emplace(m_results, number, texts);
            FileReport report(m_report, number, texts, shown(item.path));
            if (results) report.setResults(*results);
            guarded(item.path, report, [&] { worker.work(item, report); });
        }
    }

    /// Reports an exception for one file and continues with the others.
    template <class Body>
    static void guarded(const std::string& path, FileReport& report, const Body& body) {
        try {
            body();
        } catch (QBLThrowable& error) {
            report.error(qblconvmsgs::convFailed(shown(path), messageOf(error)));
        } catch (const std::exception&) {
            report.error(qblconvmsgs::convFailed(shown(path), qblWhat()));
        }
    }

    bool take(Item& item, std::uint64_t& number) {
        QBLThreadGuard guard(m_lock);
        if (isInterrupted() || !m_operands.next(item)) return false;
        number = m_iTaken++;
        return true;
    }

    void clean() {
        tools::MessageText texts(m_catalogue, m_options.locales);
        for (const std::string& operand : m_options.operands) {
            FileReport report(m_report, m_iTaken++, texts);
            guarded(operand, report, [&] { Clean(m_options, report).work(operand); });
        }
    }

    void join() {
        tools::MessageText texts(m_catalogue, m_options.locales);
        std::vector<std::string> inputs = m_options.operands;
        if (inputs.empty()) inputs.emplace_back("-");
        JoinedOutput joined(m_options.output, m_options.output.empty()
                                                  ? texts.text(qblconvmsgs::convStandardOutput())
                                                  : shown(m_options.output));
        if (joined.open(inputs)) joinAll(inputs, joined, texts);
        if (isInterrupted()) return;
        FileReport report(m_report, m_iTaken++, texts);
        joined.finish(m_report.hasFailures(), report);
    }

    void joinAll(const std::vector<std::string>& inputs, JoinedOutput& joined,
                 tools::MessageText& texts) {
        Worker worker(m_options, m_progress, nullptr);
        Output& output = joined.output();
        const std::string& mark = worker.mark();
        if (!mark.empty() && !output.write(mark.data(), mark.size())) return;
        bool isFirst = true;
        for (const std::string& input : inputs) {
            if (isInterrupted()) return;
            FileReport report(m_report, m_iTaken, texts, shown(input));
            guarded(input, report, [&] {
                if (worker.join(input, joined.direct(), output, joined.name(), isFirst, report))
                    isFirst = false;
            });
            ++m_iTaken;
            if (output.error() != 0) return;
        }
    }

    const Options& m_options;
    const tools::Catalogue& m_catalogue;
    QBLThreadCriticalSection m_lock;
    Operands m_operands;  // guarded by m_lock
    OutputRoot m_root;
    std::uint64_t m_iTaken = 0;  // guarded by m_lock
    Progress m_progress;
    Report m_report;
    const bool m_bHasResults;
    Report m_results;  // for results that are not text, unless a program reads the report
};

/// Checks everything that can be checked before the work begins.
bool check(const Options& options, Problem& problem) {
    if (options.mode == Mode::kClean) return Clean::check(options, problem);
    if (isAuto(options.from) ? !checkAuto(options.from, problem)
                             : openEncoding(options.from, problem) == nullptr)
        return false;
    const auto to = openEncoding(options.to, problem);
    if (to == nullptr) return false;
    if (options.mark == Options::Mark::kAdd && markIn(*to).empty()) {
        problem = tools::withShown(qblconvmsgs::convNoMark, options.to);
        return false;
    }
    // A later run could not recognise outputs without a mark.
    const bool needsMark = I18NConverter::shouldUseBOM(options.to.c_str());
    if (options.keepValid && needsMark && options.mark != Options::Mark::kAdd) {
        problem = tools::withShown(qblconvmsgs::convKeepNeedsMark, options.to);
        return false;
    }
    if (options.keepValid && isAnyTextValid(*to)) {
        problem = tools::withShown(qblconvmsgs::convAllValid, "-k", options.to);
        return false;
    }
    return Operands(options).check(problem);
}

/// Returns true if a path is the same file as the standard output, whose contents would be
/// replaced.
bool isStandardOutput(const std::string& path) {
    FileStatus file, standard;
    return file.get(path.c_str()) && standard.get(STDOUT_FILENO) && file.isSameFile(standard);
}

/// Reports an error in the command line in the form of the report.
void sayNothingDone(const Options& options, const Problem& problem, tools::MessageText& texts) {
    std::FILE* const out = reportFile(options);
    const QBLTypedMessage& message = *problem;
    if (options.json)
        tools::print(out, tools::JsonObject()
                                  .add("type", "error")
                                  .add("id", static_cast<std::int64_t>(message.getMessageID()))
                                  .add("text", texts.text(message))
                                  .text() +
                              "\n");
    else if (options.xml)
        tools::print(out,
                     "<Messages>\n" + texts.element(QBLSeverityError, message) + "\n</Messages>\n");
    else
        tools::printText(out, texts.text(message) + "\n");
}

Status list(const std::string& pattern, tools::MessageText& texts) {
    if (listEncodings(pattern)) return kDone;
    tools::printText(stderr, texts.text(qblconvmsgs::convNoEncoding(shown(pattern))) + "\n");
    return kFailed;
}

/// Runs a valid command line.
Status runMode(Options& options, const tools::Catalogue& catalogue, tools::MessageText& texts) {
    Problem problem;
    switch (options.mode) {
        case Mode::kHelp:
            tools::printText(stdout, texts.text(qblconvmsgs::convUsage()));
            tools::printText(stdout, tools::describeOptions(knownOptions(), texts));
            tools::printText(stdout, texts.text(qblconvmsgs::convUsageEnd()));
            return kDone;
        case Mode::kCompletions:
            tools::print(stdout,
                         tools::completionScript("qblconv", options.shell, knownOptions(), texts));
            return kDone;
        case Mode::kVersion:
            tools::printText(stdout, texts.text(qblconvmsgs::convVersion(QBL_VERSION)) + "\n");
            return kDone;
        case Mode::kList:
            return list(options.operands.empty() ? "" : options.operands[0], texts);
        default:
            if (options.mode == Mode::kJoin && isStandardOutput(options.output))
                options.output.clear();
            if (check(options, problem)) return Run(options, catalogue).run();
            sayNothingDone(options, problem, texts);
            return kNothingDone;
    }
}

}  // namespace

Status run(int argc, char** argv) {
    Options options;
    Problem problem;
    const bool isUsage = parseOptions(argc, argv, options, problem);
    const tools::Catalogue catalogue =
        tools::findCatalogue(qblconvmsgs::kCatalogue, options.locales);
    tools::setReasonLanguage(catalogue.base, options.locales);
    tools::MessageText texts(catalogue, options.locales);
    Status status = kNothingDone;
    if (isUsage)
        status = runMode(options, catalogue, texts);
    else
        sayNothingDone(options, problem, texts);
    const int error = tools::finishOutput();
    if (error == 0) return status;
    // If the reader of a pipe stops early, no message is needed.
    if (!isInterrupted())
        tools::printText(stderr,
                         texts.text(qblconvmsgs::convCannotWrite(
                             texts.text(qblconvmsgs::convStandardOutput()), tools::reason(error))) +
                             "\n");
    return kFailed;
}

}  // namespace conv
