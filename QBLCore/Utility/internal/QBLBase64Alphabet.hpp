#ifndef QBLCORE_UTILITY_INTERNAL_QBLBASE64ALPHABET_HPP
#define QBLCORE_UTILITY_INTERNAL_QBLBASE64ALPHABET_HPP

#include <cstdint>

/// All lookup tables of an alphabet. Numbers of several bytes are little-endian, so that they can
/// be copied to the output.
struct QBLBase64Alphabet {
    /// The character of each value.
    unsigned char character[64];
    /// The value of each character: 0 to 63, 249 to 255 for ':' to '@', or one of the constants
    /// below.
    unsigned char value[256];
    static constexpr unsigned char kSkipped = 64, kPad = 65, kInvalid = 66;

    /// The two characters for each number of twelve bits.
    std::uint16_t pair[4096];
    /// The bits that a character contributes to the three bytes of its group. Indexed by the place
    /// of the character in the group, and by the character. The entry is kOther, a bit of the
    /// fourth byte, if the value of the character is above 63.
    std::uint32_t part[4][256];
    static constexpr std::uint32_t kOther = 1U << 24;

    /// The value of each ASCII character; 0x80 if the character is not in the alphabet.
    alignas(64) unsigned char strict[128];

    // Tables for lookups by byte shuffles, after W. Mula and D. Lemire, "Faster Base64 Encoding and
    // Decoding using AVX2 Instructions" (2018).

    /// The number to add to a value to get its character. The index is 0 for values up to 25, 1 for
    /// values up to 51, and the value minus 50 for higher values.
    alignas(16) unsigned char toCharacter[16];
    /// A character is in the alphabet if the entry of `low` for its lower four bits and the entry
    /// of `high` for its upper four bits have no bit in common.
    alignas(16) unsigned char low[16];
    alignas(16) unsigned char high[16];
    /// The number to add to a character to get its value. The index is the character's upper four
    /// bits, plus kOdd if its entry of `low` has this bit.
    alignas(16) unsigned char toValue[16];
    /// A bit of `low` that gives some characters entries of their own in `toValue`. It is set in
    /// the entry for the lower four bits of the character for 63. If the upper four bits of the
    /// characters for 62 and 63 differ, it is also set in the entry for the character for 62.
    /// `high` does not use this bit.
    static constexpr unsigned char kOdd = 8;

    /// Takes the characters for the values 62 and 63. Only these differ between alphabets.
    constexpr QBLBase64Alphabet(unsigned char for62, unsigned char for63)
        : character(), value(), pair(), part(), strict(), toCharacter(), low(), high(), toValue() {
        for (unsigned v = 0; v < 64; ++v)
            character[v] = v == 62 ? for62 : v == 63 ? for63 : byte(v + plainOffset(v));
        for (unsigned c = 0; c < 256; ++c)
            value[c] = c == for62 ? 62 : c == for63 ? 63 : plainValue(c);
        for (unsigned bits = 0; bits < 4096; ++bits)
            pair[bits] =
                static_cast<std::uint16_t>(character[bits >> 6] | character[bits & 63] << 8);
        for (unsigned c = 0; c < 256; ++c) {
            const std::uint32_t v = value[c];
            const std::uint32_t parts[4] = {v << 2, v >> 4 | (v & 15) << 12,
                                            v >> 2 << 8 | (v & 3) << 22, v << 16};
            for (int place = 0; place < 4; ++place) part[place][c] = v < 64 ? parts[place] : kOther;
        }
        for (unsigned c = 0; c < 128; ++c)
            strict[c] = value[c] < 64 && character[value[c]] == c ? value[c] : byte(0x80);
        makeShuffles(for62, for63);
    }

private:
    static constexpr unsigned char byte(unsigned v) { return static_cast<unsigned char>(v); }
    static constexpr unsigned plainOffset(unsigned v) {
        return v < 26 ? 'A' : v < 52 ? 'a' - 26 : '0' - 52U;
    }
    static constexpr unsigned char plainValue(unsigned c) {
        if (c == ' ' || (c >= '\t' && c <= '\r')) return kSkipped;
        if (c == '=') return kPad;
        return c <= '9'   ? byte(c + 4)
               : c <= 'Z' ? byte(c - 65)
               : c <= 'z' ? byte(c - 71)
                          : kInvalid;
    }

    constexpr void makeShuffles(unsigned char for62, unsigned char for63) {
        const unsigned char bits[] = {1, 2, 4, 16, 32, 64};  // for upper halves 2 to 7
        for (unsigned half = 0; half < 16; ++half) {
            high[half] = half < 2 || half > 7 ? byte(0x80) : bits[half - 2];
            low[half] = 0x80;
        }
        low[for63 & 15] |= kOdd;
        if (for62 >> 4 != for63 >> 4) low[for62 & 15] |= kOdd;
        for (unsigned c = 0x20; c < 0x80; ++c) {
            if (strict[c] < 64)
                toValue[c >> 4 | (low[c & 15] & kOdd)] = byte(value[c] - c);
            else
                low[c & 15] = byte(low[c & 15] | high[c >> 4]);
        }
        toCharacter[0] = 'A';
        toCharacter[1] = 'a' - 26;
        for (unsigned v = 52; v < 64; ++v) toCharacter[v - 50] = byte(character[v] - v);
    }
};

extern const QBLBase64Alphabet kQBLBase64Standard, kQBLBase64Url;

#endif
