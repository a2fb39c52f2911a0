// The operations of I18NInternalResources that take or return strings.

#include <unicode/locid.h>

#include <fstream>

#include "QBLCore/Exceptions/QBLAllocation.hpp"
#include "i18n/cpp/i18n_string.hpp"
#include "i18n/cpp/resources/i18n_internal_data.hpp"
#include "i18n/cpp/resources/i18n_text_file.hpp"
#include "i18n/cpp/string/i18n_allocation.hpp"

namespace {

// Assigns wide characters, so that the string keeps its settings.
void set(I18NString& string, const std::u16string& text) {
    QBL_ALLOC_TRY
    string = std::wstring(text.begin(), text.end()).c_str();
    I18N_ALLOC_CATCH
}

/// Fills a string by an operation that fills a u16string. @return the operation's result
template <class Fill>
bool fill(I18NString& string, Fill operation) {
    std::u16string text;
    const bool found = operation(text);
    if (found) set(string, text);
    return found;
}

}  // namespace

void I18NInternalResources::transliterate(I18NString& text) {
    std::u16string units = text.toUtf16();
    const std::size_t before = units.size();
    transliterate(units);
    if (units.size() != before) set(text, units);
}

I18NString I18NInternalResources::urlEncode(const I18NString& text) {
    std::u16string escaped;
    urlEncode(text.toUtf16(), escaped);
    I18NString result;
    set(result, escaped);
    return result;
}

void I18NInternalResources::getCurrencyDescription(const char* currency, const I18NLocale& locale,
                                                   I18NString& description) {
    set(description, getCurrencyDescription(currency, locale));
}

void I18NInternalResources::getNoDescriptionWord(const I18NLocale& locale, I18NString& word) {
    set(word, getNoDescriptionWord(locale));
}

bool I18NInternalResources::getSymbolForISOCode(const char* currency, const I18NLocale& locale,
                                                I18NString& symbol) {
    return fill(symbol,
                [&](std::u16string& text) { return getSymbolForISOCode(currency, locale, text); });
}

bool I18NInternalResources::getLocaleDescription(const I18NLocale& described,
                                                 const I18NLocale& locale,
                                                 I18NString& description) {
    return fill(description, [&](std::u16string& text) {
        return getLocaleDescription(described, locale, text);
    });
}

bool I18NInternalResources::getTimeZoneDescription(const char* zone, const I18NLocale& locale,
                                                   I18NString& description) {
    return fill(description,
                [&](std::u16string& text) { return getTimeZoneDescription(zone, locale, text); });
}

void I18NInternalResources::getEncodingForLocale(const I18NLocale& locale,
                                                 I18NString& encoding) const {
    encoding = getEncodingForLocale(locale).c_str();
}

bool I18NInternalResources::findResourceFile(std::string& path, I18NString& name, const char* base,
                                             const icu::Locale* locale) {
    if (base == nullptr) return false;
    QBL_ALLOC_TRY
    const I18NLocale wanted(locale != nullptr ? locale->getName() : nullptr);
    std::string file, found;
    if (!::findResourceFile(file, found, base, wanted)) return false;
    name = found.c_str();
    path.swap(file);
    return true;
    I18N_ALLOC_CATCH
}

std::optional<std::string> I18NInternalResources::readLine(std::FILE* file) {
    if (file == nullptr) return std::nullopt;
    QBL_ALLOC_TRY
    std::string line;
    if (!i18nReadLine([file] { return std::getc(file); }, line)) return std::nullopt;
    return line;
    I18N_ALLOC_CATCH
}

bool I18NInternalResources::readLineEx(I18NString& line, std::ifstream& file) {
    QBL_ALLOC_TRY
    std::string bytes;
    const bool read = i18nReadLine([&file] { return file.get(); }, bytes);
    line = bytes.c_str();
    return read;
    I18N_ALLOC_CATCH
}
