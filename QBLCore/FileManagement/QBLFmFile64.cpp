#include "QBLCore/FileManagement/QBLFmFile64.hpp"

#include <cstdlib>

#include "QBLCore/FileManagement/internal/QBLFmOperations.hpp"
#include "TavThread/shared/TavContain.hpp"

namespace {

/// The calls for offsets of 64 bits.
struct Calls {
    typedef int Count;
    typedef unsigned int Size;
    typedef long long Offset;
    static constexpr Offset kNoLength = 0;
    static constexpr Offset kLongest = LLONG_MAX;

    static int open(const char* name, int flags) { return open64(name, flags, 0666); }
    static Offset seek(int fd, Offset offset, int origin) { return lseek64(fd, offset, origin); }
    static int truncate(int fd, Offset length) { return ftruncate64(fd, length); }
};

typedef QBLFmOperations<Calls> Operations;

}  // namespace

QBLFmFile64::QBLFmFile64() : m_reserved(0), m_message() {
    // Another form of a name would be another file's.
    m_name.useNormalization(false);
}

QBLFmFile64::~QBLFmFile64() { Operations::closeQuietly(m_file); }

int QBLFmFile64::read(void* buffer, unsigned int size) {
    return Operations::read(*this, m_file, buffer, size);
}

int QBLFmFile64::write(const void* buffer, unsigned int size) {
    return Operations::write(*this, m_file, buffer, size);
}

long long QBLFmFile64::seek(long long offset, seekorigin origin) {
    return Operations::seek(*this, m_file, offset, origin);
}

bool QBLFmFile64::append(QBLFmFile64& other) {
    return Operations::append(*this, m_file, other, other.m_file);
}

bool QBLFmFile64::open(const I18NString& name, createmode mode, int readOnly) {
    return Operations::open(*this, name, mode, readOnly);
}

bool QBLFmFile64::open(const char* name, createmode mode, int readOnly) {
    // Closing drops the old name, which the new one may be.
    const std::unique_ptr<char, decltype(&std::free)> copy(
        m_file.isOpen() && name != nullptr ? strdup(name) : nullptr, &std::free);
    if (copy != nullptr)
        name = copy.get();
    else if (m_file.isOpen() && name != nullptr)
        return Operations::fail(*this, ENOMEM);
    if (!Operations::open(*this, m_file, name, mode, readOnly)) return false;
    // The file is open, with or without memory for its name.
    tavContain([&] { m_name = name; });
    return true;
}

bool QBLFmFile64::open(stdiotypes stream) {
    return Operations::openStandard(*this, m_file, stream);
}

bool QBLFmFile64::close() {
    m_name.remove();
    return Operations::close(*this, m_file);
}

long long QBLFmFile64::getLength() { return Operations::getLength(*this, m_file); }

bool QBLFmFile64::flush() { return Operations::flush(*this, m_file); }

bool QBLFmFile64::truncate(long long length) { return Operations::truncate(*this, m_file, length); }

int QBLFmFile64::getLastErrorNumber() { return m_file.m_iLastError; }

const char* QBLFmFile64::getLastErrorMessage() {
    return strerror_r(m_file.m_iLastError, m_message, sizeof m_message);
}

void QBLFmFile64::logLastError() { m_file.m_iLastError = errno; }

int QBLFmFile64::getFileDescriptor() const { return m_file.isOpen() ? m_file.m_iDescriptor : -1; }
