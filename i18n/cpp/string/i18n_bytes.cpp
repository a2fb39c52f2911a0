#include "i18n/cpp/string/i18n_bytes.hpp"

#include <cstring>
#include <utility>

#include "QBLCore/Exceptions/QBLAllocation.hpp"
#include "i18n/cpp/converter/i18n_converter_access.hpp"
#include "i18n/cpp/converter/i18n_encodings.hpp"
#include "i18n/cpp/i18n_converter.hpp"
#include "i18n/cpp/string/i18n_allocation.hpp"

namespace {

constexpr std::size_t kShort = 1024;

/// Encodes a short text on the stack, which costs less than counting its bytes first.
I18NBytes shortToUTF8(const char16_t* units, std::size_t length, I18NBlock block) {
    char aside[3 * kShort];
    const char* const end = i18nEncodeUTF8(units, length, aside);
    const auto bytes = static_cast<std::size_t>(end - aside);
    block.resize(static_cast<std::int64_t>(bytes) + 1);
    std::memcpy(block.get(), aside, bytes);
    block.get()[bytes] = '\0';
    return {std::move(block), static_cast<int>(bytes) + 1, 1};
}

I18NBytes toUTF8(const I18NTextView& text, I18NBlock block) {
    const auto units = static_cast<std::size_t>(text.length());
    if (text.ascii() == nullptr && units <= kShort)
        return shortToUTF8(text.units(), units, std::move(block));
    const std::size_t bytes = text.ascii() != nullptr ? units : i18nLengthUTF8(text.units(), units);
    block.resize(static_cast<std::int64_t>(bytes) + 1);
    if (text.ascii() != nullptr)
        text.copyTo(block.get());
    else
        i18nEncodeUTF8(text.units(), units, block.get());
    block.get()[bytes] = '\0';
    return {std::move(block), static_cast<int>(bytes) + 1, 1};
}

I18NBytes toUTF16(const I18NTextView& text, I18NBlock block) {
    const std::int64_t bytes = std::int64_t{text.length()} * 2;
    block.resize(bytes + 2);
    text.copyTo(reinterpret_cast<char16_t*>(block.get()));
    std::memset(block.get() + bytes, 0, 2);
    return {std::move(block), static_cast<int>(bytes) + 2, 2};
}

/// A NUL that is wide enough for every encoding.
I18NBytes widestZero(I18NBlock block) {
    block.resize(4);
    std::memset(block.get(), 0, 4);
    return {std::move(block), 4, 4};
}

}  // namespace

I18NBytes i18nToBytes(const I18NTextView& text, const I18NConverter& converter, I18NBlock block) {
    if (text.length() == 0) return widestZero(std::move(block));
    if (text.ascii() != nullptr && i18nKeepsASCII(converter.getEncoding()))
        return toUTF8(text, std::move(block));
    QBL_ALLOC_TRY
    std::u16string widened;
    const char16_t* units = text.units();
    if (text.ascii() != nullptr) {
        widened.resize(static_cast<std::size_t>(text.length()));
        text.copyTo(&widened[0]);
        units = widened.c_str();
    }
    char* bytes = nullptr;
    int length = 0;
    I18NCountedText::fromUnicode(converter, &bytes, &length, units, text.length(),
                                 block.allocator(), block.context());
    return {I18NBlock(block.allocator(), block.context(), bytes), length,
            converter.sizeofLegacyNull()};
    I18N_ALLOC_CATCH
}

I18NBytes i18nToBytes(const I18NTextView& text, const char* encoding, I18NBlock block) {
    if (text.length() == 0 && text.ascii() == nullptr) return widestZero(std::move(block));
    if (i18nIsUTF8(encoding) || (text.ascii() != nullptr && i18nKeepsASCII(encoding)))
        return toUTF8(text, std::move(block));
    if (i18nIsUTF16(encoding)) return toUTF16(text, std::move(block));
    return i18nToBytes(text, I18NConverter(encoding), std::move(block));
}
