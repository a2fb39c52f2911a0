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

/// The destination of converted text. Text that was not committed leaves no trace, except in a
/// direct output.
///
/// Threads: one at a time for each object.
class Output {
public:
    virtual ~Output();
    /// @return true if all bytes were written
    [[nodiscard]] virtual bool write(const char* bytes, std::size_t size) = 0;
    /// Puts the output in its place.
    /// @return false on failure
    [[nodiscard]] virtual bool commit() = 0;
    /// The errno of the operation that failed.
    virtual int error() const = 0;
    /// Returns true if written text stays even without commit().
    virtual bool isDirect() const { return false; }
};

/// An open file, device or pipe.
class DirectOutput : public Output {
public:
    ~DirectOutput() override;
    /// The standard output.
    bool open();
    /// Opens an existing file. For a pipe, waits for its reader.
    bool open(const std::string& path);
    bool write(const char* bytes, std::size_t size) override;
    bool commit() override;
    int error() const override { return m_iError; }
    bool isDirect() const override { return true; }
    int descriptor() const { return m_iFile; }

private:
    bool rememberError(int error);

    int m_iFile = -1;
    bool m_bOurs = false;  // opened by this object, which closes it
    int m_iError = 0;
};

/// The new version of a file. commit() replaces the whole file and waits for the disk.
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

/// The directory for new files, common to all workers. It is created when the first file is
/// written.
///
/// Threads: any thread may call any operation.
class OutputRoot {
public:
    explicit OutputRoot(std::string path) : m_path(std::move(path)) {}
    /// @return null, with errno set, if the directory cannot be created or opened
    const QBLFmDirectory* get();

private:
    const std::string m_path;
    QBLThreadCriticalSection m_lock;
    QBLFmDirectory m_directory;  // guarded by m_lock until it is open
};

/// A new file, which has a temporary name until it is complete. commit() replaces an existing file
/// or link, and does not wait for the disk. Opens each directory on the way relative to its parent
/// and never follows a link, so that a user who can write to the output tree cannot redirect the
/// output.
class NewOutput : public Output {
public:
    explicit NewOutput(OutputRoot* root) : m_pRoot(root) {}
    ~NewOutput() override;
    /// Sets the next output; creates nothing before the first write() or commit(). New directories
    /// below the output directory get the modes of the input's directories, and are always writable
    /// by their owner.
    /// @param mode  mode of the file; the umask applies to it and to the directories
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
    std::shared_ptr<const Place> m_pPlace;  // directory of the input
    std::string m_name;
    unsigned m_iMode = 0;
    std::string m_temporary;                 // empty if no temporary file exists
    std::shared_ptr<const Place> m_pOpened;  // the input directory for which m_directory is open
    QBLFmDirectory m_directory;
    const QBLFmDirectory* m_pTarget = nullptr;  // directory of the file
    bool m_bOpened = false;
    int m_iError = 0;
};

}  // namespace conv

#endif
