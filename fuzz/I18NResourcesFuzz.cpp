// Reads arbitrary bytes as the resource file, as a resource file of a language, or as the settings
// of the pool. All values must be within their documented ranges, and all texts must be well-formed
// UTF-16. The settings of the pool must be those of a naive reader. The first byte selects the
// file.
#include <unicode/utf16.h>

#include <sstream>
#include <string>

#include "fuzz/support/Input.hpp"
#include "i18n/cpp/i18n_converter.hpp"
#include "i18n/cpp/i18n_errors.hpp"
#include "i18n/cpp/i18n_internal_resources.hpp"
#include "i18n/cpp/i18n_pooledstring.hpp"
#include "tests/support/TempTree.hpp"

namespace {

// The settings of the pool have no public getters. An explicit instantiation may name private
// members.
template <class Tag, class Member, Member* kMember>
struct Exposed {
    friend Member& memberOf(Tag) { return *kMember; }
};
struct Interval {};
struct Dump {};
struct Init {};
std::atomic<long>& memberOf(Interval);
std::atomic<bool>& memberOf(Dump);
std::atomic<bool>& memberOf(Init);
template struct Exposed<Interval, std::atomic<long>, &I18NPooledString::s_interval>;
template struct Exposed<Dump, std::atomic<bool>, &I18NPooledString::s_dumpToFile>;
template struct Exposed<Init, std::atomic<bool>, &I18NPooledString::s_init>;

std::time_t never(std::time_t*) { return 0; }

void checkPoolSettings(const std::string& bytes) {
    long interval = 3600;
    bool dumps = false;
    std::istringstream words(bytes);
    for (std::string key, number; words >> key >> number;) {
        number = number.substr(0, 63).c_str();
        char* end = nullptr;
        const long long value = std::strtoll(number.c_str(), &end, 10);
        if (number.empty() || *end != '\0') continue;
        if (key == "interval")
            interval = value < 0 ? 3600 : static_cast<long>(std::min(value, 0x7FFFFFFFLL));
        if (key == "dumpToFile") dumps = value != 0;
    }
    memberOf(Init()) = false;
    require(I18NPooledStringCustodian(never).doIt(1) == 0 && memberOf(Init()));
    require(memberOf(Interval()) == interval && memberOf(Dump()) == dumps);
}

I18NInternalResources& resources() { return I18NInternalResources::getInternalResources(); }

bool isCharacter(char32_t c) { return c <= 0x10FFFF && (c < 0xD800 || c > 0xDFFF); }

bool isWellFormed(const std::u16string& text) {
    for (std::size_t i = 0; i < text.size();) {
        UChar32 c = 0;
        U16_NEXT(text.data(), i, text.size(), c);
        if (U_IS_SURROGATE(c)) return false;
    }
    return true;
}

void checkReplacements(const char* encoding) {
    unsigned char* found = nullptr;
    int length = 0;
    I18NErrorCodes error = I18N_OK;
    for (wchar_t c = 0; c < 0x400; ++c)
        if (resources().getReplacementSequence(encoding, c, &found, &length, &error))
            require(length >= 0 && length <= 32 && error == I18N_OK);
    for (unsigned byte = 0; byte < 0x100; ++byte) {
        unsigned char bytes[] = {static_cast<unsigned char>(byte), 0x40};
        wchar_t character = 0;
        for (const int count : {1, 2})
            if (resources().getReplacementSequence(encoding, bytes, count, &character, &error))
                require(isCharacter(static_cast<char32_t>(character)));
    }
    I18NConverter converter(encoding);
    converter.setBuiltInUnconvertibleInputSequenceCallback(I18N_LOOKUP);
    converter.setBuiltInUnconvertibleOutputSequenceCallback(I18N_LOOKUP);
    char bytes[256];
    converter.fromUnicode(bytes, sizeof bytes, u"a\u00FF\u0152\u4E2D\uFFFF", &error);
    char16_t text[256];
    converter.toUnicode(text, sizeof text, "a\x81\x8D\xFF", 4, &error);
}

void checkResourceFile() {
    resources().loadSequenceTable();
    const float ratio = resources().getUTF8BytesPerCodePoints();
    require(ratio > 0 && ratio <= 4);
    for (const char* const encoding : {"US-ASCII", "ISO-8859-1", "windows-1252", "Shift_JIS"})
        checkReplacements(encoding);
    std::u16string text = u"e\u0301\u2016\u301C\uFA10\u00A2";
    for (const char16_t unit : text) require(isCharacter(resources().getJaSubstitution(unit)));
    resources().substituteJa(text);
    require(isWellFormed(text));
    I18NString composed(u"e\u0301\uFA10");
    require(resources().isNonNormalizable(composed.toUtf16()) || composed.isNormalized());
    for (const char* const name : {"en_US", "de_DE", "ja_JP"}) {
        const I18NLocale locale(name);
        require(!resources().getEncodingForLocale(locale).empty());
        resources().isLocaleModified(locale);
        std::string variant;
        wchar_t separator = 0;
        require(resources().getListSeparator(locale, separator));
    }
    std::string locale;
    for (const unsigned lcid : {0U, 1U, 0x409U, 0xFFFFU})
        resources().getLocaleIdFroLCID(static_cast<unsigned short>(lcid), locale);
    resources().release();
}

/// Calls an operation that may report missing resources.
template <class Operation>
void mayBeMissing(const Operation& operation) {
    try {
        operation();
    } catch (const I18NRuntimeError&) {  // documented
    }
}

void checkLanguageFile() {
    const I18NLocale locale("en");
    I18NInternalResources& all = resources();
    for (const I18NResourceMap* map :
         {&all.getLocaleResources(locale), &all.getTimePeriodResources(locale),
          &all.getTimeZoneResources(locale)})
        for (const auto& [name, text] : *map) require(isWellFormed(text));
    std::u16string text;
    std::string code;
    unsigned short lcid = 0;
    mayBeMissing([&] { all.getSymbolForISOCode("USD", locale, text); });
    mayBeMissing([&] { all.getNumbDecimPlacesForCurrency("USD"); });
    mayBeMissing([&] { all.isISOCurrencyCodeValid("USD"); });
    mayBeMissing([&] { all.getISOCurrencyCodeForCountry("US", code); });
    mayBeMissing([&] { all.getDefaultLocaleForLanguage("en", code); });
    all.getCurrencyMapping("DEM", code);
    all.getLCIDForCurrencyCode("USD", lcid);
    all.getCurrencyCodeForLCID(0x409, code);
    all.getTimeZoneDescription("EST", locale, text);
    require(isWellFormed(text) && isWellFormed(all.getCurrencyDescription("USD", locale)));
    require(isWellFormed(all.getNoDescriptionWord(locale)));
    int count = 0;
    const char* const* const zones = all.getTimeZoneIDs(count);
    for (int i = 1; i < count; ++i) require(std::string(zones[i - 1]) < zones[i]);
    all.release();
}

const TempTree& tree() {
    static const TempTree kMade;
    return kMade;
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    setenv("TAV_EXEC_PATH", tree().root(), 1);
    std::filesystem::current_path(tree().root());
    I18NInternalResources::setDataDirectoryPath();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const char* const names[] = {
        "i18n_res.xml",        "qbli18nrescr_en.xml", "qbli18nreswd_en.xml",  "qbli18nrestp_en.xml",
        "qbli18nrestz_en.xml", "qbli18nreslc_en.xml", "I18NPooledString.conf"};
    Input input(data, size);
    const unsigned kind = input.below(std::size(names));
    const std::string bytes = input.rest();
    const std::string path = tree().file(names[kind], bytes);
    if (kind == 0)
        checkResourceFile();
    else if (kind == 6)
        checkPoolSettings(bytes);
    else
        checkLanguageFile();
    std::filesystem::remove(path);
    return 0;
}
