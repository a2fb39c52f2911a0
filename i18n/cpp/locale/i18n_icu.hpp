#ifndef I18N_CPP_LOCALE_I18N_ICU_HPP
#define I18N_CPP_LOCALE_I18N_ICU_HPP

#include <unicode/uversion.h>

U_NAMESPACE_BEGIN
class Locale;
U_NAMESPACE_END

/// Gives ICU a data directory: the installation's bin directory, or the working directory if the
/// process has none either. Called before anything that makes ICU read data; only the first call
/// does anything, since ICU allows no change while it is in use. The data linked to ICU stays the
/// first choice, so that no file that happens to lie there can take its place. Defined by the
/// resources, which find the bin directory: this is the one function here that calls an area above.
/// @throws QBLOutOfMemoryError
void i18nPrepareICU();
/// Makes what ICU makes once and would fail to give for ever after, had it no memory then.
/// @throws QBLOutOfMemoryError, I18NRuntimeError
void i18nWarmUpICU();
/// The process's default locale.
/// @throws QBLOutOfMemoryError when ICU has to find it out and has no memory
const icu::Locale& i18nDefaultLocale();
/// ICU's first name of an encoding; null for one that it does not know. Lives as long as ICU.
/// @throws QBLOutOfMemoryError, as ICU needs memory to read its table of names
const char* i18nCanonicalEncoding(const char* encoding);

#endif
