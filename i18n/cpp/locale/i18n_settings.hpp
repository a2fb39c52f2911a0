#ifndef I18N_CPP_LOCALE_I18N_SETTINGS_HPP
#define I18N_CPP_LOCALE_I18N_SETTINGS_HPP

#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "i18n/cpp/converter/i18n_replacement_tables.hpp"
#include "i18n/cpp/i18n_locale.hpp"

/// What the resource file says of a locale.
struct I18NLocaleSettings {
    std::string name;    // as the file has it
    bool inUse = false;  // otherwise the rest does not count
    unsigned short lcid = 0;
    std::string defaultVariant;
    std::string csvEncoding;

    bool operator==(const I18NLocaleSettings& other) const;
};

/// What the resource file "i18n_res.xml" says; constant once loaded.
struct I18NSettings {
    float utf8BytesPerCodePoint = 2.5F;
    bool replaceScaledZero = false;
    bool negativeZero = false;
    std::vector<char32_t> nonNormalizable;  // sorted, each once
    /// The same number for the same list; 0 for lists that got none, of which there may be many.
    int nonNormalizableID = 0;
    std::map<char32_t, char32_t> jaSubstitutions;
    std::map<std::string, I18NLocaleSettings, std::less<>> locales;  // by canonical names
    I18NReplacementTables replacements;

    bool operator==(const I18NSettings& other) const;

    /// Whether a text has one of the characters that must not be normalised.
    bool isNonNormalizable(std::u16string_view text) const;
    /// What stands for a character in Japanese text; itself for most.
    char32_t getJaSubstitution(char32_t codePoint) const;
    /// Replaces characters in Japanese text. @return whether there were any
    /// @throws std::bad_alloc, std::length_error, with nothing changed
    bool substituteJa(std::u16string& text) const;
    /// @return what the settings of the locale are, if they are in use; else null.
    const I18NLocaleSettings* find(const I18NLocale& locale) const;

    /// Those that count now: the defaults until some are published.
    ///
    /// Threads: any thread. Strings and converters look things up whenever they are used, while the
    /// layer starts and stops too, so settings that were published once are never changed or
    /// destroyed.
    static const I18NSettings& now();
    /// Makes settings count, or the defaults for null. Settings that say the same as earlier ones
    /// are not kept beside them.
    /// @throws std::bad_alloc, with nothing changed
    static void publish(std::unique_ptr<I18NSettings> settings);
    static constexpr int kMostLists = 3;  ///< that get a number of their own
};

#endif
