#ifndef I18N_CPP_UTF_I18N_UTF_HPP
#define I18N_CPP_UTF_I18N_UTF_HPP

#include <cstddef>
#include <cstdint>

/// The encodings that strings read and write without a converter. Lengths are in bytes for char,
/// and in code units for char16_t.

// These functions compute in 32 bits, because processors decode 16-bit instructions with 16-bit
// constants slowly.
inline bool i18nIsHigh(char16_t unit) { return std::uint32_t{unit} - 0xD800 < 0x400; }
inline bool i18nIsLow(char16_t unit) { return std::uint32_t{unit} - 0xDC00 < 0x400; }
inline char32_t i18nCombine(char16_t high, char16_t low) {
    return (static_cast<char32_t>(high) << 10) + low - ((0xD800U << 10) + 0xDC00U - 0x10000U);
}

inline bool i18nIsTrail(unsigned char byte) { return (byte & 0xC0) == 0x80; }
/// Returns how many trail bytes a UTF-8 lead byte from 0xC0 on announces. Includes the lengths of
/// five and six bytes, which Unicode does not have.
inline int i18nTrailsAnnounced(unsigned char lead) {
    return lead < 0xE0 ? 1 : lead < 0xF0 ? 2 : lead < 0xF8 ? 3 : lead < 0xFC ? 4 : 5;
}

/// Writes a code point. A code point above U+FFFF becomes a surrogate pair. A lone surrogate stays
/// as it is, and a value beyond U+10FFFF becomes U+FFFD.
/// @return the number of units written, 1 or 2
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

/// Returns true if no byte has its top bit set.
bool i18nIsASCII(const char* bytes, std::size_t length);
/// Returns true if no byte has its top bit set and no byte is NUL.
bool i18nIsPlainASCII(const char* bytes, std::size_t length);
/// Returns true if no unit is above 0x7F.
bool i18nIsASCII(const char16_t* units, std::size_t length);

void i18nWiden(const char* ascii, std::size_t length, char16_t* out);
void i18nNarrow(const char16_t* ascii, std::size_t length, char* out);

/// Characters below the first value, and from the second value up to the third, are inert in
/// normalisation form C (see i18n_inert.hpp): most of Latin and Cyrillic. Unicode never changes
/// this property of an assigned character.
constexpr char32_t kI18NInertBelow = 0x300, kI18NInertFrom = 0x400, kI18NInertBehind = 0x482;

inline bool i18nMayNeedNormalization(char32_t c) {
    return c >= kI18NInertBelow && (c < kI18NInertFrom || c >= kI18NInertBehind);
}

struct I18NDecoded {
    std::size_t units = 0;
    /// Units outside of this range are inert in normalisation form C (see i18n_inert.hpp).
    std::size_t doubtFrom = 0, doubtTo = 0;
};
/// Decodes UTF-8 up to a NUL byte or the length. An ill-formed sequence is the lead byte and the
/// trail bytes after it, at most as many as the lead byte announces. It becomes one error value,
/// depending on the number of trail bytes: U+0015 for 0, U+009F for 1, U+FFFF for 2, U+10FFFF for
/// 3, and U+FFFF for 4 and 5, which Unicode does not have. A byte that cannot begin a sequence
/// becomes U+0015. These values come from the macros that first decoded such text, and stay for
/// programs that store them.
/// @param out  room for `length` units
I18NDecoded i18nDecodeUTF8(const char* bytes, std::size_t length, char16_t* out);

/// Decodes well-formed UTF-8, including NUL characters, and advances the pointers. Stops before
/// ill-formed bytes, among the last three bytes, or once fewer than 16 units of room are left.
void i18nDecodeWellFormedUTF8(const char*& bytes, const char* end, char16_t*& out,
                              const char16_t* limit);

/// Returns the number of bytes of the UTF-8 form, in which a lone surrogate is U+FFFD.
std::size_t i18nLengthUTF8(const char16_t* units, std::size_t length);
/// @param out  room for i18nLengthUTF8() bytes
/// @return the end of the bytes written
char* i18nEncodeUTF8(const char16_t* units, std::size_t length, char* out);
/// Encodes up to the first lone surrogate, or up to half a pair at the end, and advances the
/// pointers.
/// @param out  room for three bytes per unit
void i18nEncodeWellFormedUTF8(const char16_t*& units, const char16_t* end, char*& out);

/// Returns the number of units before the first lone surrogate or half a pair at the end.
std::size_t i18nWellFormedUTF16(const char16_t* units, std::size_t length);

#endif
