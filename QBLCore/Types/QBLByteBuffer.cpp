#include "QBLCore/Types/QBLByteBuffer.hpp"

#include <algorithm>
#include <cctype>
#include <cstdint>
#include <memory>
#include <new>

#include "QBLCore/Base/QBLSurplus.hpp"
#include "QBLCore/Exceptions/QBLOutOfMemoryError.hpp"
#include "QBLCore/Types/internal/QBLByteBufferAlloc.hpp"
#include "QBLCore/Types/internal/QBLByteBufferAssert.hpp"

namespace {

const unsigned int kDefaultBlock = 8;
const unsigned int kDefaultPrintfBuffer = 4096;
const std::uint64_t kMost = 0xFFFFFFFE;  // the largest capacity; its array has one byte more
const unsigned int kLarge = 64U << 20;   // an array of this size grows by an eighth, not by half

using Array = std::unique_ptr<char[]>;

unsigned int checkedLimit(std::uint64_t limit) {
    if (limit > kMost) QBL_THROW(QBLOutOfMemoryError(0, nullptr));
    return static_cast<unsigned int>(limit);
}

/// (n + block) / block * block - 1, which may exceed kMost.
std::uint64_t roundUp(unsigned int n, unsigned int block) {
    return std::uint64_t{n} + (block - 1 - n % block);
}

std::size_t arraySize(unsigned int limit) { return std::size_t{limit} + 1; }

Array newArray(unsigned int limit) {
    QBL_BUFFER_ALLOC_TRY
    return Array(new char[arraySize(limit)]);
    QBL_BUFFER_ALLOC_CATCH
}

/// Copies the bytes to the start of the array. Sets all other bytes to zero, because setLength()
/// may make them content.
Array filled(Array array, unsigned int limit, const char* bytes, std::size_t count) {
    if (count != 0) std::memcpy(array.get(), bytes, count);
    std::memset(array.get() + count, 0, arraySize(limit) - count);
    return array;
}

bool isSpace(char c) { return std::isspace(static_cast<unsigned char>(c)) != 0; }

}  // namespace

QBLByteBuffer::QBLByteBuffer(unsigned int initialSize, unsigned int blockSize)
    : QBLByteBuffer(GROW_BY_BLOCK, initialSize, blockSize) {}

QBLByteBuffer::QBLByteBuffer(Growth growth, unsigned int initialSize, unsigned int blockSize)
    : m_pBuffer(nullptr),
      m_iCount(0),
      m_iAllocLimit(initialSize),
      m_iBlockSize(blockSize != 0 ? blockSize : kDefaultBlock),
      m_iPrintfBufferSize(kDefaultPrintfBuffer),
      m_iRadix(10),
      m_iArrayLimit(0) {
    if (growth != GROW_BY_BLOCK) m_iBlockSize = 0;
    if (m_iBlockSize != 0) m_iAllocLimit = roundUpToBlockSizeMultiple(initialSize);
    m_iArrayLimit = checkedLimit(m_iAllocLimit);
    m_pBuffer = filled(newArray(m_iArrayLimit), m_iArrayLimit, nullptr, 0).release();
}

QBLByteBuffer::QBLByteBuffer(const QBLByteBuffer& other)
    : m_pBuffer(nullptr),
      m_iCount(other.m_iCount),
      m_iAllocLimit(other.m_iAllocLimit),
      m_iBlockSize(other.m_iBlockSize),
      m_iPrintfBufferSize(other.m_iPrintfBufferSize),
      m_iRadix(other.m_iRadix),
      m_iArrayLimit(other.m_iAllocLimit) {
    QBL_BUFFER_ASSERT(other.m_iCount <= other.m_iAllocLimit,
                      "other.m_iCount <= other.m_iAllocLimit",
                      " copy constructor] Invalid buffer allocation limit.");
    m_pBuffer =
        filled(newArray(m_iArrayLimit), m_iArrayLimit, other.m_pBuffer, other.m_iCount).release();
}

QBLByteBuffer& QBLByteBuffer::operator=(const QBLByteBuffer& other) {
    if (this == &other) return *this;
    QBL_BUFFER_ASSERT(other.m_iCount <= other.m_iAllocLimit,
                      "other.m_iCount <= other.m_iAllocLimit",
                      " assignment operator] Invalid buffer allocation limit.");
    if (m_iArrayLimit < other.m_iAllocLimit) {
        Array array = filled(newArray(other.m_iAllocLimit), other.m_iAllocLimit, other.m_pBuffer,
                             other.m_iCount);
        delete[] m_pBuffer;
        m_pBuffer = array.release();
        m_iArrayLimit = other.m_iAllocLimit;
    } else {
        std::memcpy(m_pBuffer, other.m_pBuffer, other.m_iCount);
        m_pBuffer[other.m_iCount] = '\0';
    }
    m_iCount = other.m_iCount;
    m_iAllocLimit = other.m_iAllocLimit;
    m_iBlockSize = other.m_iBlockSize;
    m_iPrintfBufferSize = other.m_iPrintfBufferSize;
    m_iRadix = other.m_iRadix;
    return *this;
}

QBLByteBuffer::~QBLByteBuffer() { delete[] m_pBuffer; }

void QBLByteBuffer::setLength(unsigned int n) {
    QBL_BUFFER_ASSERT_ARRAY("setLength");
    if (n <= m_iAllocLimit) m_iCount = n;
    m_pBuffer[m_iCount] = '\0';
}

unsigned int QBLByteBuffer::chop(unsigned int n) {
    QBL_BUFFER_ASSERT_ARRAY("chop");
    if (n == 0) return m_iCount;
    if (n > m_iCount) n = m_iCount;
    m_iCount -= n;
    std::memmove(m_pBuffer, m_pBuffer + n, m_iCount);
    m_pBuffer[m_iCount] = '\0';
    return m_iCount;
}

unsigned int QBLByteBuffer::trimFront() {
    QBL_BUFFER_ASSERT_ARRAY("trimFront");
    unsigned int blanks = 0;
    while (blanks < m_iCount && isSpace(m_pBuffer[blanks])) ++blanks;
    return chop(blanks);
}

unsigned int QBLByteBuffer::trimBack() {
    QBL_BUFFER_ASSERT_ARRAY("trimBack");
    unsigned int length = m_iCount;
    while (length != 0 && isSpace(m_pBuffer[length - 1])) --length;
    setLength(length);
    return length;
}

unsigned int QBLByteBuffer::trim() {
    trimFront();
    return trimBack();
}

unsigned int QBLByteBuffer::roundUpToBlockSizeMultiple(unsigned int n) const {
    QBL_BUFFER_ASSERT(m_iBlockSize != 0, "0 != m_iBlockSize",
                      "::roundUpToBlockSizeMultiple] The allocation block size cannot be zero.");
    return checkedLimit(roundUp(n, m_iBlockSize));
}

void QBLByteBuffer::reset() {
    QBL_BUFFER_ASSERT_ARRAY("reset");
    m_iCount = 0;
    m_pBuffer[0] = '\0';
}

int QBLByteBuffer::setHexRadix(int on) {
    const int before = m_iRadix;
    m_iRadix = on != 0 ? 16 : 10;
    return before;
}

unsigned int QBLByteBuffer::setPrintfBufferSize(unsigned int size) {
    const unsigned int before = m_iPrintfBufferSize;
    m_iPrintfBufferSize = size;
    return before;
}

// The appended bytes may be in the array that grow() replaces. That array is therefore freed only
// after the copy.
QBLByteBuffer& QBLByteBuffer::appendGrowing(const char* p, std::size_t length) {
    QBL_BUFFER_ASSERT_ARRAY("appendChars");
    if (length == 0) return *this;
    QBL_ASSERT(p != NULL);
    const std::uint64_t needed = std::uint64_t{m_iCount} + length;
    const Array replaced(needed > m_iAllocLimit ? grow(needed) : nullptr);
    std::memmove(m_pBuffer + m_iCount, p, length);
    m_iCount += static_cast<unsigned int>(length);
    m_pBuffer[m_iCount] = '\0';
    return *this;
}

QBLByteBuffer& QBLByteBuffer::appendGrowing(char c) {
    QBL_BUFFER_ASSERT_ARRAY("operator<<(char c)");
    return append(&c, 1);
}

// Raises the capacity to at least `needed`, which must exceed the old capacity. Returns the
// replaced array for the caller to delete, or null if the present array is large enough.
char* QBLByteBuffer::grow(unsigned long long needed) {
    const unsigned int n = checkedLimit(needed);
    std::uint64_t limit = m_iAllocLimit;
    if (m_iBlockSize != 0) {
        limit = roundUp(n, m_iBlockSize);
    } else {
        if (n / 3 < m_iAllocLimit / 2) limit += m_iAllocLimit / 2;
        limit = std::max<std::uint64_t>(std::min(limit, kMost), n);
    }
    const unsigned int checked = checkedLimit(limit);
    char* const replaced = checked > m_iArrayLimit ? replaceArray(checked) : nullptr;
    m_iAllocLimit = checked;
    return replaced;
}

// Tries to grow the array by half or by an eighth of its present size, even if `limit` needs less.
// Each byte is then moved only a few times, even with small blocks. Each failed attempt halves this
// surplus, so that the new array gets about half of the possible surplus or more. Only the
// allocation without a surplus may call a new-handler.
char* QBLByteBuffer::replaceArray(unsigned int limit) {
    unsigned int surplus = m_iArrayLimit / (m_iArrayLimit < kLarge ? 2 : 8);
    unsigned int arrayLimit = limit;
    Array array;
    for (; array == nullptr; surplus /= 2) {
        const std::uint64_t ample = std::min(std::uint64_t{m_iArrayLimit} + surplus, kMost);
        if (ample <= limit) break;
        arrayLimit = static_cast<unsigned int>(ample);
        if (!qblMayTakeSurplus(arraySize(arrayLimit))) continue;
        array.reset(new (std::nothrow) char[arraySize(arrayLimit)]);
    }
    if (array == nullptr) array = newArray(arrayLimit = limit);
    array = filled(std::move(array), arrayLimit, m_pBuffer, arraySize(m_iAllocLimit));
    char* const replaced = m_pBuffer;
    m_pBuffer = array.release();
    m_iArrayLimit = arrayLimit;
    return replaced;
}
