#include "QBLCore/FileManagement/QBLFmFile64.hpp"

#include <algorithm>
#include <cstdlib>

#include "QBLCore/FileManagement/internal/QBLFmOperations.hpp"
#include "TavThread/shared/TavContain.hpp"

namespace {

typedef QBLFmOperations<QBLFmFile64> Operations;

}  // namespace

QBLFmFile64::QBLFmFile64() : m_reserved(0), m_message() {
    static_cast<void>(m_reserved);  // or clang warns that nothing uses the field
    // Another form of a name could name another file.
    m_name.useNormalization(false);
}

QBLFmFile64::~QBLFmFile64() { Operations(*this, m_file).closeQuietly(); }

int QBLFmFile64::read(void* buffer, unsigned int size) {
    return Operations(*this, m_file).read(buffer, size);
}

int QBLFmFile64::write(const void* buffer, unsigned int size) {
    return Operations(*this, m_file).write(buffer, size);
}

long long QBLFmFile64::seek(long long offset, seekorigin origin) {
    return Operations(*this, m_file).seek(offset, origin);
}

bool QBLFmFile64::append(QBLFmFile64& other) {
    return Operations(*this, m_file).append(other, other.m_file);
}

bool QBLFmFile64::open(const I18NString& name, createmode mode, int readOnly) {
    return Operations(*this, m_file).open(name, mode, readOnly);
}

bool QBLFmFile64::open(const char* name, createmode mode, int readOnly) {
    // Closing deletes the old name, and `name` may point into it.
    const std::unique_ptr<char, decltype(&std::free)> copy(
        m_file.isOpen() && name != nullptr ? strdup(name) : nullptr, &std::free);
    if (copy != nullptr)
        name = copy.get();
    else if (m_file.isOpen() && name != nullptr)
        return Operations(*this, m_file).rememberError(ENOMEM);
    if (!Operations(*this, m_file).open(name, mode, readOnly)) return false;
    // The file stays open even if memory runs out for its name.
    tavContain([&] { m_name = name; });
    return true;
}

bool QBLFmFile64::open(stdiotypes stream) { return Operations(*this, m_file).openStandard(stream); }

bool QBLFmFile64::close() {
    m_name.remove();
    return Operations(*this, m_file).close();
}

// Deliberately returns 0 where QBLFmFile returns -1.
long long QBLFmFile64::getLength() { return std::max(Operations(*this, m_file).getLength(), 0LL); }

bool QBLFmFile64::flush() { return Operations(*this, m_file).flush(); }

bool QBLFmFile64::truncate(long long length) { return Operations(*this, m_file).truncate(length); }

int QBLFmFile64::getLastErrorNumber() { return m_file.m_iLastError; }

const char* QBLFmFile64::getLastErrorMessage() {
    return strerror_r(m_file.m_iLastError, m_message, sizeof m_message);
}

void QBLFmFile64::logLastError() { m_file.m_iLastError = errno; }

int QBLFmFile64::getFileDescriptor() const { return m_file.isOpen() ? m_file.m_iDescriptor : -1; }
