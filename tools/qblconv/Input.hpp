#ifndef TOOLS_QBLCONV_INPUT_HPP
#define TOOLS_QBLCONV_INPUT_HPP

#include <sys/stat.h>

#include <string>

#include "QBLCore/FileManagement/QBLFmFile64.hpp"
#include "tools/qblconv/Options.hpp"

namespace conv {

/// A file that is read.
///
/// Threads: one at a time for each object.
class Input {
public:
    /// How a file came to be an input. Only one that was named, and is not to be replaced, is
    /// waited for, as a pipe is; one found in a directory is passed over if it is not regular.
    enum class Origin { kNamed, kNamedInPlace, kFound, kFoundInPlace };

    /// @param path  "-" for the standard input
    /// @return false if it cannot be read, or is passed over; isPassedOver() tells
    bool open(const std::string& path, Origin origin, bool forWriting);
    /// Locks the file against others, or with them. Waiting for it, it may have been replaced: the
    /// one that has the name in the end is locked.
    /// @return false, with problem, if that failed
    bool lock(Options::Lock how, bool exclusive, Problem& problem);
    /// Blocks come full but for the last ones. @return bytes, 0 at the end, -1 on failure
    int read(char* block, unsigned size);
    /// Goes back to the start.
    bool rewind();
    /// Whether somebody has written to the file since it was opened or locked, or has put another
    /// in its place.
    bool hasChanged();
    void close();

    bool isPassedOver() const { return m_isPassedOver; }
    bool isRegular() const { return S_ISREG(m_status.st_mode); }
    bool isSame(const struct stat64& other) const;
    /// Whether nothing has been read so far.
    bool isEmpty() const { return m_isEmpty; }
    /// That an output of its own is to have; for what is not regular that of any new file.
    unsigned mode() const { return isRegular() ? m_status.st_mode & 0777U : 0666U; }
    int error() const { return m_error; }

private:
    bool openFile();
    int lockFile(Options::Lock how, bool exclusive);
    int descriptor() const;
    bool isFound() const { return m_origin >= Origin::kFound; }
    bool failed(int error);

    QBLFmFile64 m_file;
    std::string m_path;
    Origin m_origin = Origin::kNamed;
    bool m_forWriting = false;
    struct stat64 m_status = {};
    bool m_isPassedOver = false;
    bool m_isAtEnd = false;
    bool m_isEmpty = true;
    int m_error = 0;
};

/// Whether two looks at a file saw the same file, with the same contents, owner and mode.
bool isSameVersion(const struct stat64& a, const struct stat64& b);

}  // namespace conv

#endif
