#ifndef TOOLS_QBLCONV_OPERANDS_HPP
#define TOOLS_QBLCONV_OPERANDS_HPP

#include <sys/stat.h>

#include <list>
#include <set>
#include <string>
#include <vector>

#include "tools/qblconv/Input.hpp"
#include "tools/qblconv/Options.hpp"

namespace conv {

/// A file to be worked on.
struct Item {
    std::string path;
    std::string name;  // its path below the directory for outputs
    Input::Origin origin = Input::Origin::kNamed;
    int error = 0;  // of a directory that cannot be read, whose path it is then
};

/// The files that the operands name, in their order, and those below directories: a directory's
/// own files by name, then its directories. What is below is listed when it is come to, so that no
/// more is kept than the names of the directories on the way.
///
/// - Hidden names in directories are passed over, unless the pattern for names begins with a dot;
///   so is the directory for outputs, and links to directories. In place, links to files are too,
///   and names with the suffix of originals that are kept.
/// - In place, what several operands lead to comes once.
///
/// Threads: one at a time.
class Operands {
public:
    explicit Operands(const Options& options);

    /// Whether there are such operands, and whether each has an output of its own. What cannot be
    /// looked at, for other reasons than that it is not there, fails when its turn comes.
    bool check(Problem& problem) const;
    /// @return false at the end
    bool next(Item& item);

private:
    struct Level {
        std::string path;  // with a slash at the end
        std::string name;
        std::string real;  // in place
        std::list<std::string> files, directories;
    };

    bool checkOutputs(Problem& problem) const;
    bool checkOriginals(Problem& problem) const;
    bool isPassedOver(const std::string& file, const Level& level) const;
    bool nextOperand(Item& item);
    bool enter(const std::string& path, const std::string& name, const std::string& real,
               Item& item);
    bool isDone(const std::string& real) const;
    bool isOutputDirectory(const std::string& path) const;

    const Options& m_options;
    const bool m_isInPlace;
    std::size_t m_iNext = 0;
    std::vector<Level> m_levels;
    std::set<std::string> m_done;  // operands in place, by their real paths
};

/// Without links, from the root. @return the path itself if nothing is there
std::string realPath(const std::string& path);

}  // namespace conv

#endif
