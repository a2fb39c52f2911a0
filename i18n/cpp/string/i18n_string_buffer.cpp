#include <algorithm>
#include <cstring>

#include "QBLCore/Exceptions/QBLThrow.hpp"
#include "i18n/cpp/i18n_error_codes.h"
#include "i18n/cpp/i18n_errors.hpp"
#include "i18n/cpp/i18n_string.hpp"
#include "i18n/cpp/string/i18n_text_view.hpp"

namespace {

const char kStatic[] = "Cannot resize a static external buffer.";

}  // namespace

void I18NString::attach(void* buffer, int bytes) {
    const bool aligned = reinterpret_cast<std::uintptr_t>(buffer) % alignof(char16_t) == 0;
    if (buffer == nullptr || bytes < 2 || !aligned)
        QBL_THROW(I18NRuntimeError(I18N_ARGUMENT, nullptr));
    leaveAscii();
    if (!hasFlag(kI18NStaticBuffer)) {
        if (buffer == m_pCodeUnits) return;
        release(m_pCodeUnits);
    }
    setFlag(kI18NStaticBuffer, true);
    setFlag(kI18NNormalized, false);
    setFlag(kI18NFromCodePage943, false);
    m_pCodeUnits = static_cast<char16_t*>(buffer);
    m_unitCapacity = bytes / 2 - 1;
    const char16_t* const end = m_pCodeUnits + m_unitCapacity;
    m_unitLength =
        static_cast<int>(std::find(m_pCodeUnits, const_cast<char16_t*>(end), u'\0') - m_pCodeUnits);
    alias();
    changed();
}

int I18NString::copyToExternalBuffer(void* buffer, int bytes) const {
    if (buffer == nullptr || bytes < 2) return 0;
    const I18NTextView text(*this);
    const int units = std::min(bytes / 2 - 1, text.length());
    // The caller's memory need not be aligned as units are.
    char* out = static_cast<char*>(buffer);
    for (int i = 0; i <= units; ++i, out += 2) {
        const char16_t unit = i < units ? text[i] : u'\0';
        std::memcpy(out, &unit, sizeof unit);
    }
    return units * 2 + 2;
}

char16_t* I18NString::getExternalBuffer() {
    leaveAscii();
    return m_pCodeUnits;
}

void I18NString::resizeExternalBuffer() {
    leaveAscii();
    if (hasFlag(kI18NStaticBuffer)) {
        constexpr int kUnits = 15;
        auto* const block = reinterpret_cast<char16_t*>(allocate(kUnits * 2 + 2));
        setFlag(kI18NStaticBuffer, false);
        m_pCodeUnits = block;
        m_unitLength = 0;
        m_unitCapacity = kUnits;
        alias();
        changed();
        QBL_THROW(I18NRuntimeError(I18N_UNEXPECTED, kStatic));
    }
    resizeUnits(m_unitLength);
}
