#ifndef TOOLS_QBLCONV_STATUS_HPP
#define TOOLS_QBLCONV_STATUS_HPP

#include <cstdint>
#include <tuple>

#include "QBLCore/Base/QBLFileStatus.hpp"

namespace conv {

/// What a file was when it was looked at; by the library's calls, which know times after 2038 and
/// wide inodes at 32 bits too.
class FileStatus : public QBLFileStatus {
public:
    /// A file, whatever it is called.
    using Identity = std::tuple<unsigned, unsigned, std::uint64_t>;

    Identity identity() const { return {major(), minor(), inode()}; }
    /// Whether two looks saw the same file, with the same contents, owner and mode. The time of
    /// the last change of these does not count: a second name that a file gets changes that too.
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
