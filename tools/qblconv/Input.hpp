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

/// An open input directory, with its parents up to the operand.
struct Place {
    QBLFmDirectory directory;
    std::string name;  // name in the parent; for an operand, the last part of its path, or empty
    unsigned mode = 0;
    std::shared_ptr<const Place> above;  // null for the directory of an operand
};

/// An input file.
struct Item {
    /// How the tool found a file. The tool waits only for a named file that is not replaced, for
    /// example a pipe.
    enum class Origin { kNamed, kNamedInPlace, kFound };

    std::string path;  // begins with the operand; "-" for the standard input
    std::string name;  // path below the output directory
    Origin origin = Origin::kNamed;
    std::shared_ptr<const Place> place;  // null for a named file that is not replaced
    std::string leaf;                    // the file's name in `place`
    int error = 0;  // errno if the file or directory at `path` cannot be examined, else 0
};

/// A file that is read. A file with a place is opened by its name in that directory, never through
/// a link.
///
/// Threads: one at a time for each object.
class Input {
public:
    /// Why a found file is skipped.
    enum class PassedOver { kNot, kNotRegular, kLink, kBrokenLink };

    Input() = default;
    ~Input() { close(); }
    Input(const Input&) = delete;
    Input& operator=(const Input&) = delete;

    /// @return false if the file cannot be read or is skipped
    bool open(const Item& item, bool forWriting);
    /// Locks the file, exclusively or shared. If the file was replaced during the wait, locks the
    /// file that has the name afterwards.
    /// @return false, with problem, on failure
    bool lock(Options::Lock how, bool exclusive, Problem& problem);
    /// Reads a block. For a regular file, only the last block may be shorter than size.
    /// @return the number of bytes, 0 at the end, -1 on failure
    int read(char* block, unsigned size);
    /// Returns to the start position.
    /// Requires: the input is a regular file, or spool() was called.
    bool rewind();
    /// Makes rewind() work for any input: copies an input that is not a regular file into a
    /// temporary file, and reads this copy from then on.
    /// Requires: nothing has been read yet.
    /// @return false, with problem, on failure; also false after an interrupt
    bool spool(std::vector<char>& block, Problem& problem);
    /// Returns true if a program has written to the file since it was opened or locked.
    bool hasChanged() const;
    /// Returns true if hasChanged(), or if the name now belongs to another file.
    bool isAnother() const;
    void close();

    PassedOver passedOver() const { return m_passedOver; }
    bool isRegular() const { return m_status.isRegular(); }
    const FileStatus& status() const { return m_status; }
    int descriptor() const { return m_iFile; }
    /// Returns true if no bytes have been read so far.
    bool isEmpty() const { return m_bEmpty; }
    /// Returns true if a read() has reached the end. May be false at the end, until the next
    /// read().
    bool isAtEnd() const { return m_bAtEnd; }
    /// The mode for the output of this input; the default mode of new files if the input is not a
    /// regular file.
    unsigned mode() const { return isRegular() ? m_status.mode() & 0777U : 0666U; }
    int error() const { return m_iError; }

private:
    bool openFile();
    int openByName(int flags) const;
    bool lookAtName(FileStatus& status) const;
    /// Returns true if reading never waits for another program.
    bool isFile() const { return isRegular() || m_bSpooled; }
    int lockFile(Options::Lock how, bool exclusive);
    Problem lockedBy(bool exclusive) const;
    bool rememberError(int error);

    int m_iFile = -1;  // 0 only for the standard input; the class never closes that
    Item m_item;
    bool m_bForWriting = false;
    FileStatus m_status = {};   // of the input itself, even if a copy is read
    std::int64_t m_iStart = 0;  // above 0 if others have read a part of the standard input
    bool m_bSpooled = false;
    PassedOver m_passedOver = PassedOver::kNot;
    bool m_bAtEnd = false;
    bool m_bEmpty = true;
    int m_iError = 0;
};

}  // namespace conv

#endif
