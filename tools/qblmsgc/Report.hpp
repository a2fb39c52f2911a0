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

/// Formats a message of the tool's catalogue in the user's language. Passes the details through
/// shown().
std::string formatMessage(qblmsgcmsgs id, const Details& details = {});

/// Collects the findings in the sources of a run. Prints them in the order of the files, and by
/// place within each file.
///
/// Threads: one at a time.
class Report {
public:
    enum class Form { kText, kXml };

    /// Adds the next file. If a file was not added, its first finding adds it.
    void begin(const Source& source);
    void error(const Source& source, std::size_t offset, qblmsgcmsgs id, Details details = {});
    void warning(const Source& source, std::size_t offset, qblmsgcmsgs id, Details details = {});
    /// An error of a whole file. It comes before the errors with a place.
    void fault(qblmsgcmsgs id, Details details);

    bool hasErrors() const { return m_bHasErrors; }
    bool hasWarnings() const { return m_bHasWarnings; }
    /// @param quiet  whether to omit warnings
    void print(std::FILE* out, Form form, bool quiet);

private:
    struct Finding {
        QBLSeverity severity;
        std::size_t file;  // number of the file, from 1; 0 for a fault
        std::size_t offset;
        qblmsgcmsgs id;
        Details details;  // if there is a place, they begin with file, line and column
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
