#include "QBLCore/Resources/QBLResourceBMF.hpp"

#include <arpa/inet.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <iterator>
#include <new>

#include "QBLCore/Base/QBLFileStatus.hpp"
#include "QBLCore/Exceptions/QBLOutOfMemoryError.hpp"
#include "QBLCore/Exceptions/QBLThrow.hpp"
#include "QBLCore/Exceptions/shared/QBLThrowNoMemory.hpp"

namespace {

const char kMagic[8] = "BMF1";
const unsigned kHeaderSize = 16;
const unsigned kEntrySize = 12;
// The index has always had 144 bytes per entry, but uses only 12 of them. It still has the spare
// bytes, but at most kMaxSpare of them, so that an allocation exceeds the size of the file by at
// most a constant.
const unsigned kSpareEntrySize = 144 - kEntrySize;
const unsigned kMaxSpare = 65536;

char* allocate(unsigned size) {
    char* block = new (std::nothrow) char[size];
    if (block == nullptr) qblThrowNoMemory(QBL_HERE);
    return block;
}

}  // namespace

QBLResourceBMF::QBLResourceBMF(int preload)
    : m_header(), m_pIndex(nullptr), m_pText(nullptr), m_textCapacity(0), m_preload(preload) {}

QBLResourceBMF::~QBLResourceBMF() { drop(); }

void QBLResourceBMF::drop() noexcept {
    ::operator delete(m_pIndex);
    delete[] m_pText;
    m_pIndex = nullptr;
    m_pText = nullptr;
    m_textCapacity = 0;
    m_header = Header();
}

bool QBLResourceBMF::open() {
    drop();
    m_file.close();
    // Reading a file that is not regular may wait for a writer, or never end.
    QBLFileStatus status;
    if (!status.get(getResourceFileName().c_str()) || !status.isRegular()) return false;
    if (!m_file.open(getResourceFileName().c_str(), QBLFmFile::existing, 1)) return false;
    if (readIndex() && (m_preload == 0 || readTexts())) {
        if (m_preload != 0) m_file.close();
        return true;
    }
    drop();
    m_file.close();
    return false;
}

void QBLResourceBMF::close() {
    if (m_preload == 0 && isOpen()) m_file.close();
}

bool QBLResourceBMF::isOpen() { return m_file.getFileDescriptor() >= 0; }

unsigned QBLResourceBMF::getEntryID(unsigned n) const { return ntohl(m_pIndex[n].id); }

unsigned QBLResourceBMF::getShape() const {
    unsigned shape = 0;
    for (const char* byte = m_header.magic + sizeof "BMF1"; byte != std::end(m_header.magic);
         ++byte)
        shape = shape << 8 | static_cast<unsigned char>(*byte);
    return shape;
}

bool QBLResourceBMF::readIndex() {
    const long length = m_file.getLength();
    if (length < static_cast<long>(kHeaderSize)) return false;
    if (readUpTo(&m_header, kHeaderSize) < kHeaderSize ||
        std::strncmp(m_header.magic, kMagic, sizeof kMagic) != 0) {
        m_header = Header();
        return false;
    }
    // The number of bytes after the header. If long has 64 bits, the number is limited to the range
    // of the 32-bit fields.
    const unsigned body = static_cast<unsigned>(
        std::min(static_cast<unsigned long>(length) - kHeaderSize, 0xFFFFFFFFUL - kHeaderSize));
    m_header.entries = std::min(static_cast<unsigned>(ntohl(m_header.entries)), body / kEntrySize);
    m_header.textSize = std::min(static_cast<unsigned>(ntohl(m_header.textSize)),
                                 body - kEntrySize * m_header.entries);
    const unsigned size = kEntrySize * m_header.entries;
    const unsigned spare =
        std::min(m_header.entries, kMaxSpare / kSpareEntrySize) * kSpareEntrySize;
    m_pIndex = static_cast<Entry*>(::operator new(std::size_t(size) + spare, std::nothrow));
    if (m_pIndex == nullptr) {
        m_file.close();
        drop();
        qblThrowNoMemory(QBL_HERE);
    }
    const unsigned got = readUpTo(m_pIndex, size);
    m_header.entries = got / kEntrySize;
    return true;
}

bool QBLResourceBMF::readTexts() {
    try {
        m_pText = allocate(m_header.textSize + 1);
    } catch (QBLOutOfMemoryError& e) {
        m_file.close();
        drop();
        QBL_RETHROW(e);
    }
    m_textCapacity = m_header.textSize;
    const unsigned got = readUpTo(m_pText, m_textCapacity);
    std::memset(m_pText + got, 0, m_textCapacity - got + 1);
    return true;
}

bool QBLResourceBMF::getResource(unsigned long id, char** text) {
    const Entry* end = m_pIndex + m_header.entries;
    const Entry* entry =
        std::lower_bound(static_cast<const Entry*>(m_pIndex), end, id,
                         [](const Entry& e, unsigned long wanted) { return ntohl(e.id) < wanted; });
    return entry != end && ntohl(entry->id) == id && fetch(*entry, text);
}

bool QBLResourceBMF::fetch(const Entry& entry, char** text) {
    const unsigned offset = ntohl(entry.offset);
    const unsigned length = ntohl(entry.length);
    if (offset > m_header.textSize || length > m_header.textSize - offset) return false;
    if (m_preload != 0) {
        *text = m_pText + offset;
        return true;
    }
    if (m_pText != nullptr && m_textCapacity < length) {
        delete[] m_pText;
        m_pText = nullptr;
    }
    if (m_pText == nullptr) {
        m_textCapacity = 0;
        m_pText = allocate(length + 1);
        m_textCapacity = length;
    }
    // The position does not exceed the length of the file, which is a long.
    const unsigned behindIndex = kHeaderSize + kEntrySize * m_header.entries;
    const long position = static_cast<long>(behindIndex) + static_cast<long>(offset);
    // If the text cannot be read, the caller's pointer stays unchanged, but the result is true:
    // programs use the result to find out whether the identifier exists.
    if (m_file.seek(position, QBLFmFile::begin) != position) return true;
    bool failed = false;
    const unsigned got = readUpTo(m_pText, length, &failed);
    if (failed) return true;
    std::memset(m_pText + got, 0, m_textCapacity - got + 1);
    *text = m_pText;
    return true;
}

unsigned QBLResourceBMF::readUpTo(void* buffer, unsigned size, bool* failed) {
    unsigned got = 0;
    while (got < size) {
        const long n = m_file.read(static_cast<char*>(buffer) + got, size - got);
        if (n < 0 && m_file.getLastErrorNumber() == EINTR) continue;
        if (n < 0 && failed != nullptr) *failed = true;
        if (n <= 0) break;
        got += static_cast<unsigned>(n);
    }
    return got;
}
