#ifndef TOOLS_QBLCONV_CLEAN_HPP
#define TOOLS_QBLCONV_CLEAN_HPP

#include <list>
#include <string>
#include <vector>

#include "QBLCore/FileManagement/QBLFmDirectory.hpp"
#include "tools/qblconv/Options.hpp"
#include "tools/qblconv/Report.hpp"

namespace conv {

/// Removes the temporary files that killed processes left in directories. Removes a file only if it
/// is a regular file of the caller, its name has the form of the library's or the tool's temporary
/// files, no running process has the process ID in the name, and no process has the file open, here
/// or in another process namespace. Keeps all other files. Opens each directory relative to its
/// parent; follows links only on the command line.
///
/// Threads: one at a time.
class Clean {
public:
    Clean(const Options& options, FileReport& report) : m_options(options), m_report(report) {}

    /// Returns true if all operands are directories.
    static bool check(const Options& options, Problem& problem);
    /// Cleans a directory and, with option -r, the directories below it.
    void work(const std::string& operand);

private:
    struct Level {
        std::string path;  // with a slash at the end
        QBLFmDirectory directory;
        std::list<std::string> directories;  // not visited yet
    };

    void enter(const std::string& path, QBLFmDirectory directory);
    void descend();
    void removeUnused(const Level& level, const std::string& leaf);
    void tell(const QBLTypedMessage& message);

    const Options& m_options;
    FileReport& m_report;
    std::vector<Level> m_levels;
};

}  // namespace conv

#endif
