#ifndef I18N_CPP_RESOURCES_I18N_SETTINGS_FILE_HPP
#define I18N_CPP_RESOURCES_I18N_SETTINGS_FILE_HPP

#include <memory>
#include <string>

#include "i18n/cpp/locale/i18n_settings.hpp"

/// Reads a resource file. Skips only invalid items, such as a number out of range or an encoding
/// that ICU does not know.
/// @param seen  receives whether the file could be examined; true also for a file that does not
///     exist
/// @return null if the file cannot be opened or read
std::unique_ptr<I18NSettings> i18nLoadSettings(const std::string& path, bool& seen);

#endif
