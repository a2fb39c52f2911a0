#include <unicode/ucnv.h>

#include <cstring>

#include "QBLCore/Exceptions/QBLThrow.hpp"
#include "i18n/cpp/i18n_converter.hpp"
#include "i18n/cpp/i18n_errors.hpp"
#include "i18n/cpp/i18n_string.hpp"
#include "i18n/cpp/internal/i18n_bytes.hpp"
#include "i18n/cpp/internal/i18n_encodings.hpp"

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
    setConverted(bytes, I18NConverter(encoding), length);
}

void I18NString::setConverted(const char* bytes, const I18NConverter& converter, int length) {
    void* converted = nullptr;
    int size = 0;
    if (bytes != nullptr) converter.toUnicode(&converted, &size, bytes, length);
    const I18NBlock units(nullptr, nullptr, static_cast<char*>(converted));
    leaveAscii();
    const bool from943 = isCodePage943(converter.getEncoding());
    const int count = size >= 2 ? size / 2 - 1 : 0;
    // Text of other encodings is deliberately taken as normalised, as their tables give it so.
    assign(I18NTextView(reinterpret_cast<const char16_t*>(units.get()), count), !from943);
    setFlag(kI18NFromCodePage943, from943);
    setFlag(kI18NNormalized, true);
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

bool I18NConverter::shouldUseBOM(const I18NString& encoding) {
    return shouldUseBOM(encoding.c_str());
}
