#include "i18n/cpp/i18n_locale.hpp"

#include <unicode/locid.h>

#include <algorithm>
#include <cstring>
#include <string_view>
#include <utility>

#include "QBLCore/Exceptions/QBLAllocation.hpp"
#include "QBLCore/Exceptions/shared/QBLThrowNoMemory.hpp"
#include "i18n/cpp/i18n_string.hpp"
#include "i18n/cpp/locale/i18n_icu.hpp"
#include "i18n/cpp/locale/i18n_locale_names.hpp"

namespace {

/// ICU reports exhausted memory by a null pointer or a bogus object. It also makes a bogus object
/// for a name that is not a locale name.
void* checked(icu::Locale* made, bool mayBeBogus) {
    if (made != nullptr && (mayBeBogus || !made->isBogus())) return made;
    delete made;
    qblThrowNoMemory(QBL_HERE);
}

const icu::Locale& icuOf(const I18NLocale& locale) { return *locale.getICULocale(); }

/// Returns "de_DE@euro" for "de_DE.UTF-8@euro": ICU would take ".UTF-8" for a part of the name.
std::string withoutEncoding(const char* id) {
    std::string name(id);
    const std::size_t keywords = std::min(name.find('@'), name.size());
    const std::size_t dot = std::min(name.find('.'), keywords);
    name.erase(dot, keywords - dot);
    return name;
}

/// ICU takes a name with a "/" for the path of a file, and trusts the contents of that file.
icu::Locale* withoutPath(icu::Locale* locale) {
    if (locale == nullptr) return locale;
    const std::string_view name(locale->getName());
    if (name.find('/') < name.find('@')) locale->setToBogus();
    return locale;
}

bool isLetters(const char* text) {
    return *text != '\0' && text[std::strspn(text, "abcdefghijklmnopqrstuvwxyz")] == '\0';
}

}  // namespace

I18NLocale::I18NLocale() : m_pLocale(checked(new icu::Locale(i18nDefaultLocale()), true)) {}

I18NLocale::I18NLocale(const char* id) : m_pLocale(nullptr) {
    QBL_ALLOC_TRY
    const bool named = id != nullptr && *id != '\0';
    m_pLocale = named ? checked(withoutPath(new icu::Locale(withoutEncoding(id).c_str())), true)
                      : checked(new icu::Locale(i18nDefaultLocale()), true);
    QBL_ALLOC_CATCH
}

I18NLocale::I18NLocale(const I18NString& id) : I18NLocale(id.toUtf8().c_str()) {}

I18NLocale::I18NLocale(const char* language, const char* country, const char* variant)
    : m_pLocale(checked(withoutPath(new icu::Locale(language, country, variant)), true)) {}

I18NLocale::I18NLocale(const I18NLocale& other)
    : m_pLocale(checked(new icu::Locale(icuOf(other)), icuOf(other).isBogus())) {}

I18NLocale& I18NLocale::operator=(const I18NLocale& other) {
    if (this == &other) return *this;
    I18NLocale copy(other);
    std::swap(m_pLocale, copy.m_pLocale);
    return *this;
}

I18NLocale::~I18NLocale() { delete static_cast<icu::Locale*>(m_pLocale); }

bool I18NLocale::operator==(const I18NLocale& other) const { return icuOf(*this) == icuOf(other); }

const char* I18NLocale::getLanguage() const { return icuOf(*this).getLanguage(); }

const char* I18NLocale::getCountry() const { return icuOf(*this).getCountry(); }

const char* I18NLocale::getVariant() const { return icuOf(*this).getVariant(); }

const char* I18NLocale::getName() const { return icuOf(*this).getName(); }

std::string i18nPlainName(const I18NLocale& locale) {
    std::string name = locale.getLanguage();
    for (const char* part : {locale.getCountry(), locale.getVariant()})
        if (*part != '\0') name.append("_").append(part);
    return name;
}

bool I18NLocale::isValid() const { return !icuOf(*this).isBogus() && isLetters(getLanguage()); }

std::string xI18NGetDefaultLocaleName() {
    QBL_ALLOC_TRY
    return i18nDefaultLocale().getName();
    QBL_ALLOC_CATCH
}
