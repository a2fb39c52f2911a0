#ifndef I18N_CPP_LOCALE_I18N_SETTINGS_HPP
#define I18N_CPP_LOCALE_I18N_SETTINGS_HPP

#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "i18n/cpp/converter/i18n_replacement_tables.hpp"
#include "i18n/cpp/i18n_locale.hpp"

/// The settings of a locale in the resource file.
struct I18NLocaleSettings {
    std::string name;    // as in the file
    bool inUse = false;  // if false, the other settings are ignored
    unsigned short lcid = 0;
    std::string defaultVariant;
    std::string csvEncoding;

    bool operator==(const I18NLocaleSettings& other) const;
};

/// The settings of the resource file "i18n_res.xml"; constant once loaded.
struct I18NSettings {
    float utf8BytesPerCodePoint = 2.5F;
    bool replaceScaledZero = false;
    bool negativeZero = false;
    std::vector<char32_t> nonNormalizable;  // sorted, without duplicates
    /// The ID of nonNormalizable: equal lists have the same ID. 0 for an empty list, and for every
    /// new list after the first kMostLists lists.
    int nonNormalizableID = 0;
    std::map<char32_t, char32_t> jaSubstitutions;
    std::map<std::string, I18NLocaleSettings, std::less<>> locales;  // by canonical name
    I18NReplacementTables replacements;

    bool operator==(const I18NSettings& other) const;

    /// Returns true if a text has a character that must not be normalised.
    bool isNonNormalizable(std::u16string_view text) const;
    /// Returns the character that replaces the given character in Japanese text, or the given
    /// character if there is no substitution.
    char32_t getJaSubstitution(char32_t codePoint) const;
    /// Replaces characters in Japanese text. @return true if there were any
    /// @throws std::bad_alloc, std::length_error; nothing is changed then
    bool substituteJa(std::u16string& text) const;
    /// @return the settings of the locale if they are in use, else null
    const I18NLocaleSettings* find(const I18NLocale& locale) const;

    /// Returns the current settings: the defaults until others are published.
    ///
    /// Threads: any thread. Strings and converters use the settings at any time, including the
    /// start and the stop of the layer. So published settings are never changed or destroyed.
    static const I18NSettings& now();
    /// Makes settings current; null means the defaults. Reuses earlier settings that are equal.
    /// @throws std::bad_alloc; nothing is changed then
    static void publish(std::unique_ptr<I18NSettings> settings);
    static constexpr int kMostLists = 3;  ///< number of lists that get an ID
};

#endif
