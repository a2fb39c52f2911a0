#ifndef I18N_CPP_LOCALE_I18N_ICU_HPP
#define I18N_CPP_LOCALE_I18N_ICU_HPP

#include <unicode/uversion.h>

U_NAMESPACE_BEGIN
class Locale;
U_NAMESPACE_END

/// Gives ICU a data directory: the installation's bin directory. If that is missing and the process
/// has not set a data directory, this is the working directory. Every function that makes ICU read
/// data calls this first. Only the first call has an effect, since ICU does not allow a change
/// while it is in use. Data that is linked to ICU takes precedence, so that no file in the
/// directory can replace it. The resources define this function, since they find the bin directory:
/// it is the only function here that calls an area above.
/// @throws QBLOutOfMemoryError
void i18nPrepareICU();
/// Makes the objects that ICU makes only once. If ICU had no memory at that time, it would never
/// provide them.
/// @throws QBLOutOfMemoryError, I18NRuntimeError
void i18nWarmUpICU();
/// The process's default locale.
/// @throws QBLOutOfMemoryError if ICU has no memory to determine the locale
const icu::Locale& i18nDefaultLocale();
/// Returns ICU's first name of an encoding; null for an unknown encoding. The text lives as long as
/// ICU.
/// @throws QBLOutOfMemoryError if ICU has no memory to read its table of names
const char* i18nCanonicalEncoding(const char* encoding);

#endif
