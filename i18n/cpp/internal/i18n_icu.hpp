#ifndef I18N_CPP_INTERNAL_I18N_ICU_HPP
#define I18N_CPP_INTERNAL_I18N_ICU_HPP

/// Gives ICU a data directory: the installation's bin directory, or the working directory if the
/// process has none either. Called before anything that makes ICU read data; only the first call
/// does anything, since ICU allows no change while it is in use. The data linked to ICU stays the
/// first choice, so that no file that happens to lie there can take its place.
/// @throws QBLOutOfMemoryError
void i18nPrepareICU();
/// ICU's first name of an encoding; null for one that it does not know. Lives as long as ICU.
/// @throws std::bad_alloc, as ICU needs memory to read its table of names
const char* i18nCanonicalEncoding(const char* encoding);

#endif
