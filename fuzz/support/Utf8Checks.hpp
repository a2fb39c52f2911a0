#ifndef FUZZ_SUPPORT_UTF8CHECKS_HPP
#define FUZZ_SUPPORT_UTF8CHECKS_HPP

#include <unicode/uchar.h>
#include <unicode/unorm2.h>

#include <algorithm>
#include <memory>
#include <string>

#include "i18n/cpp/utf/i18n_utf.hpp"
#include "i18n/cpp/utf/i18n_utf_blocks.hpp"

/// Calls body(kernel, name) for each kernel that this processor can run.
/// @return the names of the kernels that this processor cannot run
template <class Body>
std::string eachUtf8Decoder(Body body) {
    const struct {
        const char* name;
        I18NDecoder kernel;
        bool runs;
    } levels[] = {{"SSSE3", i18nDecodeBlocks, i18nHasShuffles()},
                  {"AVX2", i18nDecodeWideBlocks, i18nHasWideBlocks()},
                  {"AVX-512", i18nDecodeWidestBlocks, i18nHasWidestBlocks()}};
    std::string missing;
    for (const auto& level : levels) {
        if (level.runs)
            body(level.kernel, level.name);
        else
            missing += std::string(level.name) + ' ';
    }
    return missing;
}

inline bool isInertToIcu(const char16_t* units, std::size_t length) {
    for (std::size_t i = 0; i < length; ++i) {
        const bool pair = i18nIsHigh(units[i]) && i + 1 < length && i18nIsLow(units[i + 1]);
        const auto codePoint =
            static_cast<UChar32>(pair ? i18nCombine(units[i], units[i + 1]) : units[i]);
        if (pair) ++i;
        if (u_getCombiningClass(codePoint) != 0 ||
            u_getIntPropertyValue(codePoint, UCHAR_NFC_QUICK_CHECK) != UNORM_YES)
            return false;
    }
    return true;
}

/// Returns true if a kernel decodes bytes as the plain decoder does, and if ICU agrees that all
/// characters outside the doubtful range are inert. The blocks have exactly the right sizes, so
/// that a sanitizer detects an extra byte.
inline bool decodesAsPlainly(I18NDecoder kernel, const std::string& bytes) {
    const std::size_t size = bytes.size();
    const std::unique_ptr<char[]> in(new char[size]);
    const std::unique_ptr<char16_t[]> plain(new char16_t[size]), units(new char16_t[size]);
    std::copy(bytes.begin(), bytes.end(), in.get());
    const I18NDecoded expected = i18nDecodeUTF8(nullptr, in.get(), size, plain.get());
    const I18NDecoded decoded = i18nDecodeUTF8(kernel, in.get(), size, units.get());
    return decoded.units == expected.units &&
           std::equal(units.get(), units.get() + decoded.units, plain.get()) &&
           decoded.doubtFrom <= decoded.doubtTo && decoded.doubtTo <= decoded.units &&
           isInertToIcu(units.get(), decoded.doubtFrom) &&
           isInertToIcu(units.get() + decoded.doubtTo, decoded.units - decoded.doubtTo);
}

#endif
