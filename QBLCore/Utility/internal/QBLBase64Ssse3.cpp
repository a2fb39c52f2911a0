#include <tmmintrin.h>

#include "QBLCore/Utility/internal/QBLBase64Kernels.hpp"

// The algorithms of QBLBase64Avx2.cpp, with blocks of half the size.
#define WITH_SSSE3 __attribute__((target("ssse3")))

namespace {

inline __m128i load(const void* p) { return _mm_loadu_si128(static_cast<const __m128i*>(p)); }

/// Converts twelve bytes to sixteen values.
WITH_SSSE3 inline __m128i spread(__m128i data) {
    const __m128i words =
        _mm_shuffle_epi8(data, _mm_setr_epi8(1, 0, 2, 1, 4, 3, 5, 4, 7, 6, 8, 7, 10, 9, 11, 10));
    const __m128i even = _mm_mulhi_epu16(_mm_and_si128(words, _mm_set1_epi32(0x0fc0fc00)),
                                         _mm_set1_epi32(0x04000040));
    const __m128i odd = _mm_mullo_epi16(_mm_and_si128(words, _mm_set1_epi32(0x003f03f0)),
                                        _mm_set1_epi32(0x01000010));
    return _mm_or_si128(even, odd);
}

/// Converts sixteen values to twelve bytes, followed by zeros.
WITH_SSSE3 inline __m128i pack(__m128i values) {
    const __m128i twelve = _mm_maddubs_epi16(values, _mm_set1_epi32(0x01400140));
    const __m128i bits = _mm_madd_epi16(twelve, _mm_set1_epi32(0x00011000));
    return _mm_shuffle_epi8(bits,
                            _mm_setr_epi8(2, 1, 0, 6, 5, 4, 10, 9, 8, 14, 13, 12, -1, -1, -1, -1));
}

WITH_SSSE3 std::size_t encode(const QBLBase64Alphabet& alphabet, const unsigned char* data,
                              std::size_t length, char* out) {
    const __m128i offsets = load(alphabet.toCharacter);
    std::size_t done = 0;
    for (; length - done >= 16; done += 12, out += 16) {
        const __m128i values = spread(load(data + done));
        const __m128i kind = _mm_sub_epi8(_mm_subs_epu8(values, _mm_set1_epi8(51)),
                                          _mm_cmpgt_epi8(values, _mm_set1_epi8(25)));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(out),
                         _mm_add_epi8(values, _mm_shuffle_epi8(offsets, kind)));
    }
    return done;
}

WITH_SSSE3 std::size_t decode(const QBLBase64Alphabet& alphabet, const char* text,
                              std::size_t length, unsigned char* out) {
    const __m128i low = load(alphabet.low), high = load(alphabet.high);
    const __m128i offsets = load(alphabet.toValue), half = _mm_set1_epi8(15);
    std::size_t done = 0;
    for (; length - done >= 16; done += 16, out += 12) {
        const __m128i in = load(text + done);
        const __m128i upper = _mm_and_si128(_mm_srli_epi32(in, 4), half);
        const __m128i lower = _mm_shuffle_epi8(low, _mm_and_si128(in, half));
        const __m128i wrong = _mm_and_si128(lower, _mm_shuffle_epi8(high, upper));
        if (_mm_movemask_epi8(_mm_cmpeq_epi8(wrong, _mm_setzero_si128())) != 0xffff) break;
        const __m128i odd = _mm_and_si128(lower, _mm_set1_epi8(QBLBase64Alphabet::kOdd));
        const __m128i kind = _mm_or_si128(upper, odd);
        const __m128i bytes = pack(_mm_add_epi8(in, _mm_shuffle_epi8(offsets, kind)));
        _mm_storel_epi64(reinterpret_cast<__m128i*>(out), bytes);
        _mm_storeu_si32(out + 8, _mm_srli_si128(bytes, 8));
    }
    return done;
}

}  // namespace

constexpr QBLBase64Kernels kQBLBase64Ssse3 = {&encode, &decode};
