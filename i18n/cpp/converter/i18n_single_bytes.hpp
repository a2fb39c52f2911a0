#ifndef I18N_CPP_CONVERTER_I18N_SINGLE_BYTES_HPP
#define I18N_CPP_CONVERTER_I18N_SINGLE_BYTES_HPP

#include <cstdint>

/// The UTF-16 units of all bytes, for an encoding in which each character has one byte. If a byte
/// has no character, or if ICU must convert it, its unit is kNone, a surrogate.
struct I18NSingleBytes {
    static constexpr char16_t kNone = 0xD800;

    void set(unsigned char byte, char16_t unit) {
        units[byte] = unit;
        lower[byte] = static_cast<std::uint8_t>(unit);
        upper[byte] = static_cast<std::uint8_t>(unit >> 8);
    }

    char16_t units[0x100];
    std::uint8_t lower[0x100], upper[0x100];  // the bytes of the units
};

/// The bytes that remain to be decoded, and the room for their units.
struct I18NSinglesDecoding {
    const unsigned char* at;
    const unsigned char* end;
    char16_t* out;
    char16_t* limit;
};
using I18NSinglesDecoder = void (*)(I18NSinglesDecoding&, const I18NSingleBytes&);
/// Decodes whole blocks, and advances the pointers. Stops before a block with a unit that is kNone.
void i18nDecodeSingles(I18NSinglesDecoding& decoding, const I18NSingleBytes& table);
/// Does the same with larger blocks. Requires: i18nHasWidestBlocks() is true.
void i18nDecodeWidestSingles(I18NSinglesDecoding& decoding, const I18NSingleBytes& table);
/// Returns the best of these functions for this processor.
I18NSinglesDecoder i18nSinglesDecoder();

#endif
