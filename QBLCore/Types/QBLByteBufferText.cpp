#include <algorithm>
#include <charconv>
#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <iterator>
#include <memory>
#include <type_traits>

#include "QBLCore/Types/QBLByteBuffer.hpp"
#include "QBLCore/Types/internal/QBLByteBufferAlloc.hpp"
#include "QBLCore/Types/internal/QBLByteBufferAssert.hpp"
#include "QBLCore/Types/internal/QBLCharacters.hpp"

namespace {

const unsigned int kIntegerRoom = 32;
const std::size_t kShortText = 512;

// Out of line, so that the usual case needs no array on the stack and no stack protector.
template <class Integer>
[[gnu::noinline]] QBLByteBuffer& appendThroughArray(QBLByteBuffer& to, Integer value, int radix) {
    char digits[kIntegerRoom];
    char* const end =
        radix != 16
            ? qblWriteInteger(digits, value)
            : std::to_chars(digits, std::end(digits), std::make_unsigned_t<Integer>(value), 16).ptr;
    return to.appendChars(digits, static_cast<unsigned int>(end - digits));
}

}  // namespace

// Always inlined, because a separate instance would be exported.
template <class Integer>
[[gnu::always_inline]] inline QBLByteBuffer& QBLByteBuffer::appendInteger(Integer value) {
    if (m_pBuffer == nullptr || m_iAllocLimit - m_iCount < kIntegerRoom || m_iRadix == 16)
        return appendThroughArray(*this, value, m_iRadix);
    char* const end = qblWriteInteger(m_pBuffer + m_iCount, value);
    *end = '\0';
    m_iCount = static_cast<unsigned int>(end - m_pBuffer);
    return *this;
}

QBLByteBuffer& QBLByteBuffer::operator<<(int value) { return appendInteger(value); }
QBLByteBuffer& QBLByteBuffer::operator<<(long value) { return appendInteger(value); }
QBLByteBuffer& QBLByteBuffer::operator<<(unsigned int value) { return appendInteger(value); }
QBLByteBuffer& QBLByteBuffer::operator<<(unsigned long value) { return appendInteger(value); }

// Formats into a separate array, because the arguments may point into the buffer.
int QBLByteBuffer::printf(const char* format, ...) {
    QBL_BUFFER_ASSERT_ARRAY("printf");
    char shortText[kShortText];
    std::unique_ptr<char[]> longText;
    const char* text = shortText;
    std::va_list arguments;
    va_start(arguments, format);
    int i = format != nullptr ? std::vsnprintf(shortText, kShortText, format, arguments) : -1;
    va_end(arguments);
    if (i >= static_cast<int>(kShortText)) {
        const std::size_t size = static_cast<std::size_t>(i) + 1;
        QBL_BUFFER_ALLOC_TRY
        longText.reset(new char[size]);
        QBL_BUFFER_ALLOC_CATCH
        va_start(arguments, format);
        // The text may have become longer: %n may have changed an argument, or another thread may
        // have called setlocale().
        i = std::min(i, std::vsnprintf(longText.get(), size, format, arguments));
        va_end(arguments);
        text = longText.get();
    }
    const std::uint64_t room = std::uint64_t{m_iCount} + m_iPrintfBufferSize;
    if (room > m_iAllocLimit) delete[] grow(room);
    QBL_BUFFER_ASSERT(i >= 0, "0 <= i", "::printf] vsnprintf failed.");
    append(text, static_cast<unsigned int>(i));
    return i;
}
