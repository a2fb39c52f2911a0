#ifndef I18N_CPP_RESOURCES_I18N_TEXT_FILE_HPP
#define I18N_CPP_RESOURCES_I18N_TEXT_FILE_HPP

#include <cstddef>
#include <cstdio>
#include <memory>
#include <string>

/// Removes a carriage return from the end of a line, and a byte-order mark from its start.
inline void i18nTrimLine(std::string& line) {
    if (!line.empty() && line.back() == '\r') line.pop_back();
    if (line.compare(0, 3, "\xEF\xBB\xBF") == 0) line.erase(0, 3);
}

/// Reads a line of bytes up to "\n" or "\r\n". Leaves out the line end and a byte-order mark at the
/// start. A line longer than 1 MiB becomes empty, because a part of a line could have a different
/// meaning.
/// @param nextByte  returns a byte or EOF
/// @return false if there is no byte at all
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

/// Reads a text file line by line. Keeps only the current line in memory. Reads at most 16 MiB of a
/// file: a line that ends after that is not returned. Opens regular files only.
///
/// Threads: not synchronised.
class I18NTextFile {
public:
    /// @throws std::bad_alloc if memory is exhausted
    explicit I18NTextFile(const char* path);
    bool isOpen() const { return m_pFile != nullptr; }
    /// Returns true if the contents of the file are unknown: it may exist, but could not be opened
    /// or could not be read to its end.
    bool isNotSeen() const { return m_bNotSeen; }

    /// Reads the next line, as i18nReadLine() does.
    /// @return false at the end, or if the file is not open
    [[nodiscard]] bool readLine(std::string& line);
    /// Reads the next line, but at most `most` bytes of it.
    [[nodiscard]] bool readBeginning(std::string& line, std::size_t most);

private:
    struct Close {
        void operator()(std::FILE* file) const;
    };

    /// @return the next byte; EOF at the end of the file, after an error, or after 16 MiB
    int nextByte();
    void settle(int error);

    std::unique_ptr<std::FILE, Close> m_pFile;
    std::size_t m_iRead = 0;
    bool m_bCut = false;  // the file is longer than 16 MiB
    bool m_bNotSeen = false;
};

#endif
