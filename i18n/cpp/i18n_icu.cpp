#include "i18n/cpp/internal/i18n_icu.hpp"

#include <unicode/putil.h>
#include <unicode/ucnv.h>
#include <unicode/udata.h>

namespace {

bool prepare() {
    if (*u_getDataDirectory() == '\0') {
        u_setDataDirectory(".");
        UErrorCode status = U_ZERO_ERROR;
        udata_setFileAccess(UDATA_PACKAGES_FIRST, &status);
    }
    return true;
}

}  // namespace

void i18nPrepareICU() {
    static const bool prepared = prepare();
    static_cast<void>(prepared);
}

const char* i18nCanonicalEncoding(const char* encoding) {
    UErrorCode status = U_ZERO_ERROR;
    return ucnv_getAlias(encoding, 0, &status);
}
