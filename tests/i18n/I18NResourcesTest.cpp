#include <gtest/gtest.h>
#include <unicode/locid.h>
#include <unicode/translit.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <fstream>
#include <functional>

#include "i18n/cpp/i18n_converter.hpp"
#include "i18n/cpp/i18n_errors.hpp"
#include "i18n/cpp/i18n_internal_resources.hpp"
#include "i18n/cpp/i18n_string.hpp"
#include "tests/faults/Injector.hpp"
#include "tests/support/Child.hpp"
#include "tests/support/TempTree.hpp"
#include "tests/support/ThrowChecks.hpp"
#include "tests/support/Workers.hpp"

namespace {

I18NInternalResources& resources() { return I18NInternalResources::getInternalResources(); }

/// Runs each test in its own directory, with a resource file there.
class I18NResourcesTest : public testing::Test {
protected:
    I18NResourcesTest() {
        // The name can be changed only once per process. Later tests find it changed already.
        I18NInternalResources::__changeResourceFileName("./res.xml");
    }
    ~I18NResourcesTest() override { resources().release(); }

    void load(const std::string& text) {
        m_tree.file("res.xml", text);
        resources().loadSequenceTable();
    }
    static std::string inputOf(const char* encoding, const std::string& sequence) {
        std::string bytes = sequence;
        wchar_t character = 0;
        I18NErrorCodes error = I18N_UNEXPECTED;
        const bool found = resources().getReplacementSequence(
            encoding, reinterpret_cast<unsigned char*>(bytes.data()),
            static_cast<int>(bytes.size()), &character, &error);
        return (found ? "" : "none ") + std::to_string(character) + " " + std::to_string(error);
    }
    static std::string outputOf(const char* encoding, wchar_t character) {
        unsigned char* bytes = nullptr;
        int length = -1;
        I18NErrorCodes error = I18N_UNEXPECTED;
        const bool found =
            resources().getReplacementSequence(encoding, character, &bytes, &length, &error);
        EXPECT_EQ(found, bytes != nullptr);
        if (!found) return "none " + std::to_string(length) + " " + std::to_string(error);
        return std::string(reinterpret_cast<char*>(bytes), static_cast<std::size_t>(length));
    }

    WorkingTree m_tree;
};

std::u16string transliterated(const icu::Transliterator* transliterator,
                              const std::u16string& text) {
    icu::UnicodeString copy(text.data(), static_cast<int>(text.size()));
    transliterator->transliterate(copy);
    return std::u16string(copy.getBuffer(), static_cast<std::size_t>(copy.length()));
}

}  // namespace

TEST_F(I18NResourcesTest, TakesTheBinDirectoryFromTheFirstSetSource) {
    const std::string lib = m_tree.dir("lib"), none = m_tree.dir("none"), work = m_tree.dir("work");
    m_tree.dir("configuration");
    m_tree.file("lib/libQBLCore.so");
    const std::string path = "::" + none + "::" + lib + ":", endless(2 << 20, '/');
    const struct {
        const char *exec, *root, *path;
        bool configuration;
        const char* link;
        std::string expected;
    } rows[] = {
        {"/exec", "/root", path.c_str(), true, "/link", "/exec"},
        {"", "/root", path.c_str(), true, "/link", "/root/./bin"},
        {nullptr, "", path.c_str(), true, "/link", lib},
        {nullptr, nullptr, none.c_str(), true, "/link", "../bin"},
        {nullptr, nullptr, nullptr, false, "/link \r\n/other\n", "/link/./bin"},
        {nullptr, nullptr, nullptr, false, "\n/other\n", ""},
        {nullptr, nullptr, nullptr, false, endless.c_str(), endless.substr(0, 4096) + "./bin"},
        {nullptr, nullptr, nullptr, false, nullptr, ""},
    };
    const auto set = [](const char* name, const char* value) {
        value != nullptr ? setenv(name, value, 1) : unsetenv(name);
    };
    for (const auto& row : rows) {
        EXPECT_EQ(
            0, inChild([&] {
                std::filesystem::current_path(work);
                set("TAV_EXEC_PATH", row.exec);
                set("TAV_ROOT", row.root);
                set("LD_LIBRARY_PATH", row.path);
                if (row.configuration) m_tree.file("configuration/tavstartup.xml");
                if (row.link != nullptr) m_tree.file("work/tavroot.link", row.link);
                I18NInternalResources::setDataDirectoryPath();
                const std::string found = I18NInternalResources::getDataDirectoryPath();
                set("TAV_EXEC_PATH", "/later");
                I18NInternalResources::setDataDirectoryPath();
                const std::string later = I18NInternalResources::getDataDirectoryPath();
                return found == row.expected && later == (found.empty() ? "/later" : found) ? 0 : 1;
            }))
            << row.expected;
        std::filesystem::remove(m_tree("configuration/tavstartup.xml"));
        std::filesystem::remove(m_tree("work/tavroot.link"));
    }
}

TEST_F(I18NResourcesTest, ReadsTheResourceFileFromTheBinDirectory) {
    m_tree.dir("bin");
    m_tree.file("bin/res.xml", "<allowNegativeZero value=\"true\"/>\n");
    EXPECT_EQ(0, inChild([&] {
                  setenv("TAV_EXEC_PATH", m_tree("bin").c_str(), 1);
                  I18NInternalResources::setDataDirectoryPath();
                  resources().loadSequenceTable();
                  return resources().isAllowNegativeZero() ? 0 : 1;
              }));
    resources().loadSequenceTable();
    EXPECT_FALSE(resources().isAllowNegativeZero()) << "the working directory has no such file";
}

TEST_F(I18NResourcesTest, IgnoresInvalidSettings) {
    const std::string tooLong = "<allowNegativeZero value=\"true\"" + std::string(1 << 20, ' ');
    const struct {
        std::string text;
        float bytes;
        bool scaled, negative;
    } rows[] = {
        {"<UTF8BytesPerCodePoint value=\"3.25\"/>", 3.25F, false, false},
        {"<UTF8BytesPerCodePoint value=\"7\"/>", 4.0F, false, false},
        {"<UTF8BytesPerCodePoint value=\"0\"/>", 2.5F, false, false},
        {"<UTF8BytesPerCodePoint value=\"much\"/>", 2.5F, false, false},
        {"<UTF8BytesPerCodePoint value=\"nan\"/>", 2.5F, false, false},
        {"<UTF8BytesPerCodePoint value=\"3", 2.5F, false, false},
        {"<allowNegativeZero value=\"yes\"/>", 2.5F, false, false},
        {"<replaceScaledZeroNumbers allowReplace=\"True\"/>", 2.5F, true, false},
        {"<replaceScaledZeroNumbers>\n<allowReplace value=\"true\"/>", 2.5F, true, false},
        {"\xEF\xBB\xBF<allowNegativeZero value=\"true\"/>\r\n", 2.5F, false, true},
        {"  < allowNegativeZero\tvalue = \"true\" />", 2.5F, false, true},
        {"<!-- <allowNegativeZero value=\"true\"/> -->", 2.5F, false, false},
        {"<!--\n<allowNegativeZero value=\"true\"/>\n-->\n<allowReplace value=\"true\"/>", 2.5F,
         true, false},
        {tooLong + "/>\n<allowReplace value=\"true\"/>", 2.5F, true, false},
        {std::string("<\n<>\n</>\n\0<a\n<\"\n<=\"\"", 20), 2.5F, false, false},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.text.substr(0, 99));
        load(row.text);
        EXPECT_EQ(row.bytes, resources().getUTF8BytesPerCodePoints());
        EXPECT_EQ(row.scaled, resources().isAllowReplaceScaledZero());
        EXPECT_EQ(row.negative, resources().isAllowNegativeZero());
    }
    std::filesystem::remove(m_tree("res.xml"));
    resources().setAllowNegativeZero(true);
    resources().loadSequenceTable();
    EXPECT_TRUE(resources().isAllowNegativeZero()) << "a missing file changes nothing";
}

TEST_F(I18NResourcesTest, FindsReplacementsInBothDirections) {
    const auto sequence = [](const std::string& value, const std::string& replacement) {
        return "<sequence value=\"" + value + "\">\n<replacement value=\"" + replacement +
               "\"/>\n</sequence>\n";
    };
    load("<input>\n<encoding name=\"Shift_JIS; US-ASCII;no-such-encoding\">\n" +
         sequence("0x81;0x60", "0xFF5E") + sequence("300", "0x41") +
         sequence("0x80",
                  "0x110000\"/>\n<replacement value=\"0xD800\"/>\n<replacement "
                  "value=\"\"/>\n<replacement") +
         "<replacement value=\"0x42\"/>\n</encoding>\n</input>\n"
         "<output>\n<encoding name=\"windows-1252\">\n" +
         sequence("0x2212", "0x2D;45") + sequence("0x1F600", "") + sequence("0x41;0x42", "0x43") +
         sequence("0x43", "1;1;1;1;1;1;1;1;1;1;1;1;1;1;1;1;1;1;1;1;1;1;1;1;1;1;1;1;1;1;1;1;1") +
         "</encoding>\n</output>\n" + sequence("0x44", "0x45"));
    EXPECT_EQ("65374 0", inputOf("ibm-943_P15A-2003", "\x81\x60"));
    EXPECT_EQ("65374 0", inputOf("ascii", "\x81\x60")) << "found by an alias of the encoding";
    EXPECT_EQ("none 65535 0", inputOf("ascii", "\x81"));
    EXPECT_EQ("none 65535 0", inputOf("ascii", "\x80"));
    EXPECT_EQ("none 65535 -3", inputOf("no-such-encoding", "\x81\x60"));
    EXPECT_EQ("none 65535 -10", inputOf(nullptr, "\x81\x60"));
    EXPECT_EQ("--", outputOf("cp1252", 0x2212));
    EXPECT_EQ("", outputOf("cp1252", 0x1F600)) << "the replacement is empty";
    for (const wchar_t none : {0x41, 0x42, 0x43, 0x44, 0xFF5E})
        EXPECT_EQ("none 0 0", outputOf("cp1252", none)) << none;
    load("<input/>");
    EXPECT_EQ("none 65535 0", inputOf("ascii", "\x81\x60")) << "a new file replaces all settings";
}

TEST_F(I18NResourcesTest, ExemptsAndSubstitutesCharacters) {
    load(
        "<nonNormalizableCharacters value=\"0xFA10; 0x2F800;;x\"/>\n"
        "<ja_substitution from=\"0x301C\" to=\"0xFF5E\"/>\n"
        "<ja_substitution from=\"0x20BB7\" to=\"0x5409\"/>\n"
        "<ja_substitution from=\"0x41\"/>\n");
    EXPECT_TRUE(resources().isNonNormalizable(u"ab\uFA10"));
    EXPECT_TRUE(resources().isNonNormalizable(u"\U0002F800"));
    EXPECT_FALSE(resources().isNonNormalizable(u"ab\uFA11\xD87E"));
    EXPECT_TRUE(resources().isNonNormalizable(L"\U0002F800"));
    EXPECT_FALSE(resources().isNonNormalizable(L"ab"));
    std::u16string text = u"A\u301C\U00020BB7B\u301C\xD842";
    EXPECT_TRUE(resources().substituteJa(text));
    EXPECT_EQ(u"A\uFF5E\u5409B\uFF5E\xD842", text);
    EXPECT_FALSE(resources().substituteJa(text));
    load(
        "<nonNormalizableCharacters value=\"0xFA10\"/>\n"
        "<ja_substitution from=\"0x3042\" to=\"0x3044\"/>\n");
    const I18NConverter converter("Shift_JIS");
    I18NString japanese("\x82\xA0", converter);
    japanese += L"e\u0301";
    EXPECT_EQ(u"\u3044\u00E9", japanese.toUtf16()) << "substituted in the whole text";
    japanese = I18NString("\x82\xA0", converter);
    japanese += L"\uFA10";
    EXPECT_EQ(u"\u3044\uFA10", japanese.toUtf16()) << "substituted although it is not normalised";
    EXPECT_EQ(u"\u00C5\u3044", I18NString("\x81\xF0\x82\xA0", converter).toUtf16());
}

TEST_F(I18NResourcesTest, EntitiesAndURLsMatchTheTransliterators) {
    const std::u16string entities =
        u"&amp;lt; &&lt;&gt;&amp;&apos;&quot; &LT; &#60; &lt &amp;amp; &quo &";
    std::u16string text = entities;
    I18NInternalResources::transliterate(text);
    EXPECT_EQ(u"&lt; &<>&'\" &LT; &#60; &lt &amp; &quo &", text);
    I18NString string("e\xCC\x81&gt;"), plain;
    plain.useNormalization(false);
    plain = L"e\u0301&gt;";
    for (I18NString* each : {&string, &plain}) I18NInternalResources::transliterate(*each);
    EXPECT_EQ(u"\u00E9>", string.toUtf16());
    EXPECT_EQ(u"e\u0301>", plain.toUtf16()) << "not normalised, because that is switched off";
    EXPECT_EQ(u"\u00E9%3E", I18NInternalResources::urlEncode(string).toUtf16());
    EXPECT_EQ(text, transliterated(resources().getTransliterator(), entities));

    std::u16string ascii, encoded;
    for (char16_t c = 0; c < 128; ++c) ascii += c;
    ascii += u"\u00E9\U0001F600";
    I18NInternalResources::urlEncode(ascii, encoded);
    EXPECT_EQ(ascii.substr(0, 32) +
                  u"%20!%34%23$%25&%5C()*+,-./0123456789:;%3C=%3E?@ABCDEFGHIJKLMNOPQRSTUVWXYZ"
                  u"%5B\\%5D%5E_%60abcdefghijklmnopqrstuvwxyz%7B%7C%7D%7E\x7F\u00E9\U0001F600",
              encoded);
    EXPECT_EQ(encoded, transliterated(resources().getURLEncodeTranslit(), ascii));
    EXPECT_EQ(resources().getURLEncodeTranslit(), resources().getURLEncodeTranslit());
}

TEST_F(I18NResourcesTest, ReadsTheMostSpecificFileOfALocale) {
    const auto words = [this](const char* name, const char* word) {
        m_tree.file(std::string("qbli18nreswd_") + name + ".xml",
                    std::string("<noDescription value=\"") + word + "\"/>");
    };
    const auto word = [](const char* locale) {
        return resources().getNoDescriptionWord(I18NLocale(locale));
    };
    EXPECT_EQ(u"No description", word("de_AT"));
    resources().release();
    words("en", "&lt;none&gt;");
    words("fr", "aucune");
    words("fr_FR", "n\u00E9ant");
    words("fr_FR_EURO", "bad \xC3 byte");
    EXPECT_EQ(u"<none>", word("de_AT"));
    EXPECT_EQ(u"aucune", word("fr_CA"));
    EXPECT_EQ(u"n\u00E9ant", word("fr_FR_OTHER"));
    EXPECT_EQ(u"bad \uFFFD byte", word("fr_FR_EURO"));
    EXPECT_EQ(u"<none>", word("../../fr"));
    words("fr", "later");
    EXPECT_EQ(u"aucune", word("fr_BE")) << "the file is read only once";

    words("it", "niente");
    fault::strike(fault::Disaster::kDescriptors, 0);
    EXPECT_EQ(u"No description", word("it_IT"));
    EXPECT_TRUE(fault::reset());
    EXPECT_EQ(u"niente", word("it_IT")) << "a failed search is repeated later";
    EXPECT_EQ(0, inChild([&] {
                  words("it_CH", "not for us");
                  std::filesystem::permissions(m_tree.root(), std::filesystem::perms(0755));
                  std::filesystem::permissions("qbli18nreswd_it_CH.xml",
                                               std::filesystem::perms(0400));
                  return setegid(65534) + seteuid(65534) + (word("it_CH") != u"niente" ? 1 : 0);
              }));

    const icu::Locale french("fr", "CH");
    std::string path;
    I18NString name, line;
    const char* const base = "./qbli18nreswd_";
    EXPECT_FALSE(I18NInternalResources::findResourceFile(path, name, "./none_", &french));
    ASSERT_TRUE(I18NInternalResources::findResourceFile(path, name, base, &french));
    EXPECT_EQ("fr", name);
    EXPECT_EQ("./qbli18nreswd_fr.xml", path);
    std::ofstream(path, std::ios::app | std::ios::binary) << "\xC3\xA9\r\n\nlast";
    std::ifstream file(path);
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> same(std::fopen(path.c_str(), "r"),
                                                               std::fclose);
    for (const char* expected : {"<noDescription value=\"later\"/>\u00E9", "", "last"}) {
        EXPECT_TRUE(I18NInternalResources::readLineEx(line, file));
        EXPECT_EQ(expected, line);
        EXPECT_EQ(expected, I18NInternalResources::readLine(same.get()));
    }
    EXPECT_FALSE(I18NInternalResources::readLineEx(line, file));
    EXPECT_FALSE(I18NInternalResources::readLine(same.get()));
}

TEST_F(I18NResourcesTest, ThrowsIfAMapCannotBeFilled) {
    const I18NLocale en("en");
    std::string out;
    std::u16string symbol;
    const std::pair<const char*, std::function<void()>> maps[] = {
        {"currency code to currency symbol",
         [&] { resources().getSymbolForISOCode("EUR", en, symbol); }},
        {"currency code to number of decimal places",
         [&] { resources().getNumbDecimPlacesForCurrency("EUR"); }},
        {"country to currency", [&] { resources().getISOCurrencyCodeForCountry("DE", out); }},
        {"language to locale", [&] { resources().getDefaultLocaleForLanguage("de", out); }}};
    for (const auto& [map, call] : maps) {
        const std::string text =
            std::string("An error occured while populating the ") + map + " map";
        QBL_EXPECT_THROW(call(), I18NRuntimeError, text.c_str(), I18N_UNEXPECTED);
    }
    EXPECT_EQ(u"No description", resources().getCurrencyDescription("EUR", en));
    m_tree.file("qbli18nrescr_en.xml",
                "<entry name=\"EUR\">\n<value symbol=\"E\" decimals=\"x\"/>\n</entry>\n"
                "<value symbol=\"stray\"/>\n<entry name=\"USD\">\n<value decimals=\"2\"/>\n");
    resources().release();
    EXPECT_TRUE(resources().getSymbolForISOCode("EUR", en, symbol));
    EXPECT_EQ(-1, resources().getNumbDecimPlacesForCurrency("EUR"));
    EXPECT_EQ(2, resources().getNumbDecimPlacesForCurrency("USD"));
    EXPECT_FALSE(resources().isISOCurrencyCodeValid("USD")) << "USD has no symbol";
}

TEST_F(I18NResourcesTest, LocalesHaveSettingsAndEncodings) {
    const char first[] =
        "<locale name=\"de_DE\">\n<inUse value=\"true\"/>\n<lcid value=\"0x1234\"/>\n"
        "<defaultVariant value=\"EURO\"/>\n<csvEncoding value=\"UTF-8\"/>\n</locale>\n"
        "<locale name=\"de_AT\">\n<csvEncoding value=\"UTF-16\"/>\n</locale>\n"
        "<lcid value=\"0x4321\"/>\n<locale>\n<inUse value=\"true\"/>\n"
        "<locale name=\"ja_JP\">\n<inUse value=\"true\"/>\n<csvEncoding value=\"bogus\"/>\n";
    load(first);
    const std::pair<const char*, const char*> encodings[] = {
        {"de_DE", "UTF-8"},    {"de_AT", "windows-1252"}, {"ja_JP", "windows-31j"},
        {"zh_SG", "GBK"},      {"zh_TW", "Big5"},         {"ko", "windows-949"},
        {"th", "windows-874"}, {"ru_RU", "windows-1251"}, {"lv", "windows-1257"}};
    for (const auto& [locale, encoding] : encodings)
        EXPECT_EQ(encoding, resources().getEncodingForLocale(I18NLocale(locale))) << locale;
    EXPECT_TRUE(resources().isLocaleModified(I18NLocale("de-DE.UTF-8")));
    EXPECT_FALSE(resources().isLocaleModified(I18NLocale("de_AT")));
    load(
        "<locale name=\"en_IE_preeuro\">\n<inUse value=\"true\"/>\n<lcid value=\"0x1809\"/>\n"
        "<locale name=\"fr_FR_euro\">\n<inUse value=\"true\"/>\n<locale name=\"de-DE\">\n"
        "<inUse value=\"true\"/>\n<locale name=\"ja_JP.UTF-8\">\n<inUse value=\"true\"/>\n");
    for (const char* name : {"en_IE_preeuro", "en_IE_PREEURO", "fr_FR_EURO", "de_DE", "de_DE@x=y",
                             "de_Latn_DE", "ja_JP", "ja-JP.EUC@calendar=japanese"})
        EXPECT_TRUE(resources().isLocaleModified(I18NLocale(name))) << name;
    std::string id = "before";
    EXPECT_TRUE(resources().getLocaleIdFroLCID(0x1809, id) && id == "en_IE_preeuro");
    EXPECT_STREQ("ja_JP@x=y.z", I18NLocale("ja_JP@x=y.z").getName());
    EXPECT_FALSE(I18NLocale("../de").isValid() || I18NLocale("x/y").isValid() ||
                 I18NLocale("x/y", "AT").isValid());
    load(first);
    EXPECT_FALSE(resources().getLocaleIdFroLCID(0xFFFF, id));
    EXPECT_TRUE(resources().getLocaleIdFroLCID(0x1234, id) && id == "de_DE");
    EXPECT_TRUE(resources().getLocaleIdFroLCID(0x0411, id) && id == "ja_JP");
    m_tree.file("qbli18nreslc_en.xml",
                "<langLocMappingTable>\n<entry name=\"de\">\n<value name=\"de_DE\"/>\n</entry>\n");
    EXPECT_TRUE(resources().getDefaultLocaleForLanguage("de", id) && id == "de_DE_EURO");
    EXPECT_TRUE(resources().getDefaultLocaleForLanguage("DE", id) && id == "de_DE_EURO");
    EXPECT_FALSE(resources().getDefaultLocaleForLanguage("xx", id));
    EXPECT_EQ("en-us", id);
    I18NLocale* locales = nullptr;
    int count = 0;
    resources().getLocales(&locales, &count);
    ASSERT_EQ(96, count);
    EXPECT_STREQ("en_IE_PREEURO", locales[37].getName());
    EXPECT_EQ(I18NLocale("es", "PY"), locales[95]);
    wchar_t separator = 0;
    const I18NLocale de(I18NString("de-DE.UTF-8"));
    EXPECT_STREQ("de_DE", de.getName());
    EXPECT_TRUE(resources().getListSeparator(de, separator) && separator == L';');
    EXPECT_TRUE(resources().getListSeparator(&icu::Locale::getEnglish(), separator));
    EXPECT_EQ(L',', separator);
}

TEST_F(I18NResourcesTest, ReadsTheShippedFiles) {
    std::filesystem::copy_file(QBL_RES_DIR "/i18n_res.xml", m_tree("res.xml"));
    resources().loadSequenceTable();
    EXPECT_EQ("\x81\x60", outputOf("Shift_JIS", 0x301C));
    EXPECT_EQ("EUR", outputOf("latin1", 0x20AC));
    EXPECT_EQ("8217 0", inputOf("ascii", "\x92"));
    EXPECT_EQ(U'\uFF5E', resources().getJaSubstitution(0x301C));
    EXPECT_TRUE(resources().isNonNormalizable(u"\uF929"));
    std::string out;
    EXPECT_TRUE(resources().getLocaleIdFroLCID(0x0414, out) && out == "no_NO");

    std::filesystem::current_path(QBL_RES_DIR);
    const std::pair<const char*, std::string> rows[] = {
        {"en_GB", "Japanese Yen ¥ years Central European Time German (Germany) No description"},
        {"de", "Japanischer Yen ¥ Jahre Mitteleuropäische Zeit Deutsch (Deutschland) Keine"},
        {"fr_CA", "yen japonais JPY ans heure d’Europe centrale allemand (Allemagne) Aucune"},
        {"ja_JP", "日本円 ￥ 年 中央ヨーロッパ時間 ドイツ語 (ドイツ) "},
        {"es", "yen JPY años hora de Europa central alemán (Alemania) Sin"},
    };
    for (const auto& [name, expected] : rows) {
        const I18NLocale locale(name);
        std::string found;
        I18NString text, word;
        const auto add = [&](bool isFound) {
            EXPECT_TRUE(isFound) << "after " << found;
            found += text.toUtf8() + " ";
        };
        resources().getCurrencyDescription("JPY", locale, text);
        add(true);
        add(resources().getSymbolForISOCode("JPY", locale, text));
        text = resources().getTimePeriodResources(locale).find("years")->second;
        add(true);
        add(resources().getTimeZoneDescription("Europe/Berlin", locale, text));
        text = "before";
        EXPECT_FALSE(resources().getTimeZoneDescription("none", locale, text));
        EXPECT_EQ("before", text);
        add(resources().getLocaleDescription(I18NLocale("de_DE"), locale, text));
        resources().getCurrencyDescription("???", locale, text);
        resources().getNoDescriptionWord(locale, word);
        EXPECT_TRUE(text == word && !word.empty()) << name;
        EXPECT_EQ(expected, (found + word.toUtf8()).substr(0, expected.size()));
        resources().getEncodingForLocale(locale, text);
        EXPECT_EQ(resources().getEncodingForLocale(locale), text.toUtf8());
    }
    std::u16string text;
    I18NLocale* locales = nullptr;
    int count = 0;
    resources().getLocales(&locales, &count);
    for (int i = 0; i < count; ++i)
        EXPECT_TRUE(resources().getLocaleDescription(locales[i], I18NLocale("ja"), text)) << i;
    EXPECT_EQ(0, resources().getNumbDecimPlacesForCurrency("JPY"));
    EXPECT_EQ(-1, resources().getNumbDecimPlacesForCurrency("jpy"));
    EXPECT_TRUE(resources().isISOCurrencyCodeValid("XAU"));
    EXPECT_FALSE(resources().isISOCurrencyCodeValid("???"));
    EXPECT_TRUE(resources().getISOCurrencyCodeForCountry("CH", out) && out == "CHF");
    EXPECT_TRUE(resources().getCurrencyMapping("DEM", out) && out == "EUR");
    EXPECT_FALSE(resources().getCurrencyMapping("EUR", out));
    EXPECT_TRUE(resources().getCurrencyCodeForLCID(0x0407, out) && out == "EUR");
    unsigned short lcid = 0;
    EXPECT_TRUE(resources().getLCIDForCurrencyCode("JPY", lcid) && lcid == 0x0411);
    EXPECT_FALSE(resources().getLCIDForCurrencyCode("???", lcid));
    EXPECT_TRUE(resources().getDefaultLocaleForLanguage("ja", out) && out == "ja_JP");
    const char* const* zones = resources().getTimeZoneIDs(count);
    EXPECT_TRUE(std::is_sorted(zones, zones + count,
                               [](const char* a, const char* b) { return std::strcmp(a, b) < 0; }));
    for (int i = 0; i < count; ++i)
        EXPECT_TRUE(resources().getTimeZoneDescription(zones[i], I18NLocale("ja"), text));
    for (const int offset : {-5, -6, -7, -8, -10}) {
        const char* zone = I18NInternalResources::getFallbackTimeZoneID(offset);
        EXPECT_TRUE(resources().getTimeZoneDescription(zone, I18NLocale("en"), text)) << zone;
    }
    EXPECT_STREQ("US/Eastern", I18NInternalResources::getCompatibilityTimeZoneID("EST"));
    EXPECT_STREQ("Asia/Tokyo", I18NInternalResources::getCompatibilityTimeZoneID("Asia/Tokyo"));
    EXPECT_EQ(nullptr, I18NInternalResources::getFallbackTimeZoneID(1));
}

TEST_F(I18NResourcesTest, ServesConcurrentFirstCalls) {
    std::filesystem::current_path(QBL_RES_DIR);
    Gate gate;
    std::atomic<int> right{0};
    Workers workers(8, [&] {
        EXPECT_TRUE(gate.wait());
        const I18NLocale locale("de_AT");
        I18NLocale* locales = nullptr;
        int count = 0;
        resources().getLocales(&locales, &count);
        std::u16string text;
        if (resources().getURLEncodeTranslit() != nullptr && locales[95].isValid() &&
            resources().getSymbolForISOCode("EUR", locale, text) &&
            resources().getTimeZoneDescription(resources().getTimeZoneIDs(count)[7], locale, text))
            ++right;
    });
    gate.open();
    workers.join();
    EXPECT_EQ(8, right);
}
