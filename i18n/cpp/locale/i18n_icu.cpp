#include "i18n/cpp/locale/i18n_icu.hpp"

#include <unicode/locid.h>
#include <unicode/ucnv.h>

#include <cstdlib>

#include "QBLCore/Exceptions/shared/QBLThrowNoMemory.hpp"
#include "i18n/cpp/i18n_platform_encoding.h"
#include "i18n/cpp/string/i18n_normal_form.hpp"

/// A function of ICU that no installed header declares; null if ICU no longer has it.
extern "C" __attribute__((weak)) const char* uprv_getDefaultLocaleID();

namespace {

bool determineDefaultLocale() {
    // ICU asks the system for the name of the default locale while it holds a lock. If memory is
    // exhausted then, ICU asks itself for the default locale and deadlocks. So this function makes
    // ICU determine the name first.
    if (uprv_getDefaultLocaleID != nullptr && uprv_getDefaultLocaleID() == nullptr)
        qblThrowNoMemory(QBL_HERE);
    // ICU returns a null reference if there is no memory for the locale.
    const icu::Locale* made = &icu::Locale::getDefault();
    asm volatile("" : "+r"(made));
    if (made == nullptr) qblThrowNoMemory(QBL_HERE);
    return true;
}

}  // namespace

void i18nWarmUpICU() {
    i18nPrepareICU();
    i18nCanonicalEncoding(I18NGetPlatformDefaultEncoding());
    for (const auto form : {I18N_NFC, I18N_NFD, I18N_NFKC, I18N_NFKD}) i18nNormalizer(form);
    i18nDefaultLocale();
}

void i18nRequireSpareMemory() {
    void* const block = std::malloc(std::size_t{1} << 16);
    const bool isSpare = block != nullptr;
    asm volatile("" : : "r"(block) : "memory");  // keeps the compiler from removing the allocation
    std::free(block);
    if (!isSpare) qblThrowNoMemory(QBL_HERE);
}

const icu::Locale& i18nDefaultLocale() {
    static const bool kKnown = determineDefaultLocale();
    static_cast<void>(kKnown);
    return icu::Locale::getDefault();
}

const char* i18nCanonicalEncoding(const char* encoding) {
    UErrorCode status = U_ZERO_ERROR;
    const char* const name = ucnv_getAlias(encoding, 0, &status);
    if (status == U_MEMORY_ALLOCATION_ERROR) qblThrowNoMemory(QBL_HERE);
    return U_SUCCESS(status) ? name : nullptr;
}
