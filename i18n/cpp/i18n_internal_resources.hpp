#ifndef I18N_CPP_I18N_INTERNAL_RESOURCES_HPP
#define I18N_CPP_I18N_INTERNAL_RESOURCES_HPP

#include <unicode/uversion.h>

#include <cstdio>
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

/// The texts of a resource file by name.
using I18NResourceMap = std::map<std::string, std::u16string, std::less<>>;

/// The contents of the installation's resource files. "i18n_res.xml" is read while the
/// internationalisation layer starts. Currencies, words, time periods, time zones and locales have
/// one file per language each. Such a file is read on first use. A process has one object of this
/// class. Before the layer starts and after it stops, the operations return the defaults.
///
/// An operation that fills a string leaves the string unchanged if it returns false. Codes of
/// currencies and countries are in upper case. A map that an operation returns is valid until the
/// layer stops.
///
/// Threads: any thread may call any operation, except loadSequenceTable() and release(): no other
/// thread may use the resources while one of these two runs.
class QBL_API I18NInternalResources {
public:
    /// Returns the object of the process.
    /// @throws QBLOutOfMemoryError
    static I18NInternalResources& getInternalResources();
    /// Does the same under an older name.
    static I18NInternalResources& getInternalResForTesting();

    I18NInternalResources(const I18NInternalResources&) = delete;
    I18NInternalResources& operator=(const I18NInternalResources&) = delete;

    /// Finds the installation's bin directory and sets it as ICU's data directory. Does not change
    /// ICU's data directory again if an earlier call or the first converter has set it. Data that
    /// is built into ICU takes precedence over files.
    static void setDataDirectoryPath();
    /// Returns the bin directory, or an empty string if none was found.
    static std::string getDataDirectoryPath();
    /// Replaces "./i18n_res.xml" in the path of the resource file by a name, for the next
    /// loadSequenceTable(). Does nothing if the name is null or if the path does not contain that
    /// text.
    // NOLINTNEXTLINE(bugprone-reserved-identifier): programs know it under this name
    static void __changeResourceFileName(const char* name);
    /// Reads the resource file. If it does not exist or the process may not read it, reads the file
    /// with the same name in the installation's share/qblcore instead. A file that cannot be opened
    /// or read is not an error and changes nothing. If the first file cannot be examined, for
    /// example because descriptors are exhausted, the second file is not used.
    /// @throws QBLOutOfMemoryError
    void loadSequenceTable();
    /// Discards everything that was read and restores the defaults.
    void release();

    /// The expected number of bytes per code point, for allocating memory for UTF-8: 2.5 unless the
    /// file sets another number, at most 4.
    float getUTF8BytesPerCodePoints() const;
    /// Whether number formats may replace a zero that has a scale, such as 0.00; false unless the
    /// file says otherwise.
    bool isAllowReplaceScaledZero() const;
    void setAllowReplaceScaledZero(bool allow);
    /// Whether number formats may show a negative zero; false unless the file says otherwise.
    bool isAllowNegativeZero() const;
    void setAllowNegativeZero(bool allow);

    /// Returns true if a text has a character that must not be normalised; false for null.
    bool isNonNormalizable(const wchar_t* text) const;
    bool isNonNormalizable(std::u16string_view text) const;
    /// Returns the character that replaces the given character in Japanese text, or the given
    /// character if there is no substitution.
    char32_t getJaSubstitution(char32_t codePoint) const;
    /// Makes the Japanese substitutions in a text. @return true if there were any
    bool substituteJa(std::u16string& text) const;

    /// Gets the bytes that replace a character which an encoding lacks.
    /// @param bytes  receives the bytes, which belong to the resources; null if there is no entry
    /// @param length  receives the number of bytes. If there is an entry, 0 means that the
    ///     character is dropped
    /// @param error  receives I18N_ARGUMENT for a null pointer, I18N_ENCODING for an unknown
    ///     encoding, else I18N_OK; may be null
    /// @return true if there is an entry
    bool getReplacementSequence(const char* encoding, wchar_t character, unsigned char** bytes,
                                int* length, I18NErrorCodes* error) const;
    /// Gets the character that replaces bytes which are not convertible.
    /// @param character  receives the character; U+FFFF if there is no entry
    bool getReplacementSequence(const char* encoding, unsigned char* bytes, int length,
                                wchar_t* character, I18NErrorCodes* error) const;

    /// Replaces the five named XML entities by the characters that they stand for.
    static void transliterate(std::u16string& text);
    static void transliterate(I18NString& text);
    /// Returns a transliterator that makes the same replacements. The first call creates the
    /// transliterator. It is valid until the layer stops.
    /// @throws I18NRuntimeError, QBLOutOfMemoryError
    const icu::Transliterator* getTransliterator();
    /// Returns the rules of that transliterator.
    static const char* getTransliterationData();
    /// Appends a text, and escapes the characters that a URL must not contain.
    static void urlEncode(std::u16string_view text, std::u16string& out);
    /// Returns a text in which these characters are escaped.
    static I18NString urlEncode(const I18NString& text);
    /// Returns a transliterator that escapes the same characters. The first call creates the
    /// transliterator. It is valid until the layer stops.
    /// @throws I18NRuntimeError, QBLOutOfMemoryError
    const icu::Transliterator* getURLEncodeTranslit();

    /// Returns the currency's name in a language, or getNoDescriptionWord() if it is missing.
    std::u16string getCurrencyDescription(const char* currency, const I18NLocale& locale);
    void getCurrencyDescription(const char* currency, const I18NLocale& locale,
                                I18NString& description);
    /// Returns the text to show for a missing description; "No description" unless the locale has
    /// another text.
    std::u16string getNoDescriptionWord(const I18NLocale& locale);
    void getNoDescriptionWord(const I18NLocale& locale, I18NString& word);
    /// @throws I18NRuntimeError if the resources have no symbols at all
    bool getSymbolForISOCode(const char* currency, const I18NLocale& locale,
                             std::u16string& symbol);
    bool getSymbolForISOCode(const char* currency, const I18NLocale& locale, I18NString& symbol);
    /// @return -1 for an unknown currency
    /// @throws I18NRuntimeError if the resources have no decimal places of any currency
    int getNumbDecimPlacesForCurrency(const char* currency);
    /// Returns true if this is the code of a currency in the resources.
    /// @throws I18NRuntimeError if the resources have no currencies at all
    bool isISOCurrencyCodeValid(const char* currency);
    /// @throws I18NRuntimeError if the resources have no currency of any country
    bool getISOCurrencyCodeForCountry(const char* country, std::string& currency);
    /// Gets the successor of a currency that is no longer used.
    bool getCurrencyMapping(const char* currency, std::string& successor);
    /// @param lcid  receives the lowest of the locale identifiers that the currency belongs to
    bool getLCIDForCurrencyCode(const char* currency, unsigned short& lcid);
    bool getCurrencyCodeForLCID(unsigned short lcid, std::string& currency);

    /// Gets the locale's name in a language.
    bool getLocaleDescription(const I18NLocale& described, const I18NLocale& locale,
                              std::u16string& description);
    bool getLocaleDescription(const I18NLocale& described, const I18NLocale& locale,
                              I18NString& description);
    /// Gets the supported locales, always in the same order.
    /// @param locales  receives an array that belongs to the resources and is valid until the layer
    ///     stops
    /// @param count  receives the number of its elements
    void getLocales(I18NLocale** locales, int* count);
    /// @param locale  receives the name of the language's default locale, with the default variant
    ///     that the resource file sets for that locale; "en-us" for an unknown language
    /// @return true if the language is known
    /// @throws I18NRuntimeError if the resources have no languages at all
    bool getDefaultLocaleForLanguage(const char* language, std::string& locale);
    /// Returns the encoding for files of separated values: the encoding that the resource file sets
    /// for the locale, else the usual desktop encoding of the language.
    std::string getEncodingForLocale(const I18NLocale& locale) const;
    void getEncodingForLocale(const I18NLocale& locale, I18NString& encoding) const;
    bool getLocaleIdFroLCID(unsigned short lcid, std::string& locale) const;
    /// Returns true if the resource file has settings for the locale and marks them as in use.
    bool isLocaleModified(const I18NLocale& locale) const;
    const I18NResourceMap& getLocaleResources(const I18NLocale& locale);
    /// Gets the separator of list items for a locale: a comma if the locale's decimal separator is
    /// a point, else a semicolon.
    bool getListSeparator(const I18NLocale& locale, wchar_t& separator) const;
    /// @param locale  null means the default locale
    bool getListSeparator(const icu::Locale* locale, wchar_t& separator) const;

    bool getTimeZoneDescription(const char* zone, const I18NLocale& locale,
                                std::u16string& description);
    bool getTimeZoneDescription(const char* zone, const I18NLocale& locale,
                                I18NString& description);
    /// @param count  receives the number of time zones in the resources
    /// @return their identifiers, sorted; the array is valid until the layer stops
    const char* const* getTimeZoneIDs(int& count);
    /// @param offset  of standard time from UTC, in hours
    /// @return the time zone of the United States that stands for this offset; null for other
    ///     offsets
    static const char* getFallbackTimeZoneID(int offset);
    /// @return the time zone for the abbreviations EST, CST, MST, PST and HST; any other text
    ///     unchanged
    static const char* getCompatibilityTimeZoneID(const char* id);
    const I18NResourceMap& getTimePeriodResources(const I18NLocale& locale);
    const I18NResourceMap& getTimeZoneResources(const I18NLocale& locale);

    /// Finds the resource file for a locale: base + name + ".xml". It tries these names in order:
    /// language, country and variant; language and country; only the language; "en". It looks for
    /// each name in the bin directory, then in the working directory, then in the installation's
    /// share/qblcore. It tries a variant in upper case and then in lower case. Files that the
    /// process may not read are skipped.
    /// @param path, name  receive the path of the file and the name that was found
    /// @param locale  null means the default locale
    static bool findResourceFile(std::string& path, I18NString& name, const char* base,
                                 const icu::Locale* locale);
    /// Reads a line of a text file, without its line end ("\n" or "\r\n") and without a byte-order
    /// mark. A line longer than 1 MiB is returned empty.
    /// @return nothing at the end of the file or for a null file
    static std::optional<std::string> readLine(std::FILE* file);
    /// Reads a line as readLine() does, and decodes it as UTF-8.
    /// @return false at the end of the file; the line is empty then
    static bool readLineEx(I18NString& line, std::ifstream& file);

protected:
    I18NInternalResources();
    ~I18NInternalResources() = default;  // the object is never destroyed

private:
    struct Data;

    Data& m_data;
};

#endif
