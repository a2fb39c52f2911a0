#include "QBLCore/Exceptions/QBLAllocation.hpp"
#include "i18n/cpp/resources/i18n_internal_data.hpp"
#include "i18n/cpp/resources/i18n_resource_reader.hpp"

namespace {

const char16_t kNoDescription[] = u"No description";

constexpr unsigned long kMostDecimals = 9;

}  // namespace

std::u16string I18NInternalResources::getCurrencyDescription(const char* currency,
                                                             const I18NLocale& locale) {
    QBL_ALLOC_TRY
    std::u16string description;
    if (m_data.find(kI18NCurrencyDescriptions, locale, currency, description)) return description;
    return getNoDescriptionWord(locale);
    QBL_ALLOC_CATCH
}

std::u16string I18NInternalResources::getNoDescriptionWord(const I18NLocale& locale) {
    QBL_ALLOC_TRY
    std::u16string word = kNoDescription;
    m_data.find(kI18NWords, locale, "noDescription", word);
    return word;
    QBL_ALLOC_CATCH
}

bool I18NInternalResources::getSymbolForISOCode(const char* currency, const I18NLocale& locale,
                                                std::u16string& symbol) {
    QBL_ALLOC_TRY
    return m_data.find(kI18NCurrencySymbols, locale, currency, symbol);
    QBL_ALLOC_CATCH
}

int I18NInternalResources::getNumbDecimPlacesForCurrency(const char* currency) {
    QBL_ALLOC_TRY
    std::string decimals;
    m_data.findCode(kI18NCurrencyDecimals, currency, decimals);
    const auto number = i18nParseNumber(decimals, kMostDecimals);
    return number ? static_cast<int>(*number) : -1;
    QBL_ALLOC_CATCH
}

bool I18NInternalResources::isISOCurrencyCodeValid(const char* currency) {
    QBL_ALLOC_TRY
    return m_data.maps.find(kI18NCurrencySymbols, i18nEnglish(), currency) != nullptr;
    QBL_ALLOC_CATCH
}

bool I18NInternalResources::getISOCurrencyCodeForCountry(const char* country,
                                                         std::string& currency) {
    QBL_ALLOC_TRY
    return m_data.findCode(kI18NCurrencyOfCountry, country, currency);
    QBL_ALLOC_CATCH
}

bool I18NInternalResources::getCurrencyMapping(const char* currency, std::string& successor) {
    QBL_ALLOC_TRY
    return m_data.findCode(kI18NCurrencyMapping, currency, successor);
    QBL_ALLOC_CATCH
}

bool I18NInternalResources::getLCIDForCurrencyCode(const char* currency, unsigned short& lcid) {
    if (currency == nullptr) return false;
    QBL_ALLOC_TRY
    const std::u16string code(currency, currency + std::char_traits<char>::length(currency));
    bool found = false;
    for (const auto& [key, value] : m_data.maps.get(kI18NCurrencyOfLCID, i18nEnglish())) {
        const auto number = i18nParseNumber(key, 0xFFFF);
        if (value != code || !number || (found && *number >= lcid)) continue;
        lcid = static_cast<unsigned short>(*number);
        found = true;
    }
    return found;
    QBL_ALLOC_CATCH
}

bool I18NInternalResources::getCurrencyCodeForLCID(unsigned short lcid, std::string& currency) {
    QBL_ALLOC_TRY
    for (const auto& [key, value] : m_data.maps.get(kI18NCurrencyOfLCID, i18nEnglish())) {
        const auto number = i18nParseNumber(key, 0xFFFF);
        if (!number || *number != lcid) continue;
        currency = i18nCodeOf(value);
        return true;
    }
    return false;
    QBL_ALLOC_CATCH
}
