#ifndef TOOLS_QBLCONV_CLEAN_HPP
#define TOOLS_QBLCONV_CLEAN_HPP

#include <list>
#include <string>
#include <vector>

#include "QBLCore/FileManagement/QBLFmDirectory.hpp"
#include "tools/qblconv/Options.hpp"
#include "tools/qblconv/Report.hpp"

namespace conv {

/// Removes the temporary files that killed processes have left in directories. A file is removed
/// if it is a regular file of the caller's, if its name has the form of temporary files of the
/// library and the tool, if no process here has the number in the name, and if nobody has the file
/// open, here or in another process namespace. All others stay. Each directory is opened from the
/// one above it; only links on the command line are followed.
///
/// Threads: one at a time.
class Clean {
public:
    Clean(const Options& options, FileReport& report) : m_options(options), m_report(report) {}

    /// Whether all operands are directories.
    static bool check(const Options& options, Problem& problem);
    /// Goes through a directory, and with the option through those below it.
    void work(const std::string& operand);

private:
    struct Level {
        std::string path;  // with a slash at the end
        QBLFmDirectory directory;
        std::list<std::string> directories;  // still to be gone through
    };

    void enter(const std::string& path, QBLFmDirectory directory);
    void descend();
    void removeUnused(const Level& level, const std::string& leaf);
    void tell(qblconvmsgs id, const Details& details);

    const Options& m_options;
    FileReport& m_report;
    std::vector<Level> m_levels;
};

}  // namespace conv

#endif
