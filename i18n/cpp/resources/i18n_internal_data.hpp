#ifndef I18N_CPP_RESOURCES_I18N_INTERNAL_DATA_HPP
#define I18N_CPP_RESOURCES_I18N_INTERNAL_DATA_HPP

#include <unicode/translit.h>

#include <atomic>
#include <memory>
#include <string>
#include <vector>

#include "i18n/cpp/i18n_internal_resources.hpp"
#include "i18n/cpp/locale/i18n_settings.hpp"
#include "i18n/cpp/resources/i18n_locale_resources.hpp"

/// A transliterator of ICU, made on first use.
struct I18NLazyTransliterator {
    std::unique_ptr<icu::Transliterator> made;

    const icu::Transliterator* get(const char16_t* name, const char* rules, const char* failure);
};

/// Converts a code, such as a currency code, to ASCII. Characters beyond ASCII become "?".
std::string i18nCodeOf(const std::u16string& text);

/// The locale whose files have the data that is the same in all languages.
const I18NLocale& i18nEnglish();

struct I18NInternalResources::Data {
    /// Copies the value of a key. @return false if the map has no such key
    bool find(const I18NMapSource& source, const I18NLocale& locale, const char* key,
              std::u16string& value);
    /// Copies a code, from a table that is the same for all languages. @return false if the table
    /// has no such key
    bool findCode(const I18NMapSource& source, const char* key, std::string& code);

    std::atomic<bool> replaceScaledZero{false};
    std::atomic<bool> negativeZero{false};

    QBLThreadCriticalSection lock{0};
    I18NLazyTransliterator xmlEntities QBL_GUARDED_BY(lock);
    I18NLazyTransliterator urlEncoding QBL_GUARDED_BY(lock);
    std::vector<I18NLocale> locales QBL_GUARDED_BY(lock);
    std::vector<const char*> timeZoneIDs QBL_GUARDED_BY(lock);  // keys of the English map

    I18NLocaleResources maps;  // has its own lock
};

#endif
