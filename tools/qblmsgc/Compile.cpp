#include <list>

#include "QBLCore/FileManagement/QBLFmReplaceFile.hpp"
#include "tools/qblmsgc/BmfBytes.hpp"
#include "tools/qblmsgc/Commands.hpp"
#include "tools/qblmsgc/HeaderText.hpp"
#include "tools/qblmsgc/PatternCheck.hpp"
#include "tools/qblmsgc/ReferenceCheck.hpp"
#include "tools/qblmsgc/Report.hpp"
#include "tools/qblmsgc/SourceParser.hpp"

namespace msgc {

namespace {

/// Puts a file in place as a whole, or leaves what is there.
void replaceFile(const std::string& name, const std::string& bytes, Report& report) {
    QBLFmReplaceFile file;
    if (!file.open(name.c_str()) || !file.write(bytes.data(), bytes.size()) || !file.commit())
        report.fault(MSGC_CANNOT_WRITE, {name, file.getLastErrorMessage()});
}

/// A run over one source.
class Compilation {
public:
    explicit Compilation(const Options& options) : m_options(options) {}

    Status run() {
        const Source* source = read(m_options.operands[0]);
        if (source != nullptr) {
            m_entries = parseSource(*source, m_report);
            checkPatterns(m_entries, *source, m_report);
            for (const std::string& name : m_options.references) compare(*source, name);
            if (!fitsBmf(m_entries)) m_report.error(*source, 0, MSGC_TOO_LARGE);
            if (!m_options.checkOnly && !hasFailed()) write();
        }
        m_report.print(m_options.xml ? stdout : stderr,
                       m_options.xml ? Report::Form::kXml : Report::Form::kText, m_options.quiet);
        if (source == nullptr) return unreadable(m_options.operands[0]);
        return hasFailed() ? kErrors : kClean;
    }

private:
    bool hasFailed() const {
        return m_report.hasErrors() || (m_options.strict && m_report.hasWarnings());
    }

    const Source* read(const std::string& name) {
        std::string bytes, problem;
        if (!readFile(name, bytes, problem)) {
            m_report.fault(MSGC_CANNOT_READ, {name, problem});
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
    }

    void write() {
        if (!m_options.header.empty()) {
            const std::string header =
                headerText(m_entries, m_options.header, m_options.operands[0]);
            if (header.empty())
                m_report.fault(MSGC_NO_NAMES, {m_options.operands[0], m_options.header});
            else
                replaceFile(m_options.header, header, m_report);
        }
        if (!hasFailed()) replaceFile(m_options.output, writeBmf(m_entries), m_report);
    }

    const Options& m_options;
    std::list<Source> m_sources;
    Entries m_entries;
    Report m_report;
};

}  // namespace

Status compile(const Options& options) { return Compilation(options).run(); }

}  // namespace msgc
