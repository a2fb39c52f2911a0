#ifndef I18N_CPP_UTF_I18N_ASCII_COPY_HPP
#define I18N_CPP_UTF_I18N_ASCII_COPY_HPP

#include <cstddef>

/// Copies ASCII between two encodings that both have it, and counts the line ends: LF, CR or CR LF.
struct I18NASCIICopy {
    const char* at;
    const char* end;
    char* out;       ///< room for all bytes
    bool isAfterCR;  ///< the text before the bytes ends with CR, so that LF ends no line
    std::size_t lines = 0;

    /// ASCII bytes that end the copy, too; unused ones are 0xFF.
    static constexpr int kMostOdd = 6;
    unsigned char odd[kMostOdd] = {0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF};
};

using I18NASCIICopier = void (*)(I18NASCIICopy&);
/// Copies whole blocks, and advances the pointers. Stops before a block that has another byte.
void i18nCopyASCIIBlocks(I18NASCIICopy& copy);
/// The same with larger blocks. Requires: i18nHasWideBlocks() is true.
void i18nCopyWideASCIIBlocks(I18NASCIICopy& copy);
/// The best of these for this processor.
I18NASCIICopier i18nASCIICopier();

#endif
