#ifndef I18N_CPP_RESOURCES_I18N_LOCALE_RESOURCES_HPP
#define I18N_CPP_RESOURCES_I18N_LOCALE_RESOURCES_HPP

#include <map>
#include <memory>
#include <string>
#include <utility>

#include "QBLCore/Threads/QBLThreadCriticalSection.hpp"
#include "QBLCore/Threads/QBLThreadGuard.hpp"
#include "i18n/cpp/i18n_internal_resources.hpp"

/// Where the entries of a map are read from.
struct I18NMapSource {
    const char* base;       ///< the beginning of the file names
    const char* table;      ///< the element around the entries; "" for entries outside tables
    const char* attribute;  ///< the attribute that holds the value; "" means the attribute "value",
                            ///< or in an element <value> its first attribute
    const char* failure;    ///< the error text if there is no entry; null for no error
};

extern const I18NMapSource kI18NCurrencySymbols;
extern const I18NMapSource kI18NCurrencyDecimals;
extern const I18NMapSource kI18NCurrencyDescriptions;
extern const I18NMapSource kI18NCurrencyMapping;
extern const I18NMapSource kI18NCurrencyOfLCID;  // keys are numbers, like "0x0407"
extern const I18NMapSource kI18NCurrencyOfCountry;
extern const I18NMapSource kI18NWords;
extern const I18NMapSource kI18NTimePeriods;
extern const I18NMapSource kI18NTimeZones;
extern const I18NMapSource kI18NLocaleNames;
extern const I18NMapSource kI18NLocaleOfLanguage;

/// Finds the resource file for a locale: base + name + ".xml". It tries these names in order:
/// language, country and variant; language and country; only the language; "en". It looks for each
/// name in the bin directory, then in the working directory, then in the installation's
/// share/qblcore. It tries a variant in upper case and then in lower case. Names with characters
/// other than letters, digits and "_" are skipped. Files that the process may not read are also
/// skipped.
/// @param path, name  receive the path of the file and the name that was found
/// @return false also if a place could not be examined
/// @throws std::bad_alloc if memory was exhausted
bool findResourceFile(std::string& path, std::string& name, const char* base,
                      const I18NLocale& locale);

/// The maps of all locales. Each map is loaded on first use. If the file of a map cannot be read,
/// the next use tries again. An entry of a file has one of three forms: an element with a name and
/// a value; an element with a name, followed by an element with the value; or an element with only
/// a value, whose name is its tag. If entries have the same name, the last one counts.
///
/// Threads: any thread; clear() requires that no other thread uses a map.
class I18NLocaleResources {
public:
    /// @return the map for a locale, from the file that findResourceFile() finds; empty if there is
    ///     no file. Valid until clear()
    /// @throws I18NRuntimeError with the source's error text, if there is one and the map has no
    ///     entries
    const I18NResourceMap& get(const I18NMapSource& source, const I18NLocale& locale);
    /// @return null if the map has no such key
    const std::u16string* find(const I18NMapSource& source, const I18NLocale& locale,
                               const char* key);
    void clear();

private:
    using Key = std::pair<const I18NMapSource*, std::string>;
    using Maps = std::map<Key, std::shared_ptr<const I18NResourceMap>>;

    std::shared_ptr<const I18NResourceMap> load(const I18NMapSource& source,
                                                const I18NLocale& locale) QBL_REQUIRES(m_lock);

    QBLThreadCriticalSection m_lock{0};
    // Locales without a file of their own share the map of another locale.
    Maps m_byLocale QBL_GUARDED_BY(m_lock);
    Maps m_byPath QBL_GUARDED_BY(m_lock);
};

#endif
