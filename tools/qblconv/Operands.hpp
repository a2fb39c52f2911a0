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

/// Iterates over the files that the operands name, in order, and over the files below directories:
/// first the directory's files by name, then its subdirectories. Lists a directory only when it is
/// reached, so that memory holds only the names of the directories on the current path. Opens each
/// directory relative to its parent, so that a user who can write to the tree cannot lead the tool
/// out of it.
///
/// - Skips hidden names in directories, unless the pattern for names begins with a dot. Also skips
///   the output directory and links to directories; in place, also names with the suffix of kept
///   originals.
/// - In place, returns a file once if several operands lead to it.
///
/// Threads: one at a time.
class Operands {
public:
    explicit Operands(const Options& options);

    /// Returns true if all operands exist and each has its own output. An operand that exists but
    /// cannot be examined fails later, at its turn.
    bool check(Problem& problem) const;
    /// @return false at the end
    bool next(Item& item);

private:
    /// Identifies a file in place by its directory and its name there.
    using FileKey = std::pair<FileStatus::Identity, std::string>;

    struct Level {
        std::string path;  // with a slash at the end
        std::string name;  // below the output directory
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
    // For the in-place mode: operands that are finished or in progress.
    std::set<FileKey> m_doneFiles;
    std::set<FileStatus::Identity> m_doneDirectories;
};

}  // namespace conv

#endif
