// The only operation of I18NConverter that needs the resources.

#include "i18n/cpp/i18n_converter.hpp"
#include "i18n/cpp/i18n_internal_resources.hpp"
#include "i18n/cpp/i18n_string.hpp"

void I18NConverter::getEncodingForLocale(I18NString& encoding, const I18NLocale& locale) {
    encoding = I18NInternalResources::getInternalResources().getEncodingForLocale(locale).c_str();
}
