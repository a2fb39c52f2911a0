#ifndef I18N_CPP_LOCALE_I18N_LOCALE_NAMES_HPP
#define I18N_CPP_LOCALE_I18N_LOCALE_NAMES_HPP

#include <string>

#include "i18n/cpp/i18n_locale.hpp"

/// Returns language, country and variant, such as "fr_FR_EURO", without the script and the keywords
/// that a name may also have. Searches by locale use the whole name first and then this plain name.
std::string i18nPlainName(const I18NLocale& locale);

#endif
