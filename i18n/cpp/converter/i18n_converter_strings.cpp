// The operations of I18NConverter that take or return strings.

#include "QBLCore/Exceptions/QBLThrow.hpp"
#include "i18n/cpp/i18n_converter.hpp"
#include "i18n/cpp/i18n_errors.hpp"
#include "i18n/cpp/i18n_string.hpp"
#include "i18n/cpp/string/i18n_bytes.hpp"

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
