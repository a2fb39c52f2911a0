#ifndef QBLCORE_TYPES_QBLBYTEBUFFER_HPP
#define QBLCORE_TYPES_QBLBYTEBUFFER_HPP

#include <cstddef>
#include <cstring>

#include "QBLCore/Frame/QBLExport.h"

/// A string of bytes that grows as it is appended to, with a zero byte behind it always. It may
/// hold zero bytes itself. What is given to an operation may be part of the buffer, also where that
/// grows.
///
/// It grows by whole blocks, or by one half. How far is settled, and shows in setLength();
/// appending costs the same for each byte all the same, however small the blocks are: the array
/// takes up to a half more than it had, from 64 MiB on up to an eighth. Where that is refused, it
/// takes less, down to what is needed; only then is a new-handler called.
///
/// Errors: QBLOutOfMemoryError, also for more than 4,294,967,294 bytes, whole blocks included (one
/// half more is cut to that); QBLAssertError where said. If a replaced operator new throws anything
/// else, a throwable is passed on with an entry in its trace, a std::exception becomes
/// QBLStdExceptionError, and what is neither is passed on as it is. The content is as it was after
/// an error.
///
/// Threads: one at a time for each object.
///
///     QBLByteBuffer line(QBLByteBuffer::GROW_BY_HALF);
///     line << "port " << 8080 << ',' << ' ';
///     line.printf("%.1f s", 0.5);
///     send(line.str(), line.pcount());  // port 8080, 0.5 s
class QBL_API QBLByteBuffer {
public:
    /// @name Making a buffer
    /// @{

    /// Any value but 0 grows by half.
    enum Growth : unsigned int { GROW_BY_BLOCK = 0, GROW_BY_HALF = 1 };

    /// Grows by blocks. The array, of one byte more than the capacity, is a whole number of them.
    /// @param initialSize  bytes that it takes without growing, at least
    /// @param blockSize  in bytes; 0 means 8
    explicit QBLByteBuffer(unsigned int initialSize = 0, unsigned int blockSize = 0);
    /// @param blockSize  of no meaning to a buffer that grows by half, which begins with just the
    ///     initial size
    explicit QBLByteBuffer(Growth growth, unsigned int initialSize = 0, unsigned int blockSize = 0);
    /// Takes the capacity too, and all that is set.
    QBLByteBuffer(const QBLByteBuffer& other);
    /// Takes the other's capacity, also if that is less than this one's was.
    QBLByteBuffer& operator=(const QBLByteBuffer& other);
    virtual ~QBLByteBuffer();
    /// @}

    /// @name Capacity and length
    /// @{

    /// Makes room for n bytes in all. Where one half more is enough for a buffer that grows by
    /// half, it grows by that, else to n. Pointers into the array end here, and wherever it grows.
    void reserve(unsigned int n) {
        if (n > m_iAllocLimit) delete[] grow(n);
    }
    /// Cuts the content, or takes to it what is in the array behind it: what was written through
    /// str(), or cut off; never anything undefined. More than the capacity is ignored.
    void setLength(unsigned int n);
    /// @}

    /// @name Removing
    /// @{

    /// Removes the first n bytes, or all if there are fewer.
    /// @return the new count, as of the three below
    unsigned int chop(unsigned int n);
    /// White space is what isspace(3) says.
    unsigned int trimFront();
    unsigned int trimBack();
    unsigned int trim();
    /// @}

    /// @name Blocks
    /// @{

    /// The capacity for n bytes, by blocks: ((n + block) / block) * block - 1.
    /// @throws QBLAssertError if the buffer grows by half
    unsigned int roundUpToBlockSizeMultiple(unsigned int n) const;
    /// @}

    /// @name Appending
    /// @{

    /// Every appender gives the buffer back. What grows a buffer or fails is not inline.
    /// @param p  len bytes
    /// @throws QBLAssertError for null, unless len is 0
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
    /// In decimal, or as the hexadecimal digits of its two's complement.
    QBLByteBuffer& operator<<(int value);
    QBLByteBuffer& operator<<(long value);
    QBLByteBuffer& operator<<(unsigned int value);
    QBLByteBuffer& operator<<(unsigned long value);
    /// Appends what printf(3) prints. Makes room for the printf buffer size first, whatever the
    /// length of that.
    /// @return bytes appended
    /// @throws QBLAssertError for a format that the C library refuses; the room stays
    int printf(const char* format, ...) __attribute__((format(printf, 2, 3)));
    /// @}

    /// @name Content
    /// @{

    /// Empties the buffer, which keeps its capacity.
    void reset();

    /// The content and its zero byte. Up to the capacity may be written; setLength() makes that
    /// content:
    ///     buffer.reserve(size);
    ///     buffer.setLength(readSome(buffer.str(), size));
    const char* str() const { return m_pBuffer; }
    char* str() { return m_pBuffer; }
    unsigned int pcount() const { return m_iCount; }
    /// @}

    /// @name Settings
    /// @{

    /// Makes integers hexadecimal, or decimal again.
    /// @return the radix until now, 10 or 16
    int setHexRadix(int on);
    /// In bytes, 4096 at first.
    /// @return the size until now
    unsigned int setPrintfBufferSize(unsigned int size);
    unsigned int getPrintfBufferSize() const { return m_iPrintfBufferSize; }
    /// @}

private:
    QBLByteBuffer& append(const char* p, std::size_t length) {
        if (m_pBuffer == nullptr || p == nullptr || length - 1 >= m_iAllocLimit - m_iCount)
            return appendGrowing(p, length);
        char* const end = m_pBuffer + m_iCount;
        std::memmove(end, p, length);
        end[length] = '\0';
        m_iCount += static_cast<unsigned int>(length);
        return *this;
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
    unsigned int m_iBlockSize;  // 0 grows by half
    unsigned int m_iPrintfBufferSize;
    int m_iRadix;
    unsigned int m_iArrayLimit;  // the array is one byte more; at least m_iAllocLimit
};

#endif
