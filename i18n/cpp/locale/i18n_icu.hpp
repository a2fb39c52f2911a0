#ifndef I18N_CPP_LOCALE_I18N_ICU_HPP
#define I18N_CPP_LOCALE_I18N_ICU_HPP

#include <unicode/uversion.h>

U_NAMESPACE_BEGIN
class Locale;
U_NAMESPACE_END

/// Sets ICU's data directory to the installation's bin directory. If no bin directory is found and
/// the process has not set a data directory, sets the working directory. Every function that makes
/// ICU read data calls this function first. Only the first call has an effect, because ICU does not
/// allow a change while ICU is in use. Data that is linked to ICU takes precedence, so that no file
/// in the directory can replace this data. The area i18n/resources defines this function, because
/// that area finds the bin directory. No other function of this header belongs to a higher area.
/// @throws QBLOutOfMemoryError
void i18nPrepareICU();
/// Creates the objects that ICU creates only on their first use. If memory were exhausted at that
/// time, ICU would never provide them.
/// @throws QBLOutOfMemoryError, I18NRuntimeError
void i18nWarmUpICU();
/// Fails if the process has no spare memory of 64 KiB. Call it before ICU makes number formats,
/// symbols of numbers, or transliterators from rules: ICU does not check all allocations in them
/// and would crash.
/// @throws QBLOutOfMemoryError
void i18nRequireSpareMemory();
/// The process's default locale.
/// @throws QBLOutOfMemoryError if ICU has no memory to determine the locale
const icu::Locale& i18nDefaultLocale();
/// Returns ICU's first name of an encoding; null for an unknown encoding. The text is valid as long
/// as ICU is loaded.
/// @throws QBLOutOfMemoryError if ICU has no memory to read its table of names
const char* i18nCanonicalEncoding(const char* encoding);

#endif
