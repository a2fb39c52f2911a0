#include <unicode/putil.h>
#include <unicode/udata.h>

#include <string>

#include "QBLCore/Exceptions/QBLAllocation.hpp"
#include "i18n/cpp/locale/i18n_icu.hpp"
#include "i18n/cpp/resources/i18n_bin_dir.hpp"

namespace {

bool prepare() {
    QBL_ALLOC_TRY
    determineBinDir();
    const std::string directory = i18nBinDir();
    // Keeps a directory that the process itself has set, unless a bin directory was found.
    if (!directory.empty() || *u_getDataDirectory() == '\0') {
        u_setDataDirectory(directory.empty() ? "." : directory.c_str());
        UErrorCode status = U_ZERO_ERROR;
        udata_setFileAccess(UDATA_PACKAGES_FIRST, &status);
    }
    return true;
    QBL_ALLOC_CATCH
}

}  // namespace

void i18nPrepareICU() {
    static const bool kPrepared = prepare();
    static_cast<void>(kPrepared);
}
