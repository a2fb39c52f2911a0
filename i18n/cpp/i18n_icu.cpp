#include "i18n/cpp/internal/i18n_icu.hpp"

#include <unicode/putil.h>
#include <unicode/ucnv.h>
#include <unicode/udata.h>

#include <new>
#include <string>

#include "i18n/cpp/internal/i18n_bin_dir.hpp"

namespace {

bool prepare() {
    determineBinDir();
    const std::string directory = i18nBinDir();
    // A directory that the process has set itself stays, unless the installation names one.
    if (!directory.empty() || *u_getDataDirectory() == '\0') {
        u_setDataDirectory(directory.empty() ? "." : directory.c_str());
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
    const char* const name = ucnv_getAlias(encoding, 0, &status);
    if (status == U_MEMORY_ALLOCATION_ERROR) throw std::bad_alloc();
    return U_SUCCESS(status) ? name : nullptr;
}
