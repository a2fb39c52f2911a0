#include "i18n/cpp/internal/i18n_locale_resources.hpp"

#include <sys/stat.h>
#include <unicode/ustring.h>

#include <algorithm>
#include <cctype>

#include "QBLCore/Exceptions/QBLThrow.hpp"
#include "QBLCore/FileManagement/QBLFmDir.hpp"
#include "i18n/cpp/i18n_error_codes.h"
#include "i18n/cpp/i18n_errors.hpp"
#include "i18n/cpp/internal/i18n_bin_dir.hpp"
#include "i18n/cpp/internal/i18n_resource_reader.hpp"

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

constexpr unsigned short kReadableFile = S_IFREG | S_IRUSR;

// Names of locales may come from a program's clients; beyond this many, files are looked for anew.
constexpr std::size_t kMostLocales = 4096;

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

/// The names to look for, the most special one first.
std::vector<std::string> namesOf(const I18NLocale& locale) {
    std::vector<std::string> names;
    if (locale.isValid()) {
        std::string name = locale.getLanguage();
        names.push_back(name);
        for (const char* part : {locale.getCountry(), locale.getVariant()}) {
            if (*part == '\0') break;
            name.append("_").append(part);
            if (isPlainName(name)) names.insert(names.begin(), name);
        }
    }
    if (names.empty() || names.back() != "en") names.emplace_back("en");
    return names;
}

std::u16string fromUTF8(const std::string& text) {
    // No code point, and no byte that is replaced, needs more units than bytes.
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
    std::string m_table;                // that the current line is in
    std::optional<std::string> m_name;  // of an entry whose value is to come
};

}  // namespace

bool findResourceFile(std::string& path, std::string& name, const char* base,
                      const I18NLocale& locale) {
    // Those who ask before the start of the layer find the same as later.
    determineBinDir();
    const std::string directories[] = {i18nBinDir(), std::string(), i18nShareDirectory()};
    for (const std::string& candidate : namesOf(locale)) {
        const std::string file = base + candidate + ".xml";
        for (const std::string& dir : directories) {
            std::string whole = dir;
            QBLFmDir::joinPath(whole, file.c_str());
            if (!QBLFmDir::exists(whole.c_str(), kReadableFile)) continue;
            path = whole;
            name = candidate;
            return true;
        }
    }
    return false;
}

void loadResource(const std::string& path, const I18NMapSource& source, I18NResourceMap& map) {
    I18NResourceReader reader(path.c_str());
    Entries entries(source, map);
    while (reader.next()) entries.take(reader);
}

std::shared_ptr<const I18NResourceMap> I18NLocaleResources::load(const I18NMapSource& source,
                                                                 const I18NLocale& locale) {
    std::string path, name;
    const bool found = findResourceFile(path, name, source.base, locale);
    std::shared_ptr<const I18NResourceMap>& kept = m_byPath[Key(&source, path)];
    if (kept == nullptr) {
        auto map = std::make_shared<I18NResourceMap>();
        if (found) loadResource(path, source, *map);
        if (map->empty() && source.failure != nullptr)
            QBL_THROW(I18NRuntimeError(I18N_UNEXPECTED, source.failure));
        kept = map;
    }
    return kept;
}

const I18NResourceMap& I18NLocaleResources::get(const I18NMapSource& source,
                                                const I18NLocale& locale) {
    QBLThreadGuard guard(m_lock);
    Key key(&source, locale.getName());
    const auto known = m_byLocale.find(key);
    if (known != m_byLocale.end()) return *known->second;
    const std::shared_ptr<const I18NResourceMap> map = load(source, locale);
    if (m_byLocale.size() < kMostLocales) m_byLocale.emplace(std::move(key), map);
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
