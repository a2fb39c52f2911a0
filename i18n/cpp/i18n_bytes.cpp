#include "i18n/cpp/internal/i18n_bytes.hpp"

#include <climits>
#include <cstdlib>
#include <cstring>

#include "QBLCore/Exceptions/QBLAllocation.hpp"
#include "QBLCore/Exceptions/QBLOutOfMemoryError.hpp"
#include "QBLCore/Exceptions/QBLThrow.hpp"
#include "i18n/cpp/i18n_converter.hpp"
#include "i18n/cpp/i18n_error_codes.h"
#include "i18n/cpp/internal/i18n_encodings.hpp"

namespace {

const char kAllocator[] = "The specified allocator callback failed to allocate memory.";
const char kMalloc[] = "malloc failed to allocate memory.";
const char kRealloc[] = "realloc failed to reallocate memory.";

int checkedSize(std::int64_t size) {
    if (size > INT_MAX) QBL_THROW(QBLOutOfMemoryError(0, kMalloc));
    return static_cast<int>(size);
}

I18NBytes toUTF8(const I18NTextView& text, const I18NMemory& memory) {
    const auto units = static_cast<std::size_t>(text.length());
    if (text.ascii() != nullptr) {
        char* const block = memory.allocate(nullptr, text.length() + 1);
        text.copyTo(block);
        block[units] = '\0';
        return {block, text.length() + 1, 1};
    }
    const std::size_t bytes = i18nLengthUTF8(text.units(), units);
    const int size = checkedSize(static_cast<std::int64_t>(bytes) + 1);
    char* const block = memory.allocate(nullptr, size);
    *i18nEncodeUTF8(text.units(), units, block) = '\0';
    return {block, size, 1};
}

I18NBytes toUTF16(const I18NTextView& text, const I18NMemory& memory) {
    const int size = checkedSize(std::int64_t{text.length()} * 2 + 2);
    char* const block = memory.allocate(nullptr, size);
    text.copyTo(reinterpret_cast<char16_t*>(block));
    std::memset(block + size - 2, 0, 2);
    return {block, size, 2};
}

}  // namespace

I18NBytes i18nToBytes(const I18NTextView& text, const I18NConverter& converter,
                      const I18NMemory& memory) {
    if (text.length() == 0) {  // a zero that is wide enough for every encoding
        char* const block = memory.allocate(nullptr, 4);
        std::memset(block, 0, 4);
        return {block, 4, 4};
    }
    QBL_ALLOC_TRY
    std::u16string widened;
    const char16_t* units = text.units();
    if (text.ascii() != nullptr) {
        widened.resize(static_cast<std::size_t>(text.length()));
        text.copyTo(&widened[0]);
        units = widened.c_str();
    }
    I18NBytes bytes{nullptr, 0, converter.sizeofLegacyNull()};
    converter.fromUnicode(&bytes.block, &bytes.length, units, memory.allocator(), memory.context());
    return bytes;
    QBL_ALLOC_CATCH
}

char* I18NMemory::allocate(char* block, int size) const {
    if (m_allocator != nullptr) {
        int error = I18N_OK;
        char* const result = m_allocator(m_context, block, size, &error);
        if (result == nullptr || error != I18N_OK) QBL_THROW(QBLOutOfMemoryError(0, kAllocator));
        return result;
    }
    void* const result = std::realloc(block, static_cast<std::size_t>(size));
    if (result == nullptr) QBL_THROW(QBLOutOfMemoryError(0, block == nullptr ? kMalloc : kRealloc));
    return static_cast<char*>(result);
}

void I18NMemory::release(void* block) const noexcept {
    if (block == nullptr) return;
    int ignored = I18N_OK;
    if (m_allocator != nullptr)
        m_allocator(m_context, static_cast<char*>(block), 0, &ignored);
    else
        std::free(block);
}

I18NBytes i18nToBytes(const I18NTextView& text, const char* encoding, const I18NMemory& memory) {
    if (i18nIsUTF8(encoding) || (text.ascii() != nullptr && i18nKeepsASCII(encoding)))
        return toUTF8(text, memory);
    if (i18nIsUTF16(encoding)) return toUTF16(text, memory);
    return i18nToBytes(text, I18NConverter(encoding), memory);
}
