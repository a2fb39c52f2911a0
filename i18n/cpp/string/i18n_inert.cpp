#include "i18n/cpp/string/i18n_inert.hpp"

#include <unicode/normalizer2.h>

#include <atomic>
#include <cstdint>

#include "TavThread/shared/TavContain.hpp"
#include "i18n/cpp/string/i18n_normal_form.hpp"
#include "i18n/cpp/utf/i18n_utf.hpp"

namespace {

enum Kind : std::uint8_t { kUnknown, kInert, kOther };

/// The kind of each code unit, computed on first use. Threads that compute the same kind at the
/// same time get the same result. A lone surrogate is inert. A high surrogate counts as inert only
/// if all characters that begin with it are inert, as for emoji. So pairs need not be combined.
std::atomic<std::uint8_t> g_kinds[0x10000];

bool isInert(const icu::Normalizer2& form, char32_t c) {
    UErrorCode status = U_ZERO_ERROR;
    const auto codePoint = static_cast<UChar32>(c);
    return form.getCombiningClass(codePoint) == 0 &&
           form.quickCheck(icu::UnicodeString(codePoint), status) == UNORM_YES && U_SUCCESS(status);
}

Kind find(char16_t unit) {
    const icu::Normalizer2* form = nullptr;
    if (!tavContain([&form] { form = &i18nNormalizer(I18N_NFC); })) return kOther;  // not stored
    bool inert = isInert(*form, unit);
    if (i18nIsHigh(unit))
        for (char16_t low = 0xDC00; low < 0xE000 && inert; ++low)
            inert = isInert(*form, i18nCombine(unit, low));
    const Kind kind = inert ? kInert : kOther;
    g_kinds[unit].store(kind, std::memory_order_relaxed);
    return kind;
}

std::uint8_t known(char16_t unit) { return g_kinds[unit].load(std::memory_order_relaxed); }

constexpr int kRun = 16;

bool isKnownInert(const char16_t* run) {
    unsigned all = kInert;
#pragma GCC unroll 16
    for (int i = 0; i < kRun; ++i) all &= known(run[i]);
    return all == kInert;
}

}  // namespace

bool i18nIsInert(const char16_t* units, std::size_t length) {
    const char16_t* const end = units + length;
    while (units != end) {
        if (end - units >= kRun && isKnownInert(units)) {
            units += kRun;
            continue;
        }
        for (int i = 0; i < kRun && units != end; ++i, ++units) {
            const std::uint8_t kind = known(*units);
            if (kind == kOther || (kind == kUnknown && find(*units) == kOther)) return false;
        }
    }
    return true;
}
