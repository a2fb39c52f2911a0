#ifndef I18N_CPP_RESOURCES_I18N_LOCALE_RESOURCES_HPP
#define I18N_CPP_RESOURCES_I18N_LOCALE_RESOURCES_HPP

#include <map>
#include <memory>
#include <string>
#include <utility>

#include "QBLCore/Threads/QBLThreadCriticalSection.hpp"
#include "QBLCore/Threads/QBLThreadGuard.hpp"
#include "i18n/cpp/i18n_internal_resources.hpp"

/// What one of the maps is read from.
struct I18NMapSource {
    const char* base;       ///< of the name of the files
    const char* table;      ///< the element that the entries are in; "" for those outside of tables
    const char* attribute;  ///< that holds the value; "" for the first after the name
    const char* failure;    ///< of the error when there is no entry; null if there may be none
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

/// Looks for a per-locale file: base + name + ".xml", where name is language, country and variant,
/// then without the variant, then the language alone, then "en"; each in the bin directory, then in
/// the working directory, then in share/qblcore of the installation. A variant is looked for in
/// upper and then in lower case. A locale whose name has other characters than letters, digits and
/// "_" in these parts only finds "en". Files that we may not read are passed over.
/// @param path, name  receive the file that was found, and which name it has
/// @return false also when a place could not be looked at
/// @throws std::bad_alloc when that was for want of memory
bool findResourceFile(std::string& path, std::string& name, const char* base,
                      const I18NLocale& locale);

/// The maps of all locales, each loaded when it is first asked for, and again if its file could not
/// be read then. An entry of a file is an element with a name and a value, or one with a name
/// followed by one with the value, or an element with only a value, which is named like itself. The
/// last of entries with the same name counts.
///
/// Threads: any thread; clear() only while no other uses a map.
class I18NLocaleResources {
public:
    /// @return the map for a locale, as of the file that findResourceFile finds; empty if it finds
    ///     none, valid until clear().
    /// @throws I18NRuntimeError with the source's failure for a map without entries.
    const I18NResourceMap& get(const I18NMapSource& source, const I18NLocale& locale);
    /// @return null when the map has no such key.
    const std::u16string* find(const I18NMapSource& source, const I18NLocale& locale,
                               const char* key);
    void clear();

private:
    using Key = std::pair<const I18NMapSource*, std::string>;
    using Maps = std::map<Key, std::shared_ptr<const I18NResourceMap>>;

    std::shared_ptr<const I18NResourceMap> load(const I18NMapSource& source,
                                                const I18NLocale& locale) QBL_REQUIRES(m_lock);

    QBLThreadCriticalSection m_lock{0};
    // Locales without a file of their own share the map of another's.
    Maps m_byLocale QBL_GUARDED_BY(m_lock);
    Maps m_byPath QBL_GUARDED_BY(m_lock);
};

#endif
