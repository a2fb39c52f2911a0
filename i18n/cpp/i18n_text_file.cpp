#include "i18n/cpp/internal/i18n_text_file.hpp"

#include "QBLCore/FileManagement/internal/QBLFmNoCancel.hpp"

namespace {

constexpr std::size_t kLongestLine = std::size_t{1} << 20;
constexpr std::size_t kLargestFile = std::size_t{16} << 20;

const char kByteOrderMark[] = "\xEF\xBB\xBF";

}  // namespace

I18NTextFile::I18NTextFile(const char* path) : m_pFile(fopen64(path, "re")) {}

void I18NTextFile::Close::operator()(std::FILE* file) const {
    const QBLFmNoCancel noCancel;
    std::fclose(file);
}

int I18NTextFile::nextByte() {
    if (m_iRead == kLargestFile) return EOF;
    const int byte = getc_unlocked(m_pFile.get());
    if (byte != EOF) ++m_iRead;
    return byte;
}

bool I18NTextFile::readLine(std::string& line) {
    line.clear();
    if (!isOpen()) return false;
    const bool first = m_iRead == 0;
    int byte = nextByte();
    if (byte == EOF) return false;
    bool tooLong = false;
    for (; byte != EOF && byte != '\n'; byte = nextByte()) {
        tooLong = tooLong || line.size() == kLongestLine;
        if (!tooLong) line += static_cast<char>(byte);
    }
    if (tooLong) line.clear();
    if (!line.empty() && line.back() == '\r') line.pop_back();
    if (first && line.compare(0, 3, kByteOrderMark) == 0) line.erase(0, 3);
    return true;
}
