// After W. Mula and D. Lemire, "Base64 encoding and decoding at almost the speed of a memory copy"
// (2019). The instructions of AVX-512 with VBMI look up bytes in tables of 64 and 128 bytes.
//
// A block has 48 bytes or 64 characters. Shorter blocks are loaded and stored with masks, so the
// code accesses no bytes outside the data and the text. Decoding stops before the group with the
// first character that is not in the alphabet. If such a character is ASCII, its value in the table
// has the top bit; otherwise the character itself has the top bit.
//
// Comparisons make the masks for loads and stores: 32-bit code would compute 64-bit masks in
// memory.
#if defined(__GNUC__) && !defined(__clang__)
// GCC 12 reports values that its own header leaves undefined on purpose.
#pragma GCC diagnostic ignored "-Wuninitialized"
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#endif
#include <immintrin.h>

#include <algorithm>

#include "QBLCore/Utility/internal/QBLBase64Kernels.hpp"

#define WITH_VBMI __attribute__((target("avx512bw,avx512vbmi")))

namespace {

constexpr std::size_t kBytes = 48, kCharacters = 64;

/// Operands of byte permutations: each element is the index of a byte in a vector.
struct Orders {
    alignas(64) unsigned char all[64], spread[64], pack[64];

    constexpr Orders() : all(), spread(), pack() {
        for (unsigned i = 0; i < 64; ++i) {
            all[i] = static_cast<unsigned char>(i);
            const unsigned group = i / 4 * 3, places[] = {1, 0, 2, 1};
            spread[i] = static_cast<unsigned char>(group + places[i % 4]);
            pack[i] = static_cast<unsigned char>(i < kBytes ? i / 3 * 4 + 2 - i % 3 : 63);
        }
    }
};
constexpr Orders kOrders;

WITH_VBMI inline __m512i load(const void* p) { return _mm512_loadu_si512(p); }
WITH_VBMI inline void store(void* p, __m512i bytes) { _mm512_storeu_si512(p, bytes); }

/// Returns the mask of the first bytes of a vector.
WITH_VBMI inline __mmask64 first(std::size_t count) {
    return _mm512_cmplt_epu8_mask(load(kOrders.all), _mm512_set1_epi8(static_cast<char>(count)));
}

/// Encodes 48 bytes. Arranges the three bytes of each group in four bytes so that the bits of each
/// value are adjacent, moves the six bits of each value to the lower end of a byte, and looks up
/// the characters. The lookup ignores the upper two bits.
WITH_VBMI inline __m512i charactersOf(__m512i alphabet, __m512i bytes) {
    const __m512i shifts = _mm512_set1_epi64(0x3036242a1016040a);
    const __m512i words = _mm512_permutexvar_epi8(load(kOrders.spread), bytes);
    return _mm512_permutexvar_epi8(_mm512_multishift_epi64_epi8(shifts, words), alphabet);
}

WITH_VBMI std::size_t encode(const QBLBase64Alphabet& alphabet, const unsigned char* data,
                             std::size_t length, char* out) {
    const __m512i by = load(alphabet.character);
    std::size_t done = 0;
    for (; length - done >= 64; done += kBytes, out += kCharacters)
        store(out, charactersOf(by, load(data + done)));
    while (length - done >= 3) {
        const std::size_t groups = std::min(kBytes / 3, (length - done) / 3);
        const __m512i bytes = _mm512_maskz_loadu_epi8(first(groups * 3), data + done);
        _mm512_mask_storeu_epi8(out, first(groups * 4), charactersOf(by, bytes));
        done += groups * 3, out += groups * 4;
    }
    return done;
}

/// Converts 64 values to 48 bytes. Joins each pair of values to twelve bits, then each pair of
/// these results to 24 bits, and puts the three bytes of each 24-bit result into order.
WITH_VBMI inline __m512i bytesOf(__m512i values) {
    const __m512i twelve = _mm512_maddubs_epi16(values, _mm512_set1_epi32(0x01400140));
    const __m512i bits = _mm512_madd_epi16(twelve, _mm512_set1_epi32(0x00011000));
    return _mm512_permutexvar_epi8(load(kOrders.pack), bits);
}

/// Returns the index of the lowest bit that is set; 64 if no bit is set.
inline std::size_t lowest(__mmask64 mask) {
    const auto lower = static_cast<std::uint32_t>(mask);
    if (lower != 0) return static_cast<std::size_t>(__builtin_ctz(lower));
    const auto upper = static_cast<std::uint32_t>(mask >> 32);
    return upper != 0 ? 32 + static_cast<std::size_t>(__builtin_ctz(upper)) : 64;
}

/// The values of a block of 64 characters.
struct Decoded {
    __m512i values, wrong;  ///< `wrong` has the top bit of each character not in the alphabet

    WITH_VBMI Decoded(__m512i table, __m512i upperTable, __m512i block)
        : values(_mm512_permutex2var_epi8(table, block, upperTable)),
          wrong(_mm512_or_si512(values, block)) {}
    /// Does not move a 64-bit mask to general registers, which is slow in 32-bit code.
    /// @return true if all characters are in the alphabet
    WITH_VBMI bool isGood() const {
        const __m512i tops = _mm512_set1_epi8(static_cast<char>(0x80));
        return _mm512_test_epi32_mask(wrong, tops) == 0;
    }

    /// Stores the bytes of the groups before the first wrong character.
    /// @return the number of characters in these groups
    WITH_VBMI std::size_t finish(unsigned char* out) const {
        const std::size_t groups = lowest(_mm512_movepi8_mask(wrong)) / 4;
        _mm512_mask_storeu_epi8(out, first(groups * 3), bytesOf(values));
        return groups * 4;
    }
};

WITH_VBMI std::size_t decode(const QBLBase64Alphabet& alphabet, const char* text,
                             std::size_t length, unsigned char* out) {
    const __m512i table = load(alphabet.strict), upperTable = load(alphabet.strict + 64);
    const __mmask16 threeQuarters = 0x0fff;
    std::size_t done = 0;
    for (; length - done >= kCharacters; done += kCharacters, out += kBytes) {
        const Decoded block(table, upperTable, load(text + done));
        if (!block.isGood()) return done + block.finish(out);
        _mm512_mask_storeu_epi32(out, threeQuarters, bytesOf(block.values));
    }
    // The load fills the last block with NULs, which are not in the alphabet.
    const __mmask64 rest = first(length - done);
    const Decoded block(table, upperTable, _mm512_maskz_loadu_epi8(rest, text + done));
    return done + block.finish(out);
}

}  // namespace

constexpr QBLBase64Kernels kQBLBase64Vbmi = {&encode, &decode};
