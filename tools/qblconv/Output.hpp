#ifndef TOOLS_QBLCONV_OUTPUT_HPP
#define TOOLS_QBLCONV_OUTPUT_HPP

#include <cstddef>
#include <memory>
#include <string>
#include <utility>

#include "QBLCore/FileManagement/QBLFmReplaceFile.hpp"
#include "QBLCore/Threads/QBLThreadCriticalSection.hpp"
#include "tools/qblconv/Input.hpp"

namespace conv {

/// Where converted text goes. What was not committed leaves no trace, unless it was written
/// straight through.
///
/// Threads: one at a time for each object.
class Output {
public:
    virtual ~Output();
    /// @return false unless all was written
    [[nodiscard]] virtual bool write(const char* bytes, std::size_t size) = 0;
    /// Puts the output in its place. @return false if it is not there now
    [[nodiscard]] virtual bool commit() = 0;
    /// Of the operation that failed.
    virtual int error() const = 0;
    /// Whether what is written stays, committed or not.
    virtual bool isDirect() const { return false; }
};

/// An open file, device or pipe.
class DirectOutput : public Output {
public:
    ~DirectOutput() override;
    /// The standard output.
    bool open();
    /// A file that is there; of a pipe, waits for the reader.
    bool open(const std::string& path);
    bool write(const char* bytes, std::size_t size) override;
    bool commit() override;
    int error() const override { return m_iError; }
    bool isDirect() const override { return true; }
    int descriptor() const { return m_iFile; }

private:
    bool rememberError(int error);

    int m_iFile = -1;
    bool m_bOurs = false;  // to be closed
    int m_iError = 0;
};

/// The new version of a file, which takes its place as a whole and waits for the disk.
class ReplacingOutput : public Output {
public:
    bool open(const std::string& path);
    bool open(const QBLFmDirectory& directory, const std::string& name);
    bool write(const char* bytes, std::size_t size) override;
    bool commit() override;
    int error() const override { return m_file.getLastErrorNumber(); }
    QBLFmReplaceFile& file() { return m_file; }

private:
    QBLFmReplaceFile m_file;
};

/// The directory that new files go into, for all workers. It is made when the first file comes.
///
/// Threads: any thread may call any operation.
class OutputRoot {
public:
    explicit OutputRoot(std::string path) : m_path(std::move(path)) {}
    /// @return null, with errno set, if it cannot be made or opened
    const QBLFmDirectory* get();

private:
    const std::string m_path;
    QBLThreadCriticalSection m_lock;
    QBLFmDirectory m_directory;  // under the lock until it is open
};

/// A new file, under another name until it is whole. It takes the place of one that is there, of a
/// link as well, and does not wait for the disk. The directories on the way to it are opened one
/// from the other, and none by a link, so that nobody who can write to the tree for outputs leads
/// them elsewhere.
class NewOutput : public Output {
public:
    explicit NewOutput(OutputRoot* root) : m_pRoot(root) {}
    ~NewOutput() override;
    /// Names the next one; nothing is made before something is written or committed. Directories
    /// below the one for outputs get the modes of those that the input is in, as far as they are
    /// to be made, but can be written by their owner.
    /// @param mode  of the file; as those of directories, less the umask
    void begin(const Item& item, unsigned mode);
    bool write(const char* bytes, std::size_t size) override;
    bool commit() override;
    int error() const override { return m_iError; }
    void discard();

private:
    bool create();
    bool enter(const Place* place, QBLFmDirectory& directory);
    bool close();
    bool rememberError(int error);

    OutputRoot* const m_pRoot;
    int m_iFile = -1;
    std::shared_ptr<const Place> m_pPlace;  // that the input is in
    std::string m_name;
    unsigned m_iMode = 0;
    std::string m_temporary;                 // empty while there is none
    std::shared_ptr<const Place> m_pOpened;  // whose directory for outputs is open
    QBLFmDirectory m_directory;
    const QBLFmDirectory* m_pTarget = nullptr;  // that the file is in
    bool m_bOpened = false;
    int m_iError = 0;
};

}  // namespace conv

#endif
