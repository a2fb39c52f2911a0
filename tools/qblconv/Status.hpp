#ifndef TOOLS_QBLCONV_STATUS_HPP
#define TOOLS_QBLCONV_STATUS_HPP

#include <cstdint>
#include <tuple>

#include "QBLCore/Base/QBLFileStatus.hpp"

namespace conv {

/// The state of a file at the time of a check. Uses the library's calls, which support times after
/// 2038 and 64-bit inodes at 32 bits too.
class FileStatus : public QBLFileStatus {
public:
    /// Identifies a file independently of its names.
    using Identity = std::tuple<unsigned, unsigned, std::uint64_t>;

    Identity identity() const { return {major(), minor(), inode()}; }
    /// Returns true if both statuses are of the same file with the same contents, owner and mode.
    /// Ignores the time of the last status change, because a new name for the file changes that
    /// time too.
    bool isSameVersion(const FileStatus& other) const { return version() == other.version(); }

private:
    std::tuple<Identity, std::uint64_t, std::int64_t, unsigned, unsigned, unsigned, unsigned>
    version() const {
        return {identity(), size(), modifiedSeconds(), modifiedNanoseconds(), mode(),
                user(),     group()};
    }
};

}  // namespace conv

#endif
