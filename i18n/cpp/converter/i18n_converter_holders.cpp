#include "i18n/cpp/i18n_converter_holders.hpp"

#include <atomic>
#include <utility>

#include "QBLCore/Base/QBLImmortal.hpp"
#include "QBLCore/Exceptions/QBLAllocation.hpp"
#include "i18n/cpp/converter/i18n_holders.hpp"
#include "i18n/cpp/i18n_platform_encoding.h"

namespace {

// Publishes the prepared converters and the tables to threads that make converters.
std::atomic<bool> g_initialized{false};

I18NConverter* prepared(const char* encoding) {
    QBL_ALLOC_TRY
    return new I18NConverter(encoding);
    QBL_ALLOC_CATCH
}

}  // namespace

I18NConverterUTF8::I18NConverterUTF8() : m_pConverter(prepared(nullptr)) {}
I18NConverterUTF8::~I18NConverterUTF8() { delete m_pConverter; }

I18NConverterUTF16::I18NConverterUTF16() : m_pConverter(prepared("UTF16_PlatformEndian")) {}
I18NConverterUTF16::~I18NConverterUTF16() { delete m_pConverter; }

I18NConverterPlatformDefault::I18NConverterPlatformDefault()
    : m_pConverter(prepared(I18NGetPlatformDefaultEncoding())) {}
I18NConverterPlatformDefault::~I18NConverterPlatformDefault() { delete m_pConverter; }

void i18nCreateConverters() {
    if (i18nHolders().utf8 != nullptr) return;
    QBL_ALLOC_TRY
    I18NHolders made;
    made.utf8 = std::make_unique<I18NConverterUTF8>();
    made.utf16 = std::make_unique<I18NConverterUTF16>();
    made.platformDefault = std::make_unique<I18NConverterPlatformDefault>();
    qblImmortal<I18NHolders>() = std::move(made);
    QBL_ALLOC_CATCH
}

const I18NHolders& i18nHolders() { return qblImmortal<I18NHolders>(); }

void i18nSetInitialized(bool value) { g_initialized.store(value, std::memory_order_release); }

bool I18NConverter::isInitialized() { return g_initialized.load(std::memory_order_acquire); }
