#include <immintrin.h>

#include <cstdint>

#include "QBLCore/Utility/internal/QBLBase64Kernels.hpp"

#define WITH_AVX2 __attribute__((target("avx2")))

namespace {

inline __m128i load(const void* p) { return _mm_loadu_si128(static_cast<const __m128i*>(p)); }
/// Loads the same sixteen bytes into both halves.
WITH_AVX2 inline __m256i twice(const void* p) { return _mm256_broadcastsi128_si256(load(p)); }

/// Converts 24 bytes to 32 values. Twelve bytes are at the end of the lower half of the vector, and
/// twelve bytes at the beginning of the upper half. The shuffle puts the bytes of two values into
/// each 16-bit word. One multiplication moves the even values of all words to their places, and
/// another multiplication moves the odd values.
WITH_AVX2 inline __m256i spread(__m256i data) {
    const __m256i words = _mm256_shuffle_epi8(
        data, _mm256_setr_epi8(5, 4, 6, 5, 8, 7, 9, 8, 11, 10, 12, 11, 14, 13, 15, 14,  //
                               1, 0, 2, 1, 4, 3, 5, 4, 7, 6, 8, 7, 10, 9, 11, 10));
    const __m256i even = _mm256_mulhi_epu16(_mm256_and_si256(words, _mm256_set1_epi32(0x0fc0fc00)),
                                            _mm256_set1_epi32(0x04000040));
    const __m256i odd = _mm256_mullo_epi16(_mm256_and_si256(words, _mm256_set1_epi32(0x003f03f0)),
                                           _mm256_set1_epi32(0x01000010));
    return _mm256_or_si256(even, odd);
}

/// Converts 32 values to 24 bytes, followed by zeros. Joins each pair of values to twelve bits,
/// then each pair of these results to 24 bits, and puts the three bytes of each 24-bit result into
/// order.
WITH_AVX2 inline __m256i pack(__m256i values) {
    const __m256i twelve = _mm256_maddubs_epi16(values, _mm256_set1_epi32(0x01400140));
    const __m256i bits = _mm256_madd_epi16(twelve, _mm256_set1_epi32(0x00011000));
    const __m256i bytes = _mm256_shuffle_epi8(
        bits, _mm256_setr_epi8(2, 1, 0, 6, 5, 4, 10, 9, 8, 14, 13, 12, -1, -1, -1, -1,  //
                               2, 1, 0, 6, 5, 4, 10, 9, 8, 14, 13, 12, -1, -1, -1, -1));
    return _mm256_permutevar8x32_epi32(bytes, _mm256_setr_epi32(0, 1, 2, 4, 5, 6, 3, 7));
}

WITH_AVX2 inline __m256i load32(const void* p) {
    return _mm256_loadu_si256(static_cast<const __m256i*>(p));
}
/// Loads 24 bytes for spread(). Also reads the four bytes before and after them.
WITH_AVX2 inline __m256i loadAround(const unsigned char* data) { return load32(data - 4); }
/// Loads the same 24 bytes, but reads no other bytes.
WITH_AVX2 inline __m256i loadExactly(const unsigned char* data) {
    return _mm256_inserti128_si256(_mm256_castsi128_si256(_mm_slli_si128(load(data), 4)),
                                   _mm_srli_si128(load(data + 8), 4), 1);
}

WITH_AVX2 inline void encodeBlock(__m256i offsets, __m256i data, char* out) {
    const __m256i values = spread(data);
    const __m256i kind = _mm256_sub_epi8(_mm256_subs_epu8(values, _mm256_set1_epi8(51)),
                                         _mm256_cmpgt_epi8(values, _mm256_set1_epi8(25)));
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(out),
                        _mm256_add_epi8(values, _mm256_shuffle_epi8(offsets, kind)));
}

WITH_AVX2 std::size_t encode(const QBLBase64Alphabet& alphabet, const unsigned char* data,
                             std::size_t length, char* out) {
    const __m256i offsets = twice(alphabet.toCharacter);
    if (length < 24) return kQBLBase64Ssse3.encode(alphabet, data, length, out);
    encodeBlock(offsets, loadExactly(data), out);
    data += 24, out += 32;
    std::size_t rest = length - 24;
    for (; rest >= 28; rest -= 24, data += 24, out += 32)
        encodeBlock(offsets, loadAround(data), out);
    if (rest == 27) encodeBlock(offsets, loadExactly(data), out);
    // The last block ends with the last group, and may encode some bytes again.
    const std::size_t groups = rest / 3;
    encodeBlock(offsets, loadExactly(data + groups * 3 - 24), out + groups * 4 - 32);
    return length / 3 * 3;
}

struct Decoding {
    __m256i low, high, toValue;

    WITH_AVX2 explicit Decoding(const QBLBase64Alphabet& alphabet)
        : low(twice(alphabet.low)), high(twice(alphabet.high)), toValue(twice(alphabet.toValue)) {}
};

/// 32 characters, their upper four bits, and the entries of `low` for their lower four bits.
struct Characters {
    __m256i in, upper, lower;
    __m256i wrong;  ///< 0 in the byte of each character that is in the alphabet

    WITH_AVX2 Characters(const Decoding& by, const char* text) : in(load32(text)) {
        const __m256i half = _mm256_set1_epi8(15);
        upper = _mm256_and_si256(_mm256_srli_epi32(in, 4), half);
        lower = _mm256_shuffle_epi8(by.low, _mm256_and_si256(in, half));
        wrong = _mm256_and_si256(lower, _mm256_shuffle_epi8(by.high, upper));
    }
    /// Converts the characters to 24 bytes, followed by zeros. Requires: all are in the alphabet.
    WITH_AVX2 __m256i bytes(const Decoding& by) const {
        const __m256i odd = _mm256_and_si256(lower, _mm256_set1_epi8(QBLBase64Alphabet::kOdd));
        const __m256i kind = _mm256_or_si256(upper, odd);
        return pack(_mm256_add_epi8(in, _mm256_shuffle_epi8(by.toValue, kind)));
    }
};
WITH_AVX2 inline bool none(__m256i wrong) { return _mm256_testz_si256(wrong, wrong) != 0; }

WITH_AVX2 inline void store24(unsigned char* out, __m256i bytes) {
    _mm_storeu_si128(reinterpret_cast<__m128i*>(out), _mm256_castsi256_si128(bytes));
    _mm_storel_epi64(reinterpret_cast<__m128i*>(out + 16), _mm256_extracti128_si256(bytes, 1));
}

/// Decodes 32 characters.
/// @return false, without writing anything, if a character is not in the alphabet
WITH_AVX2 inline bool decodeBlock(const Decoding& by, const char* text, unsigned char* out) {
    const Characters block(by, text);
    if (!none(block.wrong)) return false;
    store24(out, block.bytes(by));
    return true;
}

/// Decodes the characters after the first `done`. If possible, uses one block that ends with the
/// last group and decodes some earlier characters again. This is not possible if the output has
/// overwritten these characters. Such a block does not include a padded last group.
WITH_AVX2 inline std::size_t decodeLast(const Decoding& by, const QBLBase64Alphabet& alphabet,
                                        const char* text, std::size_t length, std::size_t done,
                                        unsigned char* out) {
    std::size_t end = length / 4 * 4;
    if (end > done && text[end - 1] == '=') end -= 4;
    if (end > done && end - done < 32 && end >= 32) {
        const std::size_t again = done - (end - 32);
        const auto gap = reinterpret_cast<std::uintptr_t>(text + end - 32) -
                         reinterpret_cast<std::uintptr_t>(out - done / 4 * 3);
        if (gap >= done / 4 * 3 && decodeBlock(by, text + end - 32, out - again / 4 * 3))
            return end - done;
    }
    return kQBLBase64Ssse3.decode(alphabet, text + done, length - done, out);
}

WITH_AVX2 std::size_t decode(const QBLBase64Alphabet& alphabet, const char* text,
                             std::size_t length, unsigned char* out) {
    const Decoding by(alphabet);
    std::size_t done = 0;
    for (; length - done >= 64; done += 64, out += 48) {
        const Characters first(by, text + done), second(by, text + done + 32);
        if (!none(_mm256_or_si256(first.wrong, second.wrong))) break;
        // Also writes zeros after the 24 bytes, where the bytes of the second block follow.
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(out), first.bytes(by));
        store24(out + 24, second.bytes(by));
    }
    for (; length - done >= 32; done += 32, out += 24)
        if (!decodeBlock(by, text + done, out)) break;
    return done + decodeLast(by, alphabet, text, length, done, out);
}

}  // namespace

constexpr QBLBase64Kernels kQBLBase64Avx2 = {&encode, &decode};
