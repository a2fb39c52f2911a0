#include "i18n/cpp/resources/i18n_locale_resources.hpp"

#include <unicode/ustring.h>

#include <algorithm>
#include <cctype>

#include "QBLCore/Base/QBLFileLook.hpp"
#include "QBLCore/Base/QBLImmortal.hpp"
#include "QBLCore/Exceptions/QBLThrow.hpp"
#include "QBLCore/FileManagement/QBLFmDir.hpp"
#include "i18n/cpp/i18n_error_codes.h"
#include "i18n/cpp/i18n_errors.hpp"
#include "i18n/cpp/resources/i18n_bin_dir.hpp"
#include "i18n/cpp/resources/i18n_resource_reader.hpp"

namespace {

const char kSymbols[] =
    "An error occured while populating the currency code to currency symbol map";
const char kDecimals[] =
    "An error occured while populating the currency code to number of decimal places map";
const char kLanguages[] = "An error occured while populating the language to locale map";
const char kCountries[] = "An error occured while populating the country to currency map";

const char kCurrencyBase[] = "./qbli18nrescr_";
const char kWordBase[] = "./qbli18nreswd_";
const char kTimePeriodBase[] = "./qbli18nrestp_";
const char kTimeZoneBase[] = "./qbli18nrestz_";
const char kLocaleBase[] = "./qbli18nreslc_";

// Names of locales may come from a program's clients, so the cache is limited. It has at most
// kMostLocales entries, for locales whose names have at most kLongestName characters. For any other
// locale, each use searches for the files again.
constexpr std::size_t kMostLocales = 4096;
constexpr std::size_t kLongestName = 256;

}  // namespace

const I18NMapSource kI18NCurrencySymbols{kCurrencyBase, "", "symbol", kSymbols};
const I18NMapSource kI18NCurrencyDecimals{kCurrencyBase, "", "decimals", kDecimals};
const I18NMapSource kI18NCurrencyDescriptions{kCurrencyBase, "", "description", nullptr};
const I18NMapSource kI18NCurrencyMapping{kCurrencyBase, "currencyCodeMappingTable", "", nullptr};
const I18NMapSource kI18NCurrencyOfLCID{kCurrencyBase, "LCIDtoCurrencyCodeMappingTable", "",
                                        nullptr};
const I18NMapSource kI18NCurrencyOfCountry{kCurrencyBase, "ISOCountryCodeToISOCurrencyCode", "",
                                           kCountries};
const I18NMapSource kI18NWords{kWordBase, "", "", nullptr};
const I18NMapSource kI18NTimePeriods{kTimePeriodBase, "", "", nullptr};
const I18NMapSource kI18NTimeZones{kTimeZoneBase, "timezones", "", nullptr};
const I18NMapSource kI18NLocaleNames{kLocaleBase, "", "", nullptr};
const I18NMapSource kI18NLocaleOfLanguage{kLocaleBase, "langLocMappingTable", "", kLanguages};

namespace {

bool isTable(std::string_view element) {
    for (const I18NMapSource* source :
         {&kI18NCurrencyMapping, &kI18NCurrencyOfLCID, &kI18NCurrencyOfCountry, &kI18NTimeZones,
          &kI18NLocaleOfLanguage})
        if (element == source->table) return true;
    return false;
}

bool isPlainName(const std::string& name) {
    return std::all_of(name.begin(), name.end(),
                       [](unsigned char c) { return std::isalnum(c) != 0 || c == '_'; });
}

/// Returns the names to search for, from the most specific to the least.
std::vector<std::string> namesOf(const I18NLocale& locale) {
    std::vector<std::string> names;
    if (locale.isValid()) {
        std::string name = locale.getLanguage();
        names.push_back(name);
        for (const char* part : {locale.getCountry(), locale.getVariant()}) {
            if (*part == '\0') break;
            const std::size_t before = name.size();
            name.append("_").append(part);
            if (!isPlainName(name)) continue;
            names.insert(names.begin(), name);
            // ICU gives variants in upper case, but the names of files may have the case of the
            // list of locales.
            std::string lower = name;
            std::transform(lower.begin() + static_cast<std::ptrdiff_t>(before), lower.end(),
                           lower.begin() + static_cast<std::ptrdiff_t>(before),
                           [](unsigned char c) { return std::tolower(c); });
            if (part == locale.getVariant()) names.insert(names.begin() + 1, lower);
        }
    }
    if (names.empty() || names.back() != "en") names.emplace_back("en");
    return names;
}

std::u16string fromUTF8(const std::string& text) {
    // A code point, or the replacement of ill-formed bytes, has at most as many UTF-16 units as
    // there were bytes.
    std::u16string result(text.size(), u'\0');
    const auto size = static_cast<int32_t>(text.size());
    int32_t length = 0;
    UErrorCode error = U_ZERO_ERROR;
    u_strFromUTF8WithSub(result.data(), size, &length, text.data(), size, 0xFFFD, nullptr, &error);
    result.resize(U_SUCCESS(error) ? static_cast<std::size_t>(length) : 0);
    return result;
}

/// Collects the entries of a file that belong to a source.
class Entries {
public:
    Entries(const I18NMapSource& source, I18NResourceMap& map) : m_source(source), m_map(map) {}

    void take(const I18NResourceReader& reader) {
        const std::string_view element = reader.getXMLElement();
        if (element.front() == '/')
            end(element.substr(1));
        else if (isTable(element))
            m_table = element;
        else if (m_table == m_source.table)
            add(element, reader);
    }

private:
    void end(std::string_view element) {
        if (element == m_table) m_table.clear();
        if (element == "entry") m_name.reset();
    }

    void add(std::string_view element, const I18NResourceReader& reader) {
        std::optional<std::string> name = reader.getXMLElementAttribute("name");
        const bool first = *m_source.attribute == '\0';
        if (element == "value") {
            if (m_name)
                store(*m_name, first ? reader.getXMLElementValue()
                                     : reader.getXMLElementAttribute(m_source.attribute));
            return;
        }
        const std::optional<std::string> value =
            reader.getXMLElementAttribute(first ? "value" : m_source.attribute);
        if (name && value)
            store(*name, value);
        else if (name)
            m_name.swap(name);
        else
            store(std::string(element), value);
    }

    void store(const std::string& name, const std::optional<std::string>& value) {
        if (value) m_map[name] = fromUTF8(*value);
    }

    const I18NMapSource& m_source;
    I18NResourceMap& m_map;
    std::string m_table;                // the table around the current line
    std::optional<std::string> m_name;  // name of an entry whose value follows
};

}  // namespace

namespace {

/// A path where a file may be, and the name of the locale that it is for.
struct Place {
    std::string path;
    std::string name;
};

std::vector<Place> placesOf(const char* base, const I18NLocale& locale) {
    // Determined here, too, so that calls before the start of the layer find the same files as
    // later calls.
    determineBinDir();
    const std::string directories[] = {i18nBinDir(), std::string(), i18nShareDirectory()};
    std::vector<Place> places;
    for (const std::string& name : namesOf(locale)) {
        const std::string file = base + name + ".xml";
        for (const std::string& dir : directories) {
            places.push_back({dir, name});
            QBLFmDir::joinPath(places.back().path, file.c_str());
        }
    }
    return places;
}

}  // namespace

bool findResourceFile(std::string& path, std::string& name, const char* base,
                      const I18NLocale& locale) {
    for (const Place& place : placesOf(base, locale)) {
        const QBLFileLook seen = qblLookForFile(place.path.c_str());
        if (seen == QBLFileLook::kNotThere) continue;
        if (seen == QBLFileLook::kNotSeen) return false;
        path = place.path;
        name = place.name;
        return true;
    }
    return false;
}

// A map that could not be read is not kept, so the next call tries to read it again.
std::shared_ptr<const I18NResourceMap> I18NLocaleResources::load(const I18NMapSource& source,
                                                                 const I18NLocale& locale) {
    auto map = std::make_shared<I18NResourceMap>();
    std::string path;
    bool seen = true;
    for (const Place& place : placesOf(source.base, locale)) {
        const auto known = m_byPath.find(Key(&source, place.path));
        if (known != m_byPath.end()) return known->second;
        I18NResourceReader reader(place.path.c_str());
        Entries entries(source, *map);
        while (reader.next()) entries.take(reader);
        seen = !reader.isNotSeen();
        if (seen && !reader.isOpen()) continue;
        path = place.path;
        break;
    }
    if (!seen) map->clear();
    if (map->empty() && source.failure != nullptr)
        QBL_THROW(I18NRuntimeError(I18N_UNEXPECTED, source.failure));
    if (!seen) return nullptr;
    return m_byPath.emplace(Key(&source, path), map).first->second;
}

const I18NResourceMap& I18NLocaleResources::get(const I18NMapSource& source,
                                                const I18NLocale& locale) {
    QBLThreadGuard guard(m_lock);
    Key key(&source, locale.getName());
    const auto known = m_byLocale.find(key);
    if (known != m_byLocale.end()) return *known->second;
    const std::shared_ptr<const I18NResourceMap> map = load(source, locale);
    if (map == nullptr) return qblImmortal<const I18NResourceMap>();
    if (m_byLocale.size() < kMostLocales && key.second.size() <= kLongestName)
        m_byLocale.emplace(std::move(key), map);
    return *map;
}

const std::u16string* I18NLocaleResources::find(const I18NMapSource& source,
                                                const I18NLocale& locale, const char* key) {
    const I18NResourceMap& map = get(source, locale);
    if (key == nullptr) return nullptr;
    const auto entry = map.find(std::string_view(key));
    return entry != map.end() ? &entry->second : nullptr;
}

void I18NLocaleResources::clear() {
    QBLThreadGuard guard(m_lock);
    m_byLocale.clear();
    m_byPath.clear();
}
