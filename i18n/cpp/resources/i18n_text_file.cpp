#include "i18n/cpp/resources/i18n_text_file.hpp"

#include <fcntl.h>

#include <cerrno>
#include <new>

#include "QBLCore/Base/QBLCloseQuietly.hpp"
#include "QBLCore/Base/QBLFileLook.hpp"

namespace {

constexpr std::size_t kLargestFile = std::size_t{16} << 20;

}  // namespace

I18NTextFile::I18NTextFile(const char* path) {
    // Does not block if the file is a pipe without a writer. Files that are not regular are refused
    // below, because they may have no end.
    const int fd = open64(path, O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (fd < 0) {
        settle(errno);
        return;
    }
    QBLFileStatus status;
    const bool known = status.get(fd);
    if (known && !status.isRegular()) errno = EINVAL;
    if (known && status.isRegular()) m_pFile.reset(fdopen(fd, "r"));
    if (m_pFile != nullptr) return;
    const int error = errno;
    qblCloseQuietly(fd);
    settle(error);
}

void I18NTextFile::settle(int error) {
    if (error == ENOMEM) throw std::bad_alloc();
    m_bNotSeen = !qblIsAbsence(error);
}

void I18NTextFile::Close::operator()(std::FILE* file) const {
    const QBLNoCancel noCancel;
    std::fclose(file);
}

int I18NTextFile::nextByte() {
    const int byte = getc_unlocked(m_pFile.get());
    if (byte == EOF) {
        m_bNotSeen = m_bNotSeen || ferror_unlocked(m_pFile.get()) != 0;
        return EOF;
    }
    m_bCut = m_iRead == kLargestFile;
    if (m_bCut) return EOF;
    ++m_iRead;
    return byte;
}

bool I18NTextFile::readLine(std::string& line) {
    line.clear();
    return isOpen() && i18nReadLine([this] { return nextByte(); }, line) && !m_bCut;
}

bool I18NTextFile::readBeginning(std::string& line, std::size_t most) {
    line.clear();
    if (!isOpen()) return false;
    int byte = nextByte();
    const bool any = byte != EOF;
    for (; byte != EOF && byte != '\n' && line.size() < most; byte = nextByte())
        line += static_cast<char>(byte);
    i18nTrimLine(line);
    return any;
}
