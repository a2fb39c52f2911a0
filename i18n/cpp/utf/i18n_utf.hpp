#ifndef I18N_CPP_UTF_I18N_UTF_HPP
#define I18N_CPP_UTF_I18N_UTF_HPP

#include <cstddef>
#include <cstdint>

/// The encodings that strings read and write without a converter. Lengths are in bytes for char, in
/// code units for char16_t.

// In 32 bits: operations on 16 with a constant of theirs are slow to be decoded.
inline bool i18nIsHigh(char16_t unit) { return std::uint32_t{unit} - 0xD800 < 0x400; }
inline bool i18nIsLow(char16_t unit) { return std::uint32_t{unit} - 0xDC00 < 0x400; }
inline char32_t i18nCombine(char16_t high, char16_t low) {
    return (static_cast<char32_t>(high) << 10) + low - ((0xD800U << 10) + 0xDC00U - 0x10000U);
}

inline bool i18nIsTrail(unsigned char byte) { return (byte & 0xC0) == 0x80; }
/// Trail bytes that a lead byte of UTF-8 from 0xC0 on announces, also for the lengths of five and
/// six bytes that Unicode does not have.
inline int i18nTrailsAnnounced(unsigned char lead) {
    return lead < 0xE0 ? 1 : lead < 0xF0 ? 2 : lead < 0xF8 ? 3 : lead < 0xFC ? 4 : 5;
}

/// Writes a code point, as a pair above U+FFFF. A lone surrogate stays one; what is beyond Unicode
/// becomes U+FFFD.
/// @return units written, 1 or 2
inline int i18nPutCodePoint(char16_t* out, char32_t c) {
    if (c <= 0xFFFF) {
        out[0] = static_cast<char16_t>(c);
        return 1;
    }
    if (c > 0x10FFFF) {
        out[0] = 0xFFFD;
        return 1;
    }
    out[0] = static_cast<char16_t>(0xD7C0 + (c >> 10));
    out[1] = static_cast<char16_t>(0xDC00 | (c & 0x3FF));
    return 2;
}

/// Whether no byte has its top bit set.
bool i18nIsASCII(const char* bytes, std::size_t length);
/// The same, and no byte is NUL.
bool i18nIsPlainASCII(const char* bytes, std::size_t length);
/// Whether no unit is above 0x7F.
bool i18nIsASCII(const char16_t* units, std::size_t length);

void i18nWiden(const char* ascii, std::size_t length, char16_t* out);
void i18nNarrow(const char16_t* ascii, std::size_t length, char* out);

/// Characters below the first of these, and from the second on before the third, are inert in
/// normalisation form C (see i18n_inert.hpp): most of Latin and Cyrillic. Unicode never changes
/// that for a character that it has.
constexpr char32_t kI18NInertBelow = 0x300, kI18NInertFrom = 0x400, kI18NInertBehind = 0x482;

inline bool i18nMayNeedNormalization(char32_t c) {
    return c >= kI18NInertBelow && (c < kI18NInertFrom || c >= kI18NInertBehind);
}

struct I18NDecoded {
    std::size_t units = 0;
    bool mayNeedNormalization = false;  ///< of one of the characters
};
/// Decodes UTF-8 up to a NUL byte or the length. A sequence that is not well-formed takes in the
/// trail bytes that follow its lead, as many as that announces, and becomes one error value by
/// their number: U+0015, U+009F, U+FFFF, U+10FFFF, and U+FFFF for the lengths that Unicode does not
/// have. A byte that begins nothing becomes U+0015. These are the values of the macros that the
/// decoding of such text was first written with; they are kept for those who store them.
/// @param out  room for `length` units
I18NDecoded i18nDecodeUTF8(const char* bytes, std::size_t length, char16_t* out);

/// Decodes well-formed UTF-8, NUL characters too, and stops in front of anything else, of the last
/// three bytes or where the room gets short, 16 units at the latest. All move on.
void i18nDecodeWellFormedUTF8(const char*& bytes, const char* end, char16_t*& out,
                              const char16_t* limit);

/// Bytes of the UTF-8 form, in which a lone surrogate is U+FFFD.
std::size_t i18nLengthUTF8(const char16_t* units, std::size_t length);
/// @param out  room for i18nLengthUTF8() bytes
/// @return behind the last byte written
char* i18nEncodeUTF8(const char16_t* units, std::size_t length, char* out);
/// The same up to a lone surrogate or half a pair at the end. Both move on.
/// @param out  room for three bytes a unit
void i18nEncodeWellFormedUTF8(const char16_t*& units, const char16_t* end, char*& out);

/// How many units there are in front of the first lone surrogate, or of half a pair at the end.
std::size_t i18nWellFormedUTF16(const char16_t* units, std::size_t length);

#endif
