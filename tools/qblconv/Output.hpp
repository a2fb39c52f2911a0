#ifndef TOOLS_QBLCONV_OUTPUT_HPP
#define TOOLS_QBLCONV_OUTPUT_HPP

#include <cstddef>
#include <string>

#include "QBLCore/FileManagement/QBLFmFile64.hpp"
#include "QBLCore/FileManagement/QBLFmReplaceFile.hpp"

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
    /// The standard output.
    bool open();
    /// A file that is there.
    bool open(const std::string& path);
    bool write(const char* bytes, std::size_t size) override;
    bool commit() override;
    int error() const override { return m_error; }
    bool isDirect() const override { return true; }
    int descriptor() const;

private:
    QBLFmFile64 m_file;
    int m_error = 0;
};

/// The new version of a file, which takes its place as a whole and waits for the disk.
class ReplacingOutput : public Output {
public:
    bool open(const std::string& path);
    bool write(const char* bytes, std::size_t size) override;
    bool commit() override;
    int error() const override { return m_file.getLastErrorNumber(); }

private:
    QBLFmReplaceFile m_file;
};

/// A new file, under another name until it is whole. It takes the place of one that is there, of a
/// link as well, and does not wait for the disk.
class NewOutput : public Output {
public:
    ~NewOutput() override;
    /// Names the next one; nothing is made before something is written or committed. Directories
    /// below the one for outputs get the modes of those that the input is in, as far as they are
    /// to be made, but can be written by their owner.
    /// @param name  below the directory; the end of the input's path, if that has directories
    /// @param mode  of the file; as those of directories, less the umask
    void begin(const std::string& directory, const std::string& name, const std::string& input,
               unsigned mode);
    bool write(const char* bytes, std::size_t size) override;
    bool commit() override;
    int error() const override { return m_error; }
    void discard();

private:
    bool create();
    bool createDirectories(std::size_t length);
    bool createTemporary(const std::string& name);
    bool failed(int error);

    QBLFmFile64 m_file;
    std::string m_path, m_input;
    std::size_t m_iBase = 0;  // how much of the path is the directory for outputs
    unsigned m_iMode = 0;
    std::string m_temporary;  // empty while there is none
    std::string m_directory;  // known to be there
    int m_error = 0;
};

}  // namespace conv

#endif
