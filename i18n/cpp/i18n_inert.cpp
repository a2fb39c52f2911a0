#include "i18n/cpp/internal/i18n_inert.hpp"

#include <unicode/normalizer2.h>

#include <atomic>
#include <cstdint>

#include "i18n/cpp/internal/i18n_utf.hpp"

namespace {

constexpr int kShift = 6;
enum Kind : std::uint8_t { Unknown, Inert, Mixed };

/// What is known of each 64 code points; found out when first met. Threads that meet one at a time
/// find the same.
std::atomic<std::uint8_t> g_kinds[0x110000 >> kShift];

Kind find(std::uint32_t block) {
    UErrorCode status = U_ZERO_ERROR;
    const icu::Normalizer2* const form = icu::Normalizer2::getNFCInstance(status);
    Kind kind = U_SUCCESS(status) ? Inert : Mixed;
    for (std::uint32_t i = 0; i < (1U << kShift) && kind == Inert; ++i) {
        const auto c = static_cast<UChar32>((block << kShift) + i);
        const icu::UnicodeString one(c);
        if (form->getCombiningClass(c) != 0 || form->quickCheck(one, status) != UNORM_YES)
            kind = Mixed;
    }
    g_kinds[block].store(kind, std::memory_order_relaxed);
    return kind;
}

bool isInert(char32_t c) {
    const std::uint32_t block = c >> kShift;
    const std::uint8_t kind = g_kinds[block].load(std::memory_order_relaxed);
    return kind == Inert || (kind == Unknown && find(block) == Inert);
}

}  // namespace

bool i18nIsInert(const char16_t* units, std::size_t length) {
    for (std::size_t i = 0; i < length; ++i) {
        char32_t c = units[i];
        if (i18nIsHigh(units[i]) && i + 1 < length && i18nIsLow(units[i + 1])) {
            c = i18nCombine(units[i], units[i + 1]);
            ++i;
        }
        if (!isInert(c)) return false;
    }
    return true;
}
