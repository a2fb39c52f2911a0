#ifndef I18N_CPP_RESOURCES_I18N_TEXT_FILE_HPP
#define I18N_CPP_RESOURCES_I18N_TEXT_FILE_HPP

#include <cstddef>
#include <cstdio>
#include <memory>
#include <string>

/// Takes the carriage return of a line end and a byte-order mark off a line.
inline void i18nTrimLine(std::string& line) {
    if (!line.empty() && line.back() == '\r') line.pop_back();
    if (line.compare(0, 3, "\xEF\xBB\xBF") == 0) line.erase(0, 3);
}

/// Reads bytes into a line up to its end, "\n" or "\r\n", which is left out, as is a byte-order
/// mark in front. Of a line beyond 1 MiB nothing is kept: half a line would be read as something
/// that nobody wrote.
/// @param nextByte  gives a byte, or EOF
/// @return false when there is no byte at all.
template <class NextByte>
bool i18nReadLine(NextByte nextByte, std::string& line) {
    constexpr std::size_t kLongest = std::size_t{1} << 20;
    line.clear();
    int byte = nextByte();
    if (byte == EOF) return false;
    bool tooLong = false;
    for (; byte != EOF && byte != '\n'; byte = nextByte()) {
        tooLong = tooLong || line.size() == kLongest;
        if (!tooLong) line += static_cast<char>(byte);
    }
    if (tooLong) line.clear();
    i18nTrimLine(line);
    return true;
}

/// A text file read line by line. It holds nothing of a file beyond the line it is at, and reads
/// no more than 16 MiB of one: a line that ends beyond is not there. Only regular files are opened.
///
/// Threads: not synchronised.
class I18NTextFile {
public:
    /// @throws std::bad_alloc when only memory was missing
    explicit I18NTextFile(const char* path);
    bool isOpen() const { return m_pFile != nullptr; }
    /// Whether it is not known what the file has: it may be there, but could not be opened, or not
    /// be read to its end.
    bool isNotSeen() const { return m_bNotSeen; }

    /// Reads the next line, as i18nReadLine() does.
    /// @return false at the end, or when the file is not open.
    [[nodiscard]] bool readLine(std::string& line);
    /// Reads the next line, but no more of it than a number of bytes.
    [[nodiscard]] bool readBeginning(std::string& line, std::size_t most);

private:
    struct Close {
        void operator()(std::FILE* file) const;
    };

    /// @return the next byte, EOF when there is none.
    int nextByte();
    void settle(int error);

    std::unique_ptr<std::FILE, Close> m_pFile;
    std::size_t m_iRead = 0;
    bool m_bCut = false;  // more is there than is read
    bool m_bNotSeen = false;
};

#endif
