#ifndef I18N_CPP_LOCALE_I18N_LOCALE_NAMES_HPP
#define I18N_CPP_LOCALE_I18N_LOCALE_NAMES_HPP

#include <string>

#include "i18n/cpp/i18n_locale.hpp"

/// Language, country and variant, as in "fr_FR_EURO", without what else a name may have: the script
/// and keywords. Things that are known by locales are known by this name, if not by the whole one.
std::string i18nPlainName(const I18NLocale& locale);

#endif
