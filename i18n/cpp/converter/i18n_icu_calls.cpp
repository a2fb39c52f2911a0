#include "i18n/cpp/converter/i18n_icu_calls.hpp"

#include <emmintrin.h>

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace {

// The size of the buffer through which UTF-16 at an odd address is copied.
constexpr std::ptrdiff_t kPieceUnits = 512;
// The maximum number of units that ICU takes at a time.
constexpr std::ptrdiff_t kMostUnits = 0x3FFFFFFF;
constexpr std::ptrdiff_t kUnit = sizeof(UChar);

// For functions that read whole aligned blocks, including bytes before the text and after its end.
// The C library reads strings in the same way. This is safe, because an aligned block never reaches
// into another page. Sanitizers would report these reads.
#define READS_WHOLE_BLOCKS __attribute__((no_sanitize("address"), no_sanitize("thread")))

/// Returns a mask in which the bits of all bytes of zero units are set.
READS_WHOLE_BLOCKS unsigned zeroUnits(const char* block) {
    const __m128i units = _mm_load_si128(reinterpret_cast<const __m128i*>(block));
    return static_cast<unsigned>(_mm_movemask_epi8(_mm_cmpeq_epi16(units, _mm_setzero_si128())));
}

/// Returns the number of bytes before the first zero unit. Requires: the text is aligned.
std::size_t bytesBeforeNull(const char* text) {
    constexpr std::uintptr_t kBlock = sizeof(__m128i);
    const unsigned before = reinterpret_cast<std::uintptr_t>(text) % kBlock;
    const char* block = text - before;
    unsigned found = zeroUnits(block) >> before << before;
    while (found == 0) found = zeroUnits(block += kBlock);
    return static_cast<std::size_t>(block + __builtin_ctz(found) - text);
}

bool isAligned(const char* units) {
    return reinterpret_cast<std::uintptr_t>(units) % alignof(UChar) == 0;
}

}  // namespace

UErrorCode i18nFromUnicode(UConverter* converter, char*& at, char* limit, const char*& source,
                           const char* end, bool flush) {
    UErrorCode status = U_ZERO_ERROR;
    bool last = false;
    if (isAligned(source)) {
        const auto* from = reinterpret_cast<const UChar*>(source);
        const auto* const to = from + (end - source) / kUnit;
        while (!last && U_SUCCESS(status)) {
            const UChar* const pieceEnd = from + std::min(to - from, kMostUnits);
            last = pieceEnd == to;
            ucnv_fromUnicode(converter, &at, limit, &from, pieceEnd, nullptr, flush && last,
                             &status);
        }
        source = reinterpret_cast<const char*>(from);
        return status;
    }
    UChar piece[kPieceUnits];
    while (!last && U_SUCCESS(status)) {
        const std::ptrdiff_t units = std::min((end - source) / kUnit, kPieceUnits);
        std::memcpy(piece, source, static_cast<std::size_t>(units * kUnit));
        last = source + units * kUnit == end;
        const UChar* from = piece;
        ucnv_fromUnicode(converter, &at, limit, &from, piece + units, nullptr, flush && last,
                         &status);
        source += (from - piece) * kUnit;
    }
    return status;
}

UErrorCode i18nToUnicode(UConverter* converter, char*& at, char* limit, const char*& source,
                         const char* end, bool flush) {
    UErrorCode status = U_ZERO_ERROR;
    if (isAligned(at)) {
        auto* to = reinterpret_cast<UChar*>(at);
        ucnv_toUnicode(converter, &to, to + (limit - at) / kUnit, &source, end, nullptr, flush,
                       &status);
        at = reinterpret_cast<char*>(to);
        return status;
    }
    UChar piece[kPieceUnits];
    do {
        status = U_ZERO_ERROR;
        const std::ptrdiff_t room = std::min((limit - at) / kUnit, kPieceUnits);
        UChar* to = piece;
        ucnv_toUnicode(converter, &to, piece + room, &source, end, nullptr, flush, &status);
        const std::ptrdiff_t bytes = (to - piece) * kUnit;
        std::memcpy(at, piece, static_cast<std::size_t>(bytes));
        at += bytes;
    } while (status == U_BUFFER_OVERFLOW_ERROR && at != limit);
    return status;
}

bool i18nIsNull(const char* unit, int nullSize) {
    return std::all_of(unit, unit + nullSize, [](char c) { return c == '\0'; });
}

std::size_t i18nBytesBeforeNull(const char* text, int nullSize) {
    if (nullSize == 1) return std::strlen(text);
    if (nullSize == kUnit && isAligned(text)) return bytesBeforeNull(text);
    const char* at = text;
    while (!i18nIsNull(at, nullSize)) at += nullSize;
    return static_cast<std::size_t>(at - text);
}
