#ifndef TOOLS_QBLCONV_OPERANDS_HPP
#define TOOLS_QBLCONV_OPERANDS_HPP

#include <list>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "tools/qblconv/Input.hpp"
#include "tools/qblconv/Options.hpp"

namespace conv {

/// The files that the operands name, in their order, and those below directories: a directory's
/// own files by name, then its directories. What is below is listed when it is come to, so that no
/// more is kept than the names of the directories on the way. Each directory is opened from the
/// one above it, so that nobody who can write to the tree leads the tool out of it.
///
/// - Hidden names in directories are passed over, unless the pattern for names begins with a dot;
///   so is the directory for outputs, and links to directories. In place, names with the suffix of
///   originals that are kept are too.
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
    /// A file in place: its directory, and its name there.
    using FileKey = std::pair<FileStatus::Identity, std::string>;

    struct Level {
        std::string path;  // with a slash at the end
        std::string name;  // below the directory for outputs
        std::shared_ptr<const Place> place;
        FileStatus::Identity identity;
        std::list<std::string> files, directories;
    };

    bool checkOutputs(Problem& problem) const;
    const std::string* inputAt(const std::string& output, const std::string& own) const;
    bool checkOriginals(Problem& problem) const;
    bool isPassedOver(const std::string& file, const Level& level) const;
    bool nextOperand(Item& item);
    bool nextFile(const std::string& operand, Item& item);
    bool nextDirectory(const std::string& operand, Item& item);
    bool enter(std::shared_ptr<Place> place, const std::string& path, const std::string& name,
               Item& item);
    bool isBelowDone(const QBLFmDirectory& directory) const;
    bool isOutputDirectory(const FileStatus& status) const;

    const Options& m_options;
    const bool m_bInPlace;
    std::size_t m_iNext = 0;
    std::vector<Level> m_levels;
    // Operands in place that are done, or being gone through.
    std::set<FileKey> m_doneFiles;
    std::set<FileStatus::Identity> m_doneDirectories;
};

}  // namespace conv

#endif
