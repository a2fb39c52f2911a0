#include "QBLCore/FileManagement/QBLFmFile.hpp"

#include "QBLCore/FileManagement/internal/QBLFmOperations.hpp"

namespace {

typedef QBLFmOperations<QBLFmFile> Operations;

}  // namespace

QBLFmFile::QBLFmFile() : m_message() {}

QBLFmFile::~QBLFmFile() { Operations(*this, m_file).closeQuietly(); }

long QBLFmFile::read(void* buffer, unsigned long size) {
    return Operations(*this, m_file).read(buffer, size);
}

long QBLFmFile::write(const void* buffer, unsigned long size) {
    return Operations(*this, m_file).write(buffer, size);
}

long QBLFmFile::seek(long offset, seekorigin origin) {
    return Operations(*this, m_file).seek(offset, origin);
}

bool QBLFmFile::append(QBLFmFile& other) {
    return Operations(*this, m_file).append(other, other.m_file);
}

bool QBLFmFile::open(const I18NString& name, createmode mode, int readOnly) {
    return Operations(*this, m_file).open(name, mode, readOnly);
}

bool QBLFmFile::open(const char* name, createmode mode, int readOnly) {
    return Operations(*this, m_file).open(name, mode, readOnly);
}

bool QBLFmFile::open(stdiotypes stream) { return Operations(*this, m_file).openStandard(stream); }

bool QBLFmFile::close() { return Operations(*this, m_file).close(); }

long QBLFmFile::getLength() { return Operations(*this, m_file).getLength(); }

bool QBLFmFile::flush() { return Operations(*this, m_file).flush(); }

bool QBLFmFile::truncate(long length) { return Operations(*this, m_file).truncate(length); }

int QBLFmFile::getLastErrorNumber() { return m_file.m_iLastError; }

const char* QBLFmFile::getLastErrorMessage() {
    return strerror_r(m_file.m_iLastError, m_message, sizeof m_message);
}

void QBLFmFile::logLastError() { m_file.m_iLastError = errno; }

int QBLFmFile::getFileDescriptor() const { return m_file.isOpen() ? m_file.m_iDescriptor : -1; }
