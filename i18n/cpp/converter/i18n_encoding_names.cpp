#include "i18n/cpp/i18n_encoding_names.h"

#include <unicode/ucnv.h>

#include <cstdint>
#include <initializer_list>

#include "i18n/cpp/locale/i18n_icu.hpp"

int I18NCountEncodings() {
    i18nPrepareICU();
    return ucnv_countAvailable();
}

const char* I18NGetEncodingName(int encoding, int name) {
    i18nPrepareICU();
    const char* const own = ucnv_getAvailableName(encoding);
    if (own == nullptr || name < 0) return nullptr;
    UErrorCode status = U_ZERO_ERROR;
    if (name > 0) {
        const bool isThere = name <= ucnv_countAliases(own, &status);
        return isThere ? ucnv_getAlias(own, static_cast<std::uint16_t>(name - 1), &status)
                       : nullptr;
    }
    for (const char* standard : {"MIME", "IANA"})
        if (const char* usual = ucnv_getStandardName(own, standard, &status)) return usual;
    return own;
}
