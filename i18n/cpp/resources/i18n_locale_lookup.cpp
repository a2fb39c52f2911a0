#include <unicode/dcfmtsym.h>
#include <unicode/uloc.h>

#include <cstring>
#include <string_view>

#include "QBLCore/Base/QBLImmortal.hpp"
#include "QBLCore/Exceptions/QBLAllocation.hpp"
#include "QBLCore/Exceptions/shared/QBLThrowNoMemory.hpp"
#include "i18n/cpp/locale/i18n_icu.hpp"
#include "i18n/cpp/locale/i18n_locale_names.hpp"
#include "i18n/cpp/resources/i18n_internal_data.hpp"

namespace {

constexpr const char* kSupportedLocales[] = {
    "en_US", "ar_AE",         "sq_AL",      "es_AR", "de_AT", "en_AU", "en_BE", "bg_BG", "ar_BH",
    "es_BO", "pt_BR",         "en_BW",      "be_BY", "en_CA", "de_CH", "es_CL", "zh_CN", "es_CO",
    "es_CR", "cs_CZ",         "de_DE",      "da_DK", "es_DO", "ar_DZ", "et_EE", "ar_EG", "es_ES",
    "fi_FI", "fr_FR",         "en_GB",      "el_GR", "es_GT", "zh_HK", "es_HN", "hr_HR", "hu_HU",
    "id_ID", "en_IE_preeuro", "he_IL",      "en_IN", "ar_IQ", "fa_IR", "is_IS", "it_IT", "ar_JO",
    "ja_JP", "sw_KE",         "ko_KR",      "ar_KW", "ar_LB", "lt_LT", "de_LU", "lv_LV", "ar_LY",
    "ar_MA", "mk_MK",         "zh_MO",      "mt_MT", "es_MX", "ms_MY", "es_NI", "nl_NL", "no_NO",
    "en_NZ", "ar_OM",         "es_PA",      "es_PE", "en_PH", "pl_PL", "pt_PT", "ar_QA", "ru_RU",
    "ar_SA", "ar_SD",         "sv_SE",      "sl_SI", "sk_SK", "es_SV", "ar_SY", "th_TH", "ar_TN",
    "zh_TW", "sw_TZ",         "uk_UA",      "es_UY", "es_VE", "vi_VN", "ar_YE", "sh_YU", "en_ZA",
    "en_ZW", "zh_SG",         "fr_FR_EURO", "ro_RO", "tr_TR", "es_PY"};

const char kUnknownLanguage[] = "en-us";
const char kRootLocale[] = "root";

/// The encoding for a list of languages. Each language has a blank before and after it. All other
/// languages use kOtherEncoding.
struct LanguageEncoding {
    std::string_view languages;
    const char* encoding;
};
constexpr LanguageEncoding kEncodings[] = {
    {" ja ", "windows-31j"},
    {" zh ", "Big5"},
    {" ko ", "windows-949"},
    {" th ", "windows-874"},
    {" cs hu pl ro sk sl hr bs sh sq ", "windows-1250"},
    {" ru uk be bg mk sr kk ky mn tt ", "windows-1251"},
    {" el ", "windows-1253"},
    {" tr az ", "windows-1254"},
    {" he iw yi ", "windows-1255"},
    {" ar fa ur ps ", "windows-1256"},
    {" et lv lt ", "windows-1257"},
    {" vi ", "windows-1258"},
};
const char kOtherEncoding[] = "windows-1252";

struct English : I18NLocale {
    English() : I18NLocale("en") {}
};

const char* encodingOf(const std::string& language, const std::string& country) {
    if (language == "zh" && (country == "CN" || country == "SG")) return "GBK";
    for (const LanguageEncoding& row : kEncodings)
        if (row.languages.find(" " + language + " ") != std::string_view::npos) return row.encoding;
    return kOtherEncoding;
}

}  // namespace

std::string i18nCodeOf(const std::u16string& text) {
    std::string code;
    for (const char16_t unit : text) code += unit < 0x80 ? static_cast<char>(unit) : '?';
    return code;
}

const I18NLocale& i18nEnglish() { return qblImmortal<English>(); }

bool I18NInternalResources::Data::find(const I18NMapSource& source, const I18NLocale& locale,
                                       const char* key, std::u16string& value) {
    const std::u16string* found = maps.find(source, locale, key);
    if (found != nullptr) value = *found;
    return found != nullptr;
}

bool I18NInternalResources::Data::findCode(const I18NMapSource& source, const char* key,
                                           std::string& code) {
    const std::u16string* found = maps.find(source, i18nEnglish(), key);
    if (found == nullptr) return false;
    code = i18nCodeOf(*found);
    return true;
}

bool I18NInternalResources::getLocaleDescription(const I18NLocale& described,
                                                 const I18NLocale& locale,
                                                 std::u16string& description) {
    QBL_ALLOC_TRY
    return m_data.find(kI18NLocaleNames, locale, described.getName(), description) ||
           m_data.find(kI18NLocaleNames, locale, i18nPlainName(described).c_str(), description);
    QBL_ALLOC_CATCH
}

void I18NInternalResources::getLocales(I18NLocale** locales, int* count) {
    QBL_ALLOC_TRY
    QBLThreadGuard guard(m_data.lock);
    if (m_data.locales.empty()) {
        std::vector<I18NLocale> all;
        all.reserve(std::size(kSupportedLocales));
        for (const char* name : kSupportedLocales) all.emplace_back(name);
        m_data.locales.swap(all);
    }
    if (locales != nullptr) *locales = m_data.locales.data();
    if (count != nullptr) *count = static_cast<int>(m_data.locales.size());
    QBL_ALLOC_CATCH
}

bool I18NInternalResources::getDefaultLocaleForLanguage(const char* language, std::string& locale) {
    QBL_ALLOC_TRY
    std::string name = kUnknownLanguage;
    bool known = m_data.findCode(kI18NLocaleOfLanguage, language, name);
    if (!known && language != nullptr && *language != '\0')
        known = m_data.findCode(kI18NLocaleOfLanguage, I18NLocale(language).getLanguage(), name);
    const I18NLocaleSettings* settings =
        known ? I18NSettings::now().find(I18NLocale(name.c_str())) : nullptr;
    if (settings != nullptr && !settings->defaultVariant.empty())
        name.append("_").append(settings->defaultVariant);
    locale.swap(name);
    return known;
    QBL_ALLOC_CATCH
}

std::string I18NInternalResources::getEncodingForLocale(const I18NLocale& locale) const {
    QBL_ALLOC_TRY
    const I18NLocaleSettings* settings = I18NSettings::now().find(locale);
    if (settings != nullptr && !settings->csvEncoding.empty()) return settings->csvEncoding;
    return encodingOf(locale.getLanguage(), locale.getCountry());
    QBL_ALLOC_CATCH
}

bool I18NInternalResources::getLocaleIdFroLCID(unsigned short lcid, std::string& locale) const {
    QBL_ALLOC_TRY
    if (lcid == 0) return false;
    for (const auto& [key, settings] : I18NSettings::now().locales) {
        if (!settings.inUse || settings.lcid != lcid) continue;
        locale = settings.name;
        return true;
    }
    char name[ULOC_FULLNAME_CAPACITY];
    UErrorCode error = U_ZERO_ERROR;
    uloc_getLocaleForLCID(lcid, name, sizeof name, &error);
    if (U_FAILURE(error) || error == U_STRING_NOT_TERMINATED_WARNING || *name == '\0' ||
        std::strcmp(name, kRootLocale) == 0)
        return false;
    locale = name;
    return true;
    QBL_ALLOC_CATCH
}

bool I18NInternalResources::isLocaleModified(const I18NLocale& locale) const {
    QBL_ALLOC_TRY
    return I18NSettings::now().find(locale) != nullptr;
    QBL_ALLOC_CATCH
}

const I18NResourceMap& I18NInternalResources::getLocaleResources(const I18NLocale& locale) {
    QBL_ALLOC_TRY
    return m_data.maps.get(kI18NLocaleNames, locale);
    QBL_ALLOC_CATCH
}

bool I18NInternalResources::getListSeparator(const I18NLocale& locale, wchar_t& separator) const {
    return getListSeparator(locale.getICULocale(), separator);
}

bool I18NInternalResources::getListSeparator(const icu::Locale* locale, wchar_t& separator) const {
    i18nRequireSpareMemory();  // ICU crashes if it cannot allocate the symbols
    UErrorCode error = U_ZERO_ERROR;
    const icu::DecimalFormatSymbols symbols(locale != nullptr ? *locale : i18nDefaultLocale(),
                                            error);
    if (error == U_MEMORY_ALLOCATION_ERROR) qblThrowNoMemory(QBL_HERE);
    if (U_FAILURE(error)) return false;
    const bool point =
        symbols.getConstSymbol(icu::DecimalFormatSymbols::kDecimalSeparatorSymbol) == u'.';
    separator = point ? L',' : L';';
    return true;
}
