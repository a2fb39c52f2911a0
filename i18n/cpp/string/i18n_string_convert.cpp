#include <unicode/ucnv.h>

#include <cstring>

#include "QBLCore/Exceptions/QBLThrow.hpp"
#include "i18n/cpp/converter/i18n_encodings.hpp"
#include "i18n/cpp/converter/i18n_icu_calls.hpp"
#include "i18n/cpp/i18n_converter.hpp"
#include "i18n/cpp/i18n_errors.hpp"
#include "i18n/cpp/i18n_internal_resources.hpp"
#include "i18n/cpp/i18n_string.hpp"
#include "i18n/cpp/string/i18n_bytes.hpp"

namespace {

/// Japanese text of this table has substitutions of its own to come.
bool isCodePage943(const char* encoding) {
    UErrorCode status = U_ZERO_ERROR;
    const char* const name = ucnv_getAlias(encoding, 0, &status);
    return U_SUCCESS(status) && name != nullptr && std::strncmp(name, "ibm-943_P15A", 12) == 0;
}

}  // namespace

// Takes bytes that are not to be read as ASCII or UTF-8.
void I18NString::setConverted(const char* bytes, const char* encoding, int length) {
    if (i18nIsUTF16(encoding)) {
        leaveAscii();
        const I18NString fresh(static_cast<const void*>(bytes), length);
        return assign(I18NTextView(fresh));
    }
    if (!I18NConverter::isInitialized()) {
        remove();
        return;
    }
    const I18NConverter converter(encoding);
    // Bytes in a string end at the first zero, in all encodings.
    const int whole = converter.getEffectiveBufferSize(bytes, length);
    int end = 0;
    while (end + converter.sizeofLegacyNull() <= whole &&
           !i18nIsNull(bytes + end, converter.sizeofLegacyNull()))
        end += converter.sizeofLegacyNull();
    if (end + converter.sizeofLegacyNull() > whole) end = whole;
    setConverted(bytes, converter, end);
}

// Takes over what the converter allocates; a buffer of the caller's is let go of.
void I18NString::setConverted(const char* bytes, const I18NConverter& converter, int length) {
    void* converted = nullptr;
    int size = 0;
    if (bytes != nullptr)
        converter.toUnicode(&converted, &size, bytes, length, m_allocator, m_allocatorContext);
    I18NBlock units(m_allocator, m_allocatorContext, static_cast<char*>(converted));
    I18NString fresh(Bare(), m_allocator, m_allocatorContext);
    fresh.createUnicodeString();
    if (units.get() == nullptr) {
        fresh.reserveUnits(0);
    } else {
        fresh.m_pCodeUnits = reinterpret_cast<char16_t*>(units.release());
        fresh.m_unitLength = fresh.m_unitCapacity = size / 2 - 1;
        fresh.alias();
    }
    fresh.setFlag(kI18NNoNormalization, hasFlag(kI18NNoNormalization));
    // Text of other encodings is deliberately taken as normalised, as their tables give it so.
    if (isCodePage943(converter.getEncoding())) {
        fresh.setFlag(kI18NFromCodePage943, true);
        fresh.renormalize();
    }
    replaceBy(fresh);
}

void I18NConverter::fromUnicode(char** destination, int* size, const I18NString& source,
                                I18NStringAllocator allocator, void* context) const {
    if (destination == nullptr || size == nullptr)
        QBL_THROW(I18NRuntimeError(I18N_ARGUMENT, nullptr));
    *destination = nullptr;
    *size = 0;
    if (allocator == nullptr) {
        allocator = source.m_allocator;
        context = source.m_allocatorContext;
    }
    if (source.empty() && allocator == nullptr) {
        *destination = gI18NNullString;
        *size = sizeof gI18NNullString;
        return;
    }
    I18NBytes bytes = i18nToBytes(I18NTextView(source), *this, I18NBlock(allocator, context));
    *destination = bytes.block.release();
    *size = bytes.length;
}

void I18NConverter::toUnicode(I18NString& destination, const char* source, int length) const {
    if (length < 0) length = getEffectiveBufferSize(source, length);
    if (source == nullptr || length == 0)
        destination.remove();
    else
        destination.setConverted(source, *this, length);
}

void I18NConverter::getEncodingForLocale(I18NString& encoding, const I18NLocale& locale) {
    encoding = I18NInternalResources::getInternalResources().getEncodingForLocale(locale).c_str();
}

bool I18NConverter::shouldUseBOM(const I18NString& encoding) {
    return shouldUseBOM(encoding.c_str());
}
