#ifndef I18N_CPP_RESOURCES_I18N_SETTINGS_FILE_HPP
#define I18N_CPP_RESOURCES_I18N_SETTINGS_FILE_HPP

#include <memory>
#include <string>

#include "i18n/cpp/locale/i18n_settings.hpp"

/// Reads a resource file. What is not understood, a number out of its range, an encoding that
/// ICU does not know, is left out, and nothing else with it.
/// @param seen  receives whether the file could be looked at; one that is not there could
/// @return null when the file cannot be opened or read.
std::unique_ptr<I18NSettings> i18nLoadSettings(const std::string& path, bool& seen);

#endif
