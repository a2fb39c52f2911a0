#ifndef TOOLS_QBLCONV_INPUT_HPP
#define TOOLS_QBLCONV_INPUT_HPP

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "QBLCore/FileManagement/QBLFmDirectory.hpp"
#include "tools/qblconv/Options.hpp"
#include "tools/qblconv/Status.hpp"

namespace conv {

/// An open directory that files come from, with those above it up to the operand.
struct Place {
    QBLFmDirectory directory;
    std::string name;  // in the one above; that of an operand is its last part, or empty
    unsigned mode = 0;
    std::shared_ptr<const Place> above;  // null for an operand's directory
};

/// A file to be worked on.
struct Item {
    /// How a file came to be an input. Only one that was named, and is not to be replaced, is
    /// waited for, as a pipe is.
    enum class Origin { kNamed, kNamedInPlace, kFound };

    std::string path;  // as it is shown; "-" for the standard input
    std::string name;  // its path below the directory for outputs, as it is shown
    Origin origin = Origin::kNamed;
    std::shared_ptr<const Place> place;  // that it is in; null for one named and not replaced
    std::string leaf;                    // its name there
    int error = 0;  // of a directory or file that cannot be looked at, whose path it is then
};

/// A file that is read. One with a place is opened there by its name, and never by a link.
///
/// Threads: one at a time for each object.
class Input {
public:
    /// Why a file that was found is passed over.
    enum class PassedOver { kNot, kNotRegular, kLink, kBrokenLink };

    Input() = default;
    ~Input() { close(); }
    Input(const Input&) = delete;
    Input& operator=(const Input&) = delete;

    /// @return false if it cannot be read, or is passed over
    bool open(const Item& item, bool forWriting);
    /// Locks the file against others, or with them. Waiting for it, it may have been replaced: the
    /// one that has the name in the end is locked.
    /// @return false, with problem, if that failed
    bool lock(Options::Lock how, bool exclusive, Problem& problem);
    /// Blocks come full but for the last ones. @return bytes, 0 at the end, -1 on failure
    int read(char* block, unsigned size);
    /// Goes back to where it began.
    /// Requires: a regular file, or spool().
    bool rewind();
    /// Makes rewind() work for any input: what is not a regular file is copied into a temporary
    /// file, which is read from then on.
    /// Requires: nothing has been read.
    /// @return false, with problem, if that failed; also if the work is to end
    bool spool(std::vector<char>& block, Problem& problem);
    /// Whether somebody has written to the file since it was opened or locked.
    bool hasChanged() const;
    /// The same, or has put another in its place.
    bool isAnother() const;
    void close();

    PassedOver passedOver() const { return m_passedOver; }
    bool isRegular() const { return m_status.isRegular(); }
    const FileStatus& status() const { return m_status; }
    int descriptor() const { return m_iFile; }
    /// Whether nothing has been read so far.
    bool isEmpty() const { return m_bEmpty; }
    /// Whether the last read() came to the end; it may also come to it later.
    bool isAtEnd() const { return m_bAtEnd; }
    /// That an output of its own is to have; for what is not regular that of any new file.
    unsigned mode() const { return isRegular() ? m_status.mode() & 0777U : 0666U; }
    int error() const { return m_iError; }

private:
    bool openFile();
    int openByName(int flags) const;
    bool lookAtName(FileStatus& status) const;
    /// Whether reading does not have to wait.
    bool isFile() const { return isRegular() || m_bSpooled; }
    int lockFile(Options::Lock how, bool exclusive);
    Problem lockedBy(bool exclusive) const;
    bool rememberError(int error);

    int m_iFile = -1;  // 0 only for the standard input, which is never closed
    Item m_item;
    bool m_bForWriting = false;
    FileStatus m_status = {};   // of the input itself, also if a copy is read
    std::int64_t m_iStart = 0;  // others may have read a part of the standard input
    bool m_bSpooled = false;
    PassedOver m_passedOver = PassedOver::kNot;
    bool m_bAtEnd = false;
    bool m_bEmpty = true;
    int m_iError = 0;
};

}  // namespace conv

#endif
