#include "i18n/cpp/internal/i18n_text_file.hpp"

#include <fcntl.h>

#include <cerrno>
#include <new>

#include "QBLCore/FileManagement/internal/QBLFmNoCancel.hpp"
#include "QBLCore/FileManagement/internal/QBLFmStatus.hpp"

namespace {

constexpr std::size_t kLargestFile = std::size_t{16} << 20;

}  // namespace

I18NTextFile::I18NTextFile(const char* path) {
    // Without waiting: whatever is no regular file may have no end, or nobody who writes to it.
    const int fd = open64(path, O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (fd < 0 && errno == ENOMEM) throw std::bad_alloc();
    if (fd < 0) return;
    QBLFmStatus status;
    const bool known = status.get(fd);
    const bool regular = known && status.isRegular();
    if (regular) m_pFile.reset(fdopen(fd, "r"));
    if (m_pFile != nullptr) return;
    const bool exhausted = (regular || !known) && errno == ENOMEM;
    qblCloseQuietly(fd);
    if (exhausted) throw std::bad_alloc();
}

void I18NTextFile::Close::operator()(std::FILE* file) const {
    const QBLFmNoCancel noCancel;
    std::fclose(file);
}

int I18NTextFile::nextByte() {
    const int byte = getc_unlocked(m_pFile.get());
    if (byte != EOF) ++m_iRead;
    return byte;
}

bool I18NTextFile::readLine(std::string& line) {
    line.clear();
    return isOpen() && i18nReadLine([this] { return nextByte(); }, line) && m_iRead <= kLargestFile;
}
