#ifndef I18N_CPP_CONVERTER_I18N_SINGLE_BYTES_HPP
#define I18N_CPP_CONVERTER_I18N_SINGLE_BYTES_HPP

#include <cstdint>

/// The characters of an encoding in which each has one byte. Bytes that have none, or whose
/// character ICU has to convert, have kNone, which is a surrogate.
struct I18NSingleBytes {
    static constexpr char16_t kNone = 0xD800;

    void set(unsigned char byte, char16_t unit) {
        units[byte] = unit;
        lower[byte] = static_cast<std::uint8_t>(unit);
        upper[byte] = static_cast<std::uint8_t>(unit >> 8);
    }

    char16_t units[0x100];
    std::uint8_t lower[0x100], upper[0x100];  // the same as bytes
};

/// What a decoder has left to do.
struct I18NSinglesDecoding {
    const unsigned char* at;
    const unsigned char* end;
    char16_t* out;
    char16_t* limit;
};
using I18NSinglesDecoder = void (*)(I18NSinglesDecoding&, const I18NSingleBytes&);
/// Decodes whole blocks, and advances the pointers. Stops before a block that has kNone.
void i18nDecodeSingles(I18NSinglesDecoding& decoding, const I18NSingleBytes& table);
/// The same with larger blocks. Requires: i18nHasWidestBlocks() is true.
void i18nDecodeWidestSingles(I18NSinglesDecoding& decoding, const I18NSingleBytes& table);
/// The best of these for this processor.
I18NSinglesDecoder i18nSinglesDecoder();

#endif
