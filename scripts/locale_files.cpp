// Generates the resource files of each language from ICU's locale data and writes them into a
// directory. The target resource_files runs it on res/.

#include <unicode/locid.h>
#include <unicode/measunit.h>
#include <unicode/numberformatter.h>
#include <unicode/strenum.h>
#include <unicode/timezone.h>
#include <unicode/ucurr.h>
#include <unicode/udata.h>
#include <unicode/uenum.h>
#include <unicode/uloc.h>
#include <unicode/ulocdata.h>
#include <unicode/ures.h>

#include <cstdio>
#include <fstream>
#include <iostream>
#include <map>
#include <memory>
#include <set>
#include <stdexcept>
#include <string>
#include <utility>

#include "i18n/cpp/i18n_internal_resources.hpp"

namespace {

/// The files of this language contain the tables that do not depend on the language.
const char kTables[] = "en";

struct Language {
    const char* name;
    const char* noDescription;
};
constexpr Language kLanguages[] = {{"en", "No description"},
                                   {"de", "Keine Beschreibung"},
                                   {"fr", "Aucune description"},
                                   {"ja", "説明なし"},
                                   {"es", "Sin descripción"}};

class Status {
public:
    operator UErrorCode*() { return &m_error; }
    operator UErrorCode&() { return m_error; }
    void check(const std::string& what) const {
        if (U_FAILURE(m_error)) throw std::runtime_error(what + ": " + u_errorName(m_error));
    }

private:
    UErrorCode m_error = U_ZERO_ERROR;
};

std::string utf8(const icu::UnicodeString& text) {
    std::string out;
    text.toUTF8String(out);
    return out;
}

std::string escaped(const std::string& text) {
    std::string out;
    for (const char c : text) switch (c) {
            case '<':
                out += "&lt;";
                break;
            case '>':
                out += "&gt;";
                break;
            case '&':
                out += "&amp;";
                break;
            case '"':
                out += "&quot;";
                break;
            default:
                out += c;
        }
    return out;
}

/// A resource file that is being written.
class File {
public:
    File(const std::string& directory, const std::string& name, const char* root,
         const std::string& comment)
        : m_path(directory + "/" + name + ".xml"), m_out(m_path), m_pRoot(root) {
        Status status;
        UVersionInfo cldr;
        ulocdata_getCLDRVersion(cldr, status);
        status.check("CLDR version");
        m_out
            << "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<!--\n"
            << comment
            << "One element per line.\n\nWritten by scripts/locale_files.cpp from the locale data "
               "of "
               "ICU "
            << U_ICU_VERSION << " (CLDR " << int{cldr[0]}
            << "),\nwhich is under the Unicode License: https://www.unicode.org/license.txt\n-->\n"
            << "<" << root << ">\n";
    }
    /// Writes the end of the file.
    /// @throws std::runtime_error if the file could not be written
    void finish() {
        m_out << "</" << m_pRoot << ">\n";
        if (!m_out.flush()) throw std::runtime_error("cannot write " + m_path);
    }

    /// @param value  the attributes of the element "value"
    void entry(const std::string& name, const std::string& value) {
        m_out << "<entry name=\"" << escaped(name) << "\">\n<value " << value << "/>\n</entry>\n";
    }
    void table(const char* name, const std::map<std::string, std::string>& entries) {
        m_out << "<" << name << ">\n";
        for (const auto& [key, value] : entries) entry(key, attribute("name", value));
        m_out << "</" << name << ">\n";
    }
    std::ofstream& out() { return m_out; }

    static std::string attribute(const char* name, const std::string& value) {
        return std::string(name) + "=\"" + escaped(value) + "\"";
    }

private:
    std::string m_path;
    std::ofstream m_out;
    const char* m_pRoot;
};

using Text = std::basic_string<UChar>;

Text wide(const std::string& ascii) { return Text(ascii.begin(), ascii.end()); }

std::string narrow(const UChar* text) { return utf8(icu::UnicodeString(text)); }

std::set<std::string> currencies() {
    Status status;
    std::set<std::string> all;
    UEnumeration* codes = ucurr_openISOCurrencies(UCURR_ALL, status);
    while (const char* code = uenum_next(codes, nullptr, status)) all.insert(code);
    uenum_close(codes);
    status.check("currencies");
    return all;
}

/// Returns the currency of a country; empty if the country has no currency.
std::string currencyOf(const std::string& country) {
    Status status;
    UChar code[4] = {};
    ucurr_forLocale(("und_" + country).c_str(), code, 4, status);
    const std::string name = narrow(code);
    return name != "XXX" ? name : "";
}

/// Returns the past and present currencies of a country. The value is true if the country no longer
/// uses the currency.
std::map<std::string, bool> historyOf(const std::string& country) {
    Status status, none;
    const icu::LocalUResourceBundlePointer all(
        ures_openDirect(U_ICUDATA_NAME "-curr", "supplementalData", status));
    const icu::LocalUResourceBundlePointer map(
        ures_getByKey(all.getAlias(), "CurrencyMap", nullptr, status));
    status.check("CurrencyMap");
    const icu::LocalUResourceBundlePointer list(
        ures_getByKey(map.getAlias(), country.c_str(), nullptr, none));
    std::map<std::string, bool> result;
    for (int i = 0; i < ures_getSize(list.getAlias()); ++i) {
        const icu::LocalUResourceBundlePointer one(
            ures_getByIndex(list.getAlias(), i, nullptr, status));
        int32_t length = 0;
        const UChar* code = ures_getStringByKey(one.getAlias(), "id", &length, status);
        status.check(country);
        UErrorCode absent = U_ZERO_ERROR;
        const icu::LocalUResourceBundlePointer end(
            ures_getByKey(one.getAlias(), "to", nullptr, &absent));
        result[narrow(code)] = U_SUCCESS(absent);
    }
    return result;
}

/// Maps each currency that no country uses any more to its successor. Omits a currency if its
/// countries now use different currencies.
std::map<std::string, std::string> successors() {
    std::map<std::string, std::set<std::string>> next;
    std::set<std::string> used;
    for (const char* const* country = uloc_getISOCountries(); *country != nullptr; ++country) {
        const std::string now = currencyOf(*country);
        for (const auto& [code, givenUp] : historyOf(*country)) {
            if (!givenUp) used.insert(code);
            if (!now.empty()) next[code].insert(now);
        }
    }
    std::map<std::string, std::string> result;
    for (const auto& [code, codes] : next)
        if (used.count(code) == 0 && codes.size() == 1) result[code] = *codes.begin();
    return result;
}

std::map<std::string, std::string> currenciesOfCountries() {
    std::map<std::string, std::string> result;
    for (const char* const* country = uloc_getISOCountries(); *country != nullptr; ++country) {
        const std::string code = currencyOf(*country);
        if (!code.empty()) result[*country] = code;
    }
    return result;
}

std::map<std::string, std::string> currenciesOfLCIDs() {
    std::map<std::string, std::string> result;
    for (int i = 0; i < uloc_countAvailable(); ++i) {
        const icu::Locale locale(uloc_getAvailable(i));
        const unsigned lcid = uloc_getLCID(locale.getName());
        char back[ULOC_FULLNAME_CAPACITY] = "";
        Status status;
        uloc_getLocaleForLCID(lcid, back, sizeof back, status);
        // Skips a locale if its identifier belongs to another locale. A locale without its own
        // identifier gets the identifier of its language. A locale with a script may get the
        // identifier of the locale without the script.
        icu::Locale own(locale), other(back);
        own.minimizeSubtags(status);
        other.minimizeSubtags(status);
        if (lcid == 0 || lcid > 0xFFFF || *locale.getVariant() != '\0' || own != other) continue;
        const std::string code = currencyOf(locale.getCountry());
        char key[8];
        std::snprintf(key, sizeof key, "0x%04X", lcid);
        if (*locale.getCountry() != '\0' && !code.empty()) result[key] = code;
    }
    return result;
}

void writeCurrencies(const std::string& directory, const Language& language) {
    File file(
        directory, std::string("qbli18nrescr_") + language.name, "currencies",
        "Currencies. The name of an entry is the ISO code; its value has the symbol, the number\n"
        "of decimal places and the description. Three tables are only read from the English\n"
        "file: currencyCodeMappingTable maps old currencies to their successors,\n"
        "LCIDtoCurrencyCodeMappingTable maps locale identifiers (0x and four digits) to\n"
        "currencies, ISOCountryCodeToISOCurrencyCode maps countries to currencies.\n");
    for (const std::string& code : currencies()) {
        Status status;
        int32_t length = 0;
        const Text wanted = wide(code);
        const auto name = [&](UCurrNameStyle style) {
            UErrorCode* error = status;
            return narrow(
                ucurr_getName(wanted.c_str(), language.name, style, nullptr, &length, error));
        };
        const std::string symbol = name(UCURR_SYMBOL_NAME), text = name(UCURR_LONG_NAME);
        const int decimals = ucurr_getDefaultFractionDigits(wanted.c_str(), status);
        status.check(code);
        if (text == code) continue;
        file.entry(code, File::attribute("symbol", symbol) + " " +
                             File::attribute("decimals", std::to_string(decimals)) + " " +
                             File::attribute("description", text));
    }
    if (language.name == std::string(kTables)) {
        file.table("currencyCodeMappingTable", successors());
        file.table("LCIDtoCurrencyCodeMappingTable", currenciesOfLCIDs());
        file.table("ISOCountryCodeToISOCurrencyCode", currenciesOfCountries());
    }
    file.finish();
}

void writeWords(const std::string& directory, const Language& language) {
    File file(directory, std::string("qbli18nreswd_") + language.name, "words",
              "Words. noDescription replaces a missing description.\n");
    file.out() << "<noDescription " << File::attribute("value", language.noDescription) << "/>\n";
    file.finish();
}

/// Returns the word for a unit of time: "years" from "5 years".
std::string unitWord(const char* language, const icu::MeasureUnit& unit, int number) {
    Status status;
    const icu::UnicodeString text = icu::number::NumberFormatter::withLocale(icu::Locale(language))
                                        .unit(unit)
                                        .unitWidth(UNUM_UNIT_WIDTH_FULL_NAME)
                                        .formatInt(number, status)
                                        .toString(status);
    status.check("units");
    icu::UnicodeString word;
    for (int i = 0; i < text.length(); ++i)
        if (u_isalpha(text[i]) || (!word.isEmpty() && text[i] == u' ')) word.append(text[i]);
    return utf8(word.trim());
}

void writeTimePeriods(const std::string& directory, const Language& language) {
    File file(directory, std::string("qbli18nrestp_") + language.name, "timeperiods",
              "Words for periods of time: year is the singular, years the plural, and so on.\n");
    const std::pair<const char*, icu::MeasureUnit> units[] = {
        {"year", icu::MeasureUnit::getYear()},     {"month", icu::MeasureUnit::getMonth()},
        {"week", icu::MeasureUnit::getWeek()},     {"day", icu::MeasureUnit::getDay()},
        {"hour", icu::MeasureUnit::getHour()},     {"minute", icu::MeasureUnit::getMinute()},
        {"second", icu::MeasureUnit::getSecond()},
    };
    for (const auto& [name, unit] : units) {
        file.entry(name, File::attribute("text", unitWord(language.name, unit, 1)));
        file.entry(std::string(name) + "s",
                   File::attribute("text", unitWord(language.name, unit, 5)));
    }
    file.finish();
}

void writeTimeZones(const std::string& directory, const Language& language) {
    File file(directory, std::string("qbli18nrestz_") + language.name, "i18n_timezones",
              "Time zones: identifiers and their descriptions.\n");
    Status status;
    std::unique_ptr<icu::StringEnumeration> ids(icu::TimeZone::createTimeZoneIDEnumeration(
        UCAL_ZONE_TYPE_CANONICAL_LOCATION, nullptr, nullptr, status));
    status.check("time zones");
    std::set<std::string> all = {"Etc/UTC", "US/Eastern", "US/Mountain"};
    while (const char* id = ids->next(nullptr, status)) all.insert(id);
    file.out() << "<timezones>\n";
    for (const std::string& id : all) {
        const std::unique_ptr<icu::TimeZone> zone(
            icu::TimeZone::createTimeZone(icu::UnicodeString::fromUTF8(id)));
        icu::UnicodeString name;
        zone->getDisplayName(false, icu::TimeZone::LONG_GENERIC, icu::Locale(language.name), name);
        file.out() << "<timezone " << File::attribute("name", id) << " "
                   << File::attribute("value", utf8(name)) << "/>\n";
    }
    file.out() << "</timezones>\n";
    file.finish();
}

std::map<std::string, std::string> localesOfLanguages() {
    std::map<std::string, std::string> result;
    for (int i = 0; i < uloc_countAvailable(); ++i) {
        Status status;
        icu::Locale locale(icu::Locale(uloc_getAvailable(i)).getLanguage());
        const std::string language = locale.getLanguage();
        locale.addLikelySubtags(status);
        status.check(language);
        if (*locale.getCountry() != '\0') result[language] = language + "_" + locale.getCountry();
    }
    return result;
}

void writeLocales(const std::string& directory, const Language& language) {
    File file(directory, std::string("qbli18nreslc_") + language.name, "locales",
              "Names of the supported locales and of their languages. In the English file, the\n"
              "langLocMappingTable maps languages to their default locales.\n");
    I18NLocale* supported = nullptr;
    int count = 0;
    I18NInternalResources::getInternalResources().getLocales(&supported, &count);
    std::set<std::string> all;
    for (int i = 0; i < count; ++i) {
        all.insert(supported[i].getName());
        all.insert(supported[i].getLanguage());
    }
    for (const std::string& name : all) {
        icu::UnicodeString text;
        icu::Locale(name.c_str()).getDisplayName(icu::Locale(language.name), text);
        file.entry(name, File::attribute("text", utf8(text)));
    }
    if (language.name == std::string(kTables))
        file.table("langLocMappingTable", localesOfLanguages());
    file.finish();
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::cerr << "usage: locale_files DIRECTORY\n";
        return 2;
    }
    try {
        for (const Language& language : kLanguages)
            for (const auto write :
                 {writeCurrencies, writeWords, writeTimePeriods, writeTimeZones, writeLocales})
                write(argv[1], language);
    } catch (const std::exception& error) {
        std::cerr << "locale_files: " << error.what() << '\n';
        return 1;
    }
    return 0;
}
