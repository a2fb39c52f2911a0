#include "i18n/cpp/i18n_platform_encoding.h"

#include <unicode/ucnv.h>

#include <atomic>
#include <cstdlib>
#include <cstring>

#include "i18n/cpp/locale/i18n_icu.hpp"

const char* I18NGetPlatformDefaultEncoding() {
    static std::atomic<const char*> s_cached{nullptr};
    const char* known = s_cached.load(std::memory_order_acquire);
    if (known != nullptr) return known;
    i18nPrepareICU();
    const char* name = ucnv_getDefaultName();
    if (name == nullptr || *name == '\0') name = I18NGetToolkitDefaultEncoding();
    char* copy = strdup(name);
    // If there is no memory, returns ICU's own text; the next call tries again.
    if (copy == nullptr) return name;
    if (s_cached.compare_exchange_strong(known, copy, std::memory_order_acq_rel)) return copy;
    std::free(copy);
    return known;
}

const char* I18NGetNormalizedPlatformDefaultEncoding() {
    const char* own = I18NGetPlatformDefaultEncoding();
    UErrorCode status = U_ZERO_ERROR;
    const char* name = ucnv_getStandardName(own, "IANA", &status);
    return name != nullptr && U_SUCCESS(status) ? name : own;
}

const char* I18NGetToolkitDefaultEncoding() { return "UTF-8"; }
