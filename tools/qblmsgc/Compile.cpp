#include <list>

#include "QBLCore/Base/QBLFileStatus.hpp"
#include "QBLCore/FileManagement/QBLFmReplaceFile.hpp"
#include "tools/common/Files.hpp"
#include "tools/common/Reason.hpp"
#include "tools/qblmsgc/BmfBytes.hpp"
#include "tools/qblmsgc/Commands.hpp"
#include "tools/qblmsgc/HeaderText.hpp"
#include "tools/qblmsgc/PatternCheck.hpp"
#include "tools/qblmsgc/ReferenceCheck.hpp"
#include "tools/qblmsgc/Report.hpp"
#include "tools/qblmsgc/SourceParser.hpp"
#include "tools/qblmsgc/TypeCheck.hpp"

namespace msgc {

namespace {

/// A file that is replaced as a whole or not at all.
class Output {
public:
    Output(const std::string& name, Report& report) : m_name(name), m_report(report) {}

    bool prepare(const std::string& bytes) {
        return check(m_file.open(m_name.c_str()) && m_file.write(bytes.data(), bytes.size()));
    }
    bool commit() { return check(m_file.commit()); }

private:
    bool check(bool isDone) {
        if (isDone) return true;
        if (isDevice())
            m_report.fault(qblmsgcmsgs::msgcNotRegular, m_name);
        else
            m_report.fault(qblmsgcmsgs::msgcCannotWrite, m_name,
                           tools::reason(m_file.getLastErrorNumber()));
        return false;
    }
    bool isDevice() const {
        QBLFileStatus status;
        return status.get(m_name.c_str()) && !status.isRegular() && !status.isDirectory();
    }

    const std::string& m_name;
    Report& m_report;
    QBLFmReplaceFile m_file;
};

/// Compiles one source.
class Compilation {
public:
    explicit Compilation(const Options& options) : m_options(options), m_report(options.strict) {}

    Status run() {
        const Source* source = read(m_options.operands[0]);
        if (source != nullptr) {
            m_entries = parseSource(*source, m_report);
            checkPatterns(m_entries, *source, m_report);
            if (m_options.typed) checkTypes(m_entries, *source, m_report);
            for (const std::string& name : m_options.references) compare(*source, name);
            if (!fitsBmf(m_entries)) m_report.error(*source, 0, qblmsgcmsgs::msgcTooLarge);
            if (!m_options.checkOnly && !hasFailed()) write();
        }
        m_report.print(m_options.xml ? stdout : stderr,
                       m_options.xml ? Report::Form::kXml : Report::Form::kText, m_options.quiet);
        if (!m_absent.empty()) return kUsage;
        return hasFailed() ? kErrors : kClean;
    }

private:
    bool hasFailed() const {
        return m_report.hasErrors() || (m_options.strict && m_report.hasWarnings());
    }

    const Source* read(const std::string& name) {
        std::string bytes, problem;
        if (!readFile(name, bytes, problem)) {
            if (tools::isAbsent(name)) m_absent = name;
            m_report.fault(qblmsgcmsgs::msgcCannotRead, name, problem);
            return nullptr;
        }
        m_report.begin(m_sources.emplace_back(name, std::move(bytes)));
        return &m_sources.back();
    }

    void compare(const Source& source, const std::string& name) {
        const Source* reference = read(name);
        if (reference == nullptr) return;
        const Entries entries = parseSource(*reference, m_report);
        compareWithReference({source, m_entries}, {*reference, entries}, m_report);
        if (!m_options.typed) return;
        compareTypes({source, m_entries}, {*reference, entries}, m_report);
        if (m_uShape == 0) m_uShape = shapeOf(entries);
    }

    /// Writes both new files completely before it replaces an old file.
    void write() {
        Output header(m_options.header, m_report), output(m_options.output, m_report);
        const bool hasHeader = !m_options.header.empty();
        if (m_options.typed && m_uShape == 0) m_uShape = shapeOf(m_entries);
        if (hasHeader) {
            const std::string text = headerText(m_entries, m_options.header, m_options.operands[0],
                                                {m_options.base, m_uShape});
            if (text.empty())
                return m_report.fault(qblmsgcmsgs::msgcNoNames, m_options.operands[0],
                                      m_options.header);
            if (!header.prepare(text)) return;
        }
        if (output.prepare(writeBmf(m_entries, m_uShape)) && (!hasHeader || header.commit()))
            static_cast<void>(output.commit());
    }

    const Options& m_options;
    std::list<Source> m_sources;
    Entries m_entries;
    unsigned m_uShape = 0;  // of the first reference if there is one, else of the source
    Report m_report;
    std::string m_absent;  // a file of the command line that does not exist
};

}  // namespace

Status compile(const Options& options) { return Compilation(options).run(); }

}  // namespace msgc
