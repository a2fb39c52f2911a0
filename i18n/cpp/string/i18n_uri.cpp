#include "i18n/cpp/i18n_uri.hpp"

#include <climits>

#include "QBLCore/Exceptions/QBLAllocation.hpp"
#include "QBLCore/Exceptions/shared/QBLThrowNoMemory.hpp"
#include "i18n/cpp/string/i18n_allocation.hpp"
#include "i18n/cpp/string/i18n_url_encoding.hpp"

namespace {

int digit(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    const char lower = static_cast<char>(c | 0x20);
    return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

std::string unescaped(const char* text) {
    std::string bytes;
    for (const char* p = text != nullptr ? text : ""; *p != '\0'; ++p) {
        const int high = *p == '%' ? digit(p[1]) : -1;
        const int low = high >= 0 ? digit(p[2]) : -1;
        bytes += low >= 0 ? static_cast<char>(high * 16 + low) : *p;
        if (low >= 0) p += 2;
    }
    return bytes;
}

void requireLength(std::size_t bytes) {
    if (bytes > static_cast<std::size_t>(INT_MAX)) qblThrowNoMemory(QBL_HERE);
}

}  // namespace

void I18NURLEncode(const char* text, I18NString& result) {
    QBL_ALLOC_TRY
    std::u16string escaped;
    i18nURLEncode(I18NString(text).toUtf16(), escaped);
    requireLength(escaped.size() * 2);
    result = I18NString(escaped.data(), static_cast<int>(escaped.size() * 2));
    I18N_ALLOC_CATCH
}

I18NString I18NUriDecode(const char* text, const char* encoding) {
    QBL_ALLOC_TRY
    const std::string bytes = unescaped(text);
    requireLength(bytes.size());
    return I18NString(bytes.data(), encoding, static_cast<int>(bytes.size()));
    I18N_ALLOC_CATCH
}

I18NString I18NUriDecode(const char* text, const I18NConverter& converter) {
    QBL_ALLOC_TRY
    const std::string bytes = unescaped(text);
    requireLength(bytes.size());
    return I18NString(bytes.data(), converter, static_cast<int>(bytes.size()));
    I18N_ALLOC_CATCH
}
