#include <algorithm>
#include <charconv>
#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <limits>
#include <memory>
#include <type_traits>

#include "QBLCore/Types/QBLByteBuffer.hpp"
#include "QBLCore/Types/internal/QBLByteBufferAlloc.hpp"
#include "QBLCore/Types/internal/QBLByteBufferAssert.hpp"
#include "QBLCore/Types/internal/QBLCharacters.hpp"

namespace {

const unsigned int kIntegerRoom = 32;
const std::size_t kShortText = 512;

/// The powers of ten that a type holds, but for a zero in the place of the first.
template <class Unsigned>
struct Powers {
    Unsigned of[std::numeric_limits<Unsigned>::digits10 + 1];
};
template <class Unsigned>
constexpr Powers<Unsigned> allPowers() {
    Powers<Unsigned> powers{};
    Unsigned power = 1;
    for (Unsigned& each : powers.of) {
        each = power == 1 ? 0 : power;
        power *= 10;
    }
    return powers;
}
template <class Unsigned>
constexpr Powers<Unsigned> kPowers = allPowers<Unsigned>();

/// Decimal digits of a value, from those that its highest bit tells: 1233/4096 is just above the
/// logarithm of 2.
template <class Unsigned>
unsigned int digitsOf(Unsigned value) {
    const Unsigned some = value | 1;
    const int above = sizeof some > sizeof(int)
                          ? __builtin_clzll(some) - 64
                          : __builtin_clz(static_cast<unsigned int>(some)) - 32;
    const unsigned int about = static_cast<unsigned int>(-above) * 1233 >> 12;
    return about + (value < kPowers<Unsigned>.of[about] ? 0 : 1);
}

/// @return behind the last digit
template <class Integer>
char* writeDecimal(char* to, Integer value) {
    auto rest = static_cast<std::make_unsigned_t<Integer>>(value);
    if (value < 0) {
        *to++ = '-';
        rest = 0 - rest;
    }
    char* const end = to + digitsOf(rest);
    char* at = end;
    for (; rest >= 10000; rest /= 10000)
        qblWriteFour(at -= 4, static_cast<std::uint32_t>(rest % 10000));
    auto last = static_cast<std::uint32_t>(rest);
    if (last >= 100) {
        qblWritePair(at -= 2, last % 100);
        last /= 100;
    }
    if (last >= 10)
        qblWritePair(at - 2, last);
    else
        at[-1] = static_cast<char>('0' + last);
    return end;
}

template <class Integer>
char* writeInteger(char* to, Integer value, int radix) {
    if (radix != 16) return writeDecimal(to, value);
    return std::to_chars(to, to + kIntegerRoom, std::make_unsigned_t<Integer>(value), 16).ptr;
}

}  // namespace

template <class Integer>
QBLByteBuffer& QBLByteBuffer::appendInteger(Integer value) {
    if (m_pBuffer == nullptr || m_iAllocLimit - m_iCount < kIntegerRoom) {
        char local[kIntegerRoom];
        return append(local,
                      static_cast<std::size_t>(writeInteger(local, value, m_iRadix) - local));
    }
    char* const end = writeInteger(m_pBuffer + m_iCount, value, m_iRadix);
    *end = '\0';
    m_iCount = static_cast<unsigned int>(end - m_pBuffer);
    return *this;
}

QBLByteBuffer& QBLByteBuffer::operator<<(int value) { return appendInteger(value); }
QBLByteBuffer& QBLByteBuffer::operator<<(long value) { return appendInteger(value); }
QBLByteBuffer& QBLByteBuffer::operator<<(unsigned int value) { return appendInteger(value); }
QBLByteBuffer& QBLByteBuffer::operator<<(unsigned long value) { return appendInteger(value); }

// Formats outside of the array, which the arguments may be in.
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
        // It may have become longer: by %n, or by another thread's setlocale().
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
