#include "QBLCore/FileManagement/QBLFmFile.hpp"

#include "QBLCore/FileManagement/internal/QBLFmOperations.hpp"

namespace {

/// The calls for offsets of long: the system's plain ones, which know the limit.
struct Calls {
    typedef long Count;
    typedef unsigned long Size;
    typedef long Offset;
    static constexpr Offset kNoLength = -1;
    static constexpr Offset kLongest = LONG_MAX;

    static int open(const char* name, int flags) { return ::open(name, flags, 0666); }
    static Offset seek(int fd, Offset offset, int origin) { return lseek(fd, offset, origin); }
    static int truncate(int fd, Offset length) { return ftruncate(fd, length); }
};

typedef QBLFmOperations<Calls> Operations;

}  // namespace

QBLFmFile::QBLFmFile() : m_message() {}

QBLFmFile::~QBLFmFile() { Operations::closeQuietly(m_file); }

long QBLFmFile::read(void* buffer, unsigned long size) {
    return Operations::read(*this, m_file, buffer, size);
}

long QBLFmFile::write(const void* buffer, unsigned long size) {
    return Operations::write(*this, m_file, buffer, size);
}

long QBLFmFile::seek(long offset, seekorigin origin) {
    return Operations::seek(*this, m_file, offset, origin);
}

bool QBLFmFile::append(QBLFmFile& other) {
    return Operations::append(*this, m_file, other, other.m_file);
}

bool QBLFmFile::open(const I18NString& name, createmode mode, int readOnly) {
    return Operations::open(*this, name, mode, readOnly);
}

bool QBLFmFile::open(const char* name, createmode mode, int readOnly) {
    return Operations::open(*this, m_file, name, mode, readOnly);
}

bool QBLFmFile::open(stdiotypes stream) { return Operations::openStandard(*this, m_file, stream); }

bool QBLFmFile::close() { return Operations::close(*this, m_file); }

long QBLFmFile::getLength() { return Operations::getLength(*this, m_file); }

bool QBLFmFile::flush() { return Operations::flush(*this, m_file); }

bool QBLFmFile::truncate(long length) { return Operations::truncate(*this, m_file, length); }

int QBLFmFile::getLastErrorNumber() { return m_file.m_iLastError; }

const char* QBLFmFile::getLastErrorMessage() {
    return strerror_r(m_file.m_iLastError, m_message, sizeof m_message);
}

void QBLFmFile::logLastError() { m_file.m_iLastError = errno; }

int QBLFmFile::getFileDescriptor() const { return m_file.isOpen() ? m_file.m_iDescriptor : -1; }
