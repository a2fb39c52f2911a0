#ifndef TOOLS_QBLMSGC_REPORT_HPP
#define TOOLS_QBLMSGC_REPORT_HPP

#include <cstdio>
#include <string>
#include <vector>

#include "QBLCore/Exceptions/QBLSeverity.hpp"
#include "tools/common/MessageText.hpp"
#include "tools/qblmsgc/Source.hpp"
#include "tools/qblmsgc/qblmsgcmsgs.hpp"

namespace msgc {

using tools::Details;

/// Formats a message of the tool's catalogue in the user's language, with the details as shown()
/// has them.
std::string formatMessage(qblmsgcmsgs id, const Details& details = {});

/// What was found in the sources of a run. It is shown in the order of the files as they came, and
/// within each by place.
///
/// Threads: one at a time.
class Report {
public:
    enum class Form { kText, kXml };

    /// Names the next file; one that was not named comes where something is first found in it.
    void begin(const Source& source);
    void error(const Source& source, std::size_t offset, qblmsgcmsgs id, Details details = {});
    void warning(const Source& source, std::size_t offset, qblmsgcmsgs id, Details details = {});
    /// An error of a file as a whole, shown in front of those with a place.
    void fault(qblmsgcmsgs id, Details details);

    bool hasErrors() const { return m_bHasErrors; }
    bool hasWarnings() const { return m_bHasWarnings; }
    /// @param quiet  without the warnings
    void print(std::FILE* out, Form form, bool quiet);

private:
    struct Finding {
        QBLSeverity severity;
        std::size_t file;  // the how many-th; 0 for those without a place
        std::size_t offset;
        qblmsgcmsgs id;
        Details details;  // of one with a place: file, line and column are the first
    };

    std::size_t numberOf(const Source& source);
    void add(QBLSeverity severity, const Source& source, std::size_t offset, qblmsgcmsgs id,
             Details details);

    std::vector<Finding> m_findings;
    std::vector<std::string> m_files;
    bool m_bHasErrors = false;
    bool m_bHasWarnings = false;
};

}  // namespace msgc

#endif
