#ifndef I18N_CPP_I18N_INTERNAL_RESOURCES_HPP
#define I18N_CPP_I18N_INTERNAL_RESOURCES_HPP

#include <unicode/uversion.h>

#include <cstdio>
#include <functional>
#include <iosfwd>
#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "QBLCore/Frame/QBLExport.h"
#include "i18n/cpp/i18n_error_codes.h"
#include "i18n/cpp/i18n_locale.hpp"

U_NAMESPACE_BEGIN
class Locale;
class Transliterator;
U_NAMESPACE_END

class I18NString;

/// Texts of a resource file by their names.
using I18NResourceMap = std::map<std::string, std::u16string, std::less<>>;

/// What the resource files of the installation say: "i18n_res.xml", which is read while the
/// internationalisation layer starts, and a file per language for each of currencies, words, time
/// periods, time zones and locales, read when it is first asked for. There is one object of this
/// class in a process; before the start and after the stop it has the defaults.
///
/// Operations that fill a string leave it as it is when they give false. Codes of currencies and
/// countries are in upper case. Where a map is given, it is valid until the stop.
///
/// Threads: any thread may call any operation, but loadSequenceTable() and release(), which need
/// that nobody uses the resources meanwhile.
class QBL_API I18NInternalResources {
public:
    /// The process's one.
    /// @throws QBLOutOfMemoryError
    static I18NInternalResources& getInternalResources();
    /// The same, by its older name.
    static I18NInternalResources& getInternalResForTesting();

    I18NInternalResources(const I18NInternalResources&) = delete;
    I18NInternalResources& operator=(const I18NInternalResources&) = delete;

    /// Finds the installation's bin directory, and names it to ICU as the place of its data, unless
    /// ICU is in use already: a converter made earlier has done the same. What ICU has built in
    /// comes first all the same.
    static void setDataDirectoryPath();
    /// The bin directory; empty if none was found.
    static std::string getDataDirectoryPath();
    /// Puts a name in the place of "./i18n_res.xml" in the path of the resource file, for the next
    /// loadSequenceTable(). Without effect when it is null or the path does not contain that.
    // NOLINTNEXTLINE(bugprone-reserved-identifier): programs know it under this name
    static void __changeResourceFileName(const char* name);
    /// Reads the resource file, or if it is not there the one of this name in the installation's
    /// share/qblcore. One that cannot be opened or read is no error and changes nothing; the other
    /// is not taken for one that could not be looked at, as when descriptors are exhausted.
    /// @throws QBLOutOfMemoryError
    void loadSequenceTable();
    /// Drops all that was read, and goes back to the defaults.
    void release();

    /// What to reckon with when room is made for UTF-8; 2.5 unless the file says another number,
    /// 4 at most.
    float getUTF8BytesPerCodePoints() const;
    /// Whether number formats may replace zeros with a scale; false unless the file says so.
    bool isAllowReplaceScaledZero() const;
    void setAllowReplaceScaledZero(bool allow);
    /// Whether number formats may show a negative zero; false unless the file says so.
    bool isAllowNegativeZero() const;
    void setAllowNegativeZero(bool allow);

    /// Whether a text has a character that must not be normalised. Null has none.
    bool isNonNormalizable(const wchar_t* text) const;
    bool isNonNormalizable(std::u16string_view text) const;
    /// What Japanese text has in the place of a character; the character itself if nothing else.
    char32_t getJaSubstitution(char32_t codePoint) const;
    /// Makes the Japanese substitutions in a text. @return whether there were any.
    bool substituteJa(std::u16string& text) const;

    /// What stands for a character that an encoding does not have.
    /// @param bytes  receives the bytes, which belong to the resources; null without an entry
    /// @param length  receives their number; with an entry, 0 means that the character is dropped
    /// @param error  receives I18N_ARGUMENT for a null pointer, I18N_ENCODING for an unknown
    ///     encoding, else I18N_OK; may be null itself
    /// @return whether there is an entry.
    bool getReplacementSequence(const char* encoding, wchar_t character, unsigned char** bytes,
                                int* length, I18NErrorCodes* error) const;
    /// What stands for bytes that are not convertible.
    /// @param character  receives the character; U+FFFF without an entry
    bool getReplacementSequence(const char* encoding, unsigned char* bytes, int length,
                                wchar_t* character, I18NErrorCodes* error) const;

    /// Replaces the five named XML entities by their characters.
    static void transliterate(std::u16string& text);
    static void transliterate(I18NString& text);
    /// A transliterator that does the same, made by the first call and valid until the stop.
    /// @throws I18NRuntimeError, QBLOutOfMemoryError
    const icu::Transliterator* getTransliterator();
    /// Its rules.
    static const char* getTransliterationData();
    /// Appends a text with the characters escaped that a URL must not hold.
    static void urlEncode(std::u16string_view text, std::u16string& out);
    /// A text with these characters escaped.
    static I18NString urlEncode(const I18NString& text);
    /// A transliterator that does the same, made by the first call and valid until the stop.
    /// @throws I18NRuntimeError, QBLOutOfMemoryError
    const icu::Transliterator* getURLEncodeTranslit();

    /// The currency's name in a language; what getNoDescriptionWord() gives if there is none.
    std::u16string getCurrencyDescription(const char* currency, const I18NLocale& locale);
    void getCurrencyDescription(const char* currency, const I18NLocale& locale,
                                I18NString& description);
    /// The word for a text that is missing; "No description" unless the locale has another.
    std::u16string getNoDescriptionWord(const I18NLocale& locale);
    void getNoDescriptionWord(const I18NLocale& locale, I18NString& word);
    /// @throws I18NRuntimeError if there are no symbols at all
    bool getSymbolForISOCode(const char* currency, const I18NLocale& locale,
                             std::u16string& symbol);
    bool getSymbolForISOCode(const char* currency, const I18NLocale& locale, I18NString& symbol);
    /// @return -1 for an unknown currency.
    /// @throws I18NRuntimeError if nothing is known of any
    int getNumbDecimPlacesForCurrency(const char* currency);
    /// Whether it is the code of a currency that the resources know.
    /// @throws I18NRuntimeError if they know none
    bool isISOCurrencyCodeValid(const char* currency);
    /// @throws I18NRuntimeError if there is none for any country
    bool getISOCurrencyCodeForCountry(const char* country, std::string& currency);
    /// The currency that took the place of one that is no longer used.
    bool getCurrencyMapping(const char* currency, std::string& successor);
    /// @param lcid  receives the lowest of the locale identifiers that the currency belongs to
    bool getLCIDForCurrencyCode(const char* currency, unsigned short& lcid);
    bool getCurrencyCodeForLCID(unsigned short lcid, std::string& currency);

    /// The locale's name in a language.
    bool getLocaleDescription(const I18NLocale& described, const I18NLocale& locale,
                              std::u16string& description);
    bool getLocaleDescription(const I18NLocale& described, const I18NLocale& locale,
                              I18NString& description);
    /// The supported locales, always in the same order.
    /// @param locales  receives an array that belongs to the resources, valid until the stop
    /// @param count  receives the number of its elements
    void getLocales(I18NLocale** locales, int* count);
    /// @param locale  receives the name of the locale of a language on its own, with the default
    ///     variant that the resource file gives it; "en-us" for an unknown language
    /// @return whether the language is known.
    /// @throws I18NRuntimeError if none is
    bool getDefaultLocaleForLanguage(const char* language, std::string& locale);
    /// The encoding of files of values with separators between them: what the resource file says
    /// for the locale, else the usual one of the language on the desktop.
    std::string getEncodingForLocale(const I18NLocale& locale) const;
    void getEncodingForLocale(const I18NLocale& locale, I18NString& encoding) const;
    bool getLocaleIdFroLCID(unsigned short lcid, std::string& locale) const;
    /// Whether the resource file has settings for the locale, and they are in use.
    bool isLocaleModified(const I18NLocale& locale) const;
    const I18NResourceMap& getLocaleResources(const I18NLocale& locale);
    /// What separates values where numbers are written as in the locale.
    bool getListSeparator(const I18NLocale& locale, wchar_t& separator) const;
    /// @param locale  null means the default locale
    bool getListSeparator(const icu::Locale* locale, wchar_t& separator) const;

    bool getTimeZoneDescription(const char* zone, const I18NLocale& locale,
                                std::u16string& description);
    bool getTimeZoneDescription(const char* zone, const I18NLocale& locale,
                                I18NString& description);
    /// @param count  receives the number of zones that the resources know
    /// @return their identifiers, sorted; the array is valid until the stop.
    const char* const* getTimeZoneIDs(int& count);
    /// @param offset  in hours, as of standard time
    /// @return the zone that stands for an offset in the United States; null for others.
    static const char* getFallbackTimeZoneID(int offset);
    /// @return the zone for the abbreviations EST, CST, MST, PST and HST; others unchanged.
    static const char* getCompatibilityTimeZoneID(const char* id);
    const I18NResourceMap& getTimePeriodResources(const I18NLocale& locale);
    const I18NResourceMap& getTimeZoneResources(const I18NLocale& locale);

    /// Looks for a file per locale: base + name + ".xml", where name is language, country and
    /// variant, then without the variant, then the language alone, then "en"; each in the bin
    /// directory, then in the working directory, then in the installation's share/qblcore. A
    /// variant is looked for in upper and then in lower case; files that we may not read are passed
    /// over.
    /// @param path, name  receive the file that was found, and which name it has
    /// @param locale  null means the default locale
    static bool findResourceFile(std::string& path, I18NString& name, const char* base,
                                 const icu::Locale* locale);
    /// Reads a line of a text file, without its end ("\n" or "\r\n") and without a byte-order
    /// mark. Of a line beyond 1 MiB nothing is kept.
    /// @return nothing at the end of the file, or without a file.
    static std::optional<std::string> readLine(std::FILE* file);
    /// The same, with the bytes read as UTF-8.
    /// @return false at the end of the file; the line is empty then.
    static bool readLineEx(I18NString& line, std::ifstream& file);

protected:
    I18NInternalResources();
    ~I18NInternalResources() = default;  // there is always one

private:
    struct Data;

    Data& m_data;
};

#endif
