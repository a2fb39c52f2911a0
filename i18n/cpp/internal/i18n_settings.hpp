#ifndef I18N_CPP_INTERNAL_I18N_SETTINGS_HPP
#define I18N_CPP_INTERNAL_I18N_SETTINGS_HPP

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "i18n/cpp/internal/i18n_replacement_tables.hpp"

/// What the resource file says of a locale.
struct I18NLocaleSettings {
    bool inUse = false;  // otherwise the rest does not count
    unsigned short lcid = 0;
    std::string defaultVariant;
    std::string csvEncoding;
};

/// What the resource file "i18n_res.xml" says, but for the replacement tables; constant once
/// loaded.
struct I18NSettings {
    float utf8BytesPerCodePoint = 2.5F;
    bool replaceScaledZero = false;
    bool negativeZero = false;
    std::vector<char32_t> nonNormalizable;  // sorted
    std::map<char32_t, char32_t> jaSubstitutions;
    std::map<std::string, I18NLocaleSettings, std::less<>> locales;

    /// @return what the settings of the locale are, if they are in use; else null.
    const I18NLocaleSettings* find(const std::string& locale) const;

    /// Reads a resource file. What is not understood, a number out of its range, an encoding that
    /// ICU does not know, is left out, and nothing else with it.
    /// @param tables  emptied, and filled with the file's
    /// @return null, with the tables as they were, when the file cannot be opened.
    static std::unique_ptr<const I18NSettings> load(const std::string& path,
                                                    I18NReplacementTables& tables);
};

#endif
