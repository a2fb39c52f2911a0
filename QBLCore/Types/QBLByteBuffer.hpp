#ifndef QBLCORE_TYPES_QBLBYTEBUFFER_HPP
#define QBLCORE_TYPES_QBLBYTEBUFFER_HPP

#include <cstddef>
#include <cstring>

#include "QBLCore/Frame/QBLExport.h"
#include "QBLCore/Frame/QBLLanguage.hpp"

/// A byte string that grows when bytes are appended. It is always null-terminated and may also
/// contain null bytes. Arguments may point into the buffer itself, even if the operation grows the
/// buffer.
///
/// The capacity grows exactly as documented, by whole blocks or by half: setLength() ignores
/// lengths above the capacity. The allocated array may be larger than the capacity. The array grows
/// by up to half of its size, or by up to an eighth if it has 64 MiB or more. The average cost of
/// an appended byte is therefore constant, even with small blocks. If memory does not suffice for
/// the larger array, the buffer tries smaller arrays, down to the needed size. Only the attempt
/// with the needed size calls a new-handler.
///
/// Errors: QBLOutOfMemoryError if memory runs out, or if the capacity, rounded up to whole blocks,
/// would exceed 4,294,967,294 bytes (growth by half stops at this limit); QBLAssertError where
/// documented. If the program replaces operator new, it may throw other exceptions: a QBLThrowable
/// gets a trace entry and is passed on; a std::exception becomes a QBLStdExceptionError; any other
/// exception is passed on unchanged. After an error, the content is unchanged.
///
/// Threads: one thread at a time for each object.
///
///     QBLByteBuffer line(QBLByteBuffer::GROW_BY_HALF);
///     line << "port " << 8080 << ',' << ' ';
///     line.printf("%.1f s", 0.5);
///     send(line.str(), line.pcount());  // port 8080, 0.5 s
class QBL_API QBLByteBuffer {
public:
    /// @name Making a buffer
    /// @{

    /// Any value except 0 selects growth by half.
    enum Growth : unsigned int { GROW_BY_BLOCK = 0, GROW_BY_HALF = 1 };

    /// Creates a buffer that grows by blocks: the capacity plus 1 is a multiple of the block size.
    /// @param initialSize  the minimum capacity in bytes
    /// @param blockSize  in bytes; 0 means 8
    explicit QBLByteBuffer(unsigned int initialSize = 0, unsigned int blockSize = 0);
    /// Creates a buffer that grows by blocks or by half. With growth by half, the capacity is
    /// initialSize at first.
    /// @param blockSize  ignored with growth by half
    explicit QBLByteBuffer(Growth growth, unsigned int initialSize = 0, unsigned int blockSize = 0);
    /// Copies content, capacity and settings.
    QBLByteBuffer(const QBLByteBuffer& other);
    /// Copies content, capacity and settings, even if this reduces the capacity.
    QBLByteBuffer& operator=(const QBLByteBuffer& other);
    virtual ~QBLByteBuffer();
    /// @}

    /// @name Capacity and length
    /// @{

    /// Raises the capacity to at least n bytes in total. With growth by half, the buffer grows by
    /// half if this is enough, otherwise to n. Growth, here and in other operations, invalidates
    /// pointers into the array.
    void reserve(unsigned int n) {
        if (n > m_iAllocLimit) delete[] grow(n);
    }
    /// Truncates or extends the content to n bytes. The added bytes are what the array contains
    /// after the old content: bytes that the caller wrote through str(), remains of earlier
    /// content, or zeros. Ignores a length above the capacity.
    void setLength(unsigned int n);
    /// @}

    /// @name Removing
    /// @{

    /// Removes the first n bytes, or all if there are fewer.
    /// @return the new length; the three operations below also return it
    unsigned int chop(unsigned int n);
    /// Removes white space, as isspace(3) defines it, from the front, the back or both.
    unsigned int trimFront();
    unsigned int trimBack();
    unsigned int trim();
    /// @}

    /// @name Blocks
    /// @{

    /// Returns the capacity for n bytes in whole blocks: ((n + block) / block) * block - 1.
    /// @throws QBLAssertError if the buffer grows by half
    unsigned int roundUpToBlockSizeMultiple(unsigned int n) const;
    /// @}

    /// @name Appending
    /// @{

    /// Appends len bytes. This and the operators return the buffer. The inline code handles only
    /// calls that need no growth and find no error.
    /// @param p  points to len bytes
    /// @throws QBLAssertError if p is null and len is not 0
    QBLByteBuffer& appendChars(const char* p, unsigned int len) { return append(p, len); }
    QBLByteBuffer& operator<<(const QBLByteBuffer& other) {
        return append(other.m_pBuffer, other.m_iCount);
    }
    /// @param text  null appends "(null)"
    QBLByteBuffer& operator<<(const char* text) {
        return text != nullptr ? append(text, std::strlen(text)) : append("(null)", 6);
    }
    QBLByteBuffer& operator<<(char c) {
        if (m_pBuffer == nullptr || m_iCount >= m_iAllocLimit) return appendGrowing(c);
        char* const end = m_pBuffer + m_iCount;
        end[0] = c;
        end[1] = '\0';
        ++m_iCount;
        return *this;
    }
    /// Appends the number in decimal. If setHexRadix() selected hexadecimal, appends the
    /// hexadecimal digits of its two's complement instead.
    QBLByteBuffer& operator<<(int value);
    QBLByteBuffer& operator<<(long value);
    QBLByteBuffer& operator<<(unsigned int value);
    QBLByteBuffer& operator<<(unsigned long value);
    /// Appends the output of printf(3). Before that, raises the capacity to the current length plus
    /// the printf buffer size, even if the output is shorter.
    /// @return the number of bytes appended
    /// @throws QBLAssertError if vsnprintf(3) fails; the capacity remains raised
    int printf(const char* format, ...) __attribute__((format(printf, 2, 3)));
    /// @}

    /// @name Content
    /// @{

    /// Empties the buffer; the capacity stays.
    void reset();

    /// Returns the content, followed by a null byte. A caller may write up to the capacity and then
    /// call setLength() to make the written bytes content:
    ///     buffer.reserve(size);
    ///     buffer.setLength(readSome(buffer.str(), size));
    const char* str() const { return m_pBuffer; }
    char* str() { return m_pBuffer; }
    unsigned int pcount() const { return m_iCount; }

    /// The content as a contiguous range, for std::span, std::data() and algorithms.
    /// QBLByteBufferView.hpp has conversions from and to such ranges.
    const char* data() const { return m_pBuffer; }
    char* data() { return m_pBuffer; }
    unsigned int size() const { return m_iCount; }
    const char* begin() const { return m_pBuffer; }
    char* begin() { return m_pBuffer; }
    const char* end() const { return m_pBuffer + m_iCount; }
    char* end() { return m_pBuffer + m_iCount; }
    /// @}

    /// @name Settings
    /// @{

    /// Selects how integers are appended from now on: in decimal if `on` is 0, otherwise in
    /// hexadecimal.
    /// @return the previous radix, 10 or 16
    int setHexRadix(int on);
    /// Sets the printf buffer size in bytes; it is initially 4096.
    /// @return the previous size
    unsigned int setPrintfBufferSize(unsigned int size);
    unsigned int getPrintfBufferSize() const { return m_iPrintfBufferSize; }
    /// @}

private:
    QBLByteBuffer& append(const char* p, std::size_t length) {
        if (m_pBuffer == nullptr || p == nullptr || length - 1 >= m_iAllocLimit - m_iCount)
            return appendGrowing(p, length);
        char* const end = m_pBuffer + m_iCount;
        copy(end, p, length);
        end[length] = '\0';
        m_iCount += static_cast<unsigned int>(length);
        return *this;
    }
    /// Copies at least one byte; the blocks may overlap. Loads a short block completely before it
    /// stores the block, without a call of memmove().
    [[gnu::always_inline]] static void copy(char* to, const char* from, std::size_t length) {
        // Hides from the compiler which array this is. Otherwise g++ warns that a literal is
        // shorter than a branch needs, although the branch is not taken for this literal.
        asm("" : "+r"(from));
        if (length > 16) {
            std::memmove(to, from, length);
        } else if (length >= 8) {
            copyEnds<8>(to, from, length);
        } else if (length >= 4) {
            copyEnds<4>(to, from, length);
        } else if (length >= 2) {
            copyEnds<2>(to, from, length);
        } else {
            *to = *from;
        }
    }
    template <std::size_t kSize>
    [[gnu::always_inline]] static void copyEnds(char* to, const char* from, std::size_t length) {
        char first[kSize], last[kSize];
        std::memcpy(first, from, kSize);
        std::memcpy(last, from + length - kSize, kSize);
        std::memcpy(to, first, kSize);
        std::memcpy(to + length - kSize, last, kSize);
    }
    QBLByteBuffer& appendGrowing(const char* p, std::size_t length);
    QBLByteBuffer& appendGrowing(char c);
    template <class Integer>
    QBLByteBuffer& appendInteger(Integer value);
    char* grow(unsigned long long needed);
    char* replaceArray(unsigned int limit);

    char* m_pBuffer;
    unsigned int m_iCount;
    unsigned int m_iAllocLimit;
    unsigned int m_iBlockSize;  // 0: growth by half
    unsigned int m_iPrintfBufferSize;
    int m_iRadix;
    unsigned int m_iArrayLimit;  // size of the array minus 1; at least m_iAllocLimit
};

#endif
