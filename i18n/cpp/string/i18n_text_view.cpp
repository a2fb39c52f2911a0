#include "i18n/cpp/string/i18n_text_view.hpp"

#include <climits>
#include <cwchar>

#include "QBLCore/Exceptions/QBLAllocation.hpp"
#include "QBLCore/Exceptions/shared/QBLThrowNoMemory.hpp"

void i18nThrowTooLong() { qblThrowNoMemory(QBL_HERE, "malloc failed to allocate memory."); }

I18NWideText::I18NWideText(const wchar_t* text) {
    const std::size_t count = text != nullptr ? std::wcslen(text) : 0;
    i18nRequireLength(static_cast<std::int64_t>(count) * 2);
    char16_t* out = m_small;
    if (count > kSmall / 2) {
        QBL_ALLOC_TRY
        m_pLarge.reset(out = new char16_t[count * 2]);
        QBL_ALLOC_CATCH
    }
    for (std::size_t i = 0; i < count; ++i)
        m_iLength += i18nPutCodePoint(out + m_iLength, static_cast<char32_t>(text[i]));
}
