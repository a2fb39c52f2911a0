#include "i18n/cpp/stream/i18n_stream_icu.hpp"

#include <cstring>

#include "QBLCore/Exceptions/QBLThrow.hpp"
#include "QBLCore/Exceptions/shared/QBLThrowNoMemory.hpp"
#include "i18n/cpp/i18n_errors.hpp"

I18NProgress i18nProgressOf(UErrorCode status, bool refused) {
    if (U_SUCCESS(status)) return I18NProgress::kDone;
    if (status == U_BUFFER_OVERFLOW_ERROR) return I18NProgress::kFull;
    if (status == U_MEMORY_ALLOCATION_ERROR) qblThrowNoMemory(QBL_HERE);
    if (!refused) QBL_THROW(I18NRuntimeError(I18N_UNEXPECTED, nullptr));
    return I18NProgress::kRefused;
}

bool i18nIsUTF16(UConverterType type) {
    return type == UCNV_UTF16_LittleEndian || type == UCNV_UTF16_BigEndian || type == UCNV_UTF16;
}

bool i18nIsMarkedUTF16(const UConverter* icu) {
    UErrorCode status = U_ZERO_ERROR;
    const char* const name = ucnv_getName(icu, &status);
    return i18nIsUTF16(ucnv_getType(icu)) && name != nullptr && std::strchr(name, ',') != nullptr;
}

bool i18nIsLMBCS(UConverterType type) { return type >= UCNV_LMBCS_1 && type <= UCNV_LMBCS_LAST; }

I18NStreamForm i18nFormOf(const UConverter* icu) {
    const UConverterType type = ucnv_getType(icu);
    if (type == UCNV_UTF8) return I18NStreamForm::kUTF8;
    if (type != UCNV_UTF16_LittleEndian) return I18NStreamForm::kOther;
    return i18nIsMarkedUTF16(icu) ? I18NStreamForm::kOther : I18NStreamForm::kUTF16;
}
