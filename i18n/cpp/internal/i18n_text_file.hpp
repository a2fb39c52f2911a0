#ifndef I18N_CPP_INTERNAL_I18N_TEXT_FILE_HPP
#define I18N_CPP_INTERNAL_I18N_TEXT_FILE_HPP

#include <cstddef>
#include <cstdio>
#include <memory>
#include <string>

/// A text file read line by line. It holds nothing of a file beyond the line it is at, and reads
/// no more than 16 MiB of one: a line that ends beyond is not there. Only regular files are opened.
///
/// Threads: not synchronised.
class I18NTextFile {
public:
    /// @throws std::bad_alloc when only memory was missing
    explicit I18NTextFile(const char* path);
    bool isOpen() const { return m_pFile != nullptr; }

    /// Reads the next line, without its end ("\n" or "\r\n") and without a byte-order mark at the
    /// beginning of the file. Of a line beyond 1 MiB nothing is kept: half a line would be read as
    /// something that nobody wrote.
    /// @return false at the end, or when the file is not open.
    [[nodiscard]] bool readLine(std::string& line);

private:
    struct Close {
        void operator()(std::FILE* file) const;
    };

    /// @return the next byte, EOF when there is none.
    int nextByte();

    std::unique_ptr<std::FILE, Close> m_pFile;
    std::size_t m_iRead = 0;
};

#endif
