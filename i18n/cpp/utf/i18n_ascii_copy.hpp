#ifndef I18N_CPP_UTF_I18N_ASCII_COPY_HPP
#define I18N_CPP_UTF_I18N_ASCII_COPY_HPP

#include <cstddef>

/// The state of a copy of ASCII between two encodings that both contain ASCII. The copy also counts
/// the line ends: LF, CR or CR LF.
struct I18NASCIICopy {
    const char* at;
    const char* end;
    char* out;              ///< room for all bytes
    bool isAfterCR;         ///< the text before `at` ends with CR, so an LF at `at` is no line end
    std::size_t lines = 0;  ///< number of line ends so far

    /// ASCII bytes that the copy must not contain; unused entries are 0xFF.
    static constexpr int kMostOdd = 6;
    unsigned char odd[kMostOdd] = {0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF};
};

using I18NASCIICopier = void (*)(I18NASCIICopy&);
/// Copies whole blocks, and advances the pointers. Stops before a block with a byte that is not
/// ASCII or is in `odd`.
void i18nCopyASCIIBlocks(I18NASCIICopy& copy);
/// Does the same with larger blocks. Requires: i18nHasWideBlocks() is true.
void i18nCopyWideASCIIBlocks(I18NASCIICopy& copy);
/// Returns the best of these functions for this processor.
I18NASCIICopier i18nASCIICopier();

#endif
