#include "tests/support/BmfFile.hpp"
#include "tests/tools/RunTool.hpp"
#include "tools/common/LocaleText.hpp"
#include "tools/common/Reason.hpp"

TEST(MessageTextTest, TextsAreEnglishWithoutCatalogues) {
    TempTree tree;
    tree.file("bad", "a\xFF'{0}'\n");
    const std::string other = bmfBytes({{1, "old"}, {2, "old"}, {7, "old"}, {20, "old"}});
    for (const char* const program : {QBL_CONV, QBL_MSGC}) {
        const std::string name = std::filesystem::path(program).filename(), path = program;
        std::filesystem::copy_file(path, tree(name));
        for (const char* const arguments : {" -h", " -V", " -Z", " --hepl", " -L", " -X bad",
                                            " -n \"'{0}\" bad", " bad", " -n bad"}) {
            const Outcome expected = runTool(tree, "'" + path + "'" + arguments);
            for (const std::string& catalogue : {std::string(), std::string("no file"), other}) {
                if (!catalogue.empty()) tree.file(name + "msgs_de.bmf", catalogue);
                const Outcome found = runTool(tree, "./" + name + arguments, "LC_ALL=de_DE");
                EXPECT_EQ(expected.output, found.output) << name << arguments;
                EXPECT_EQ(expected.status, found.status);
            }
        }
    }
}

TEST(LocaleTextTest, UsesTheEncodingOfTheLocale) {
    const struct {
        const char *all, *ctype, *lang, *encoding, *name;
    } table[] = {
        {"", "", "", "UTF-8", "US-ASCII"},
        {"C", "de_DE.ISO-8859-1", "", "UTF-8", "US-ASCII"},
        {"", "POSIX", "ja_JP.EUC-JP", "UTF-8", "US-ASCII"},
        {"", "", "ja_JP.eucJP", "eucJP", "eucJP"},
        {"de_DE.ISO-8859-15@euro", "", "C", "ISO-8859-15", "ISO-8859-15"},
        {"en_US.ascii", "", "", "US-ASCII", "US-ASCII"},
        // Unknown locales, unknown encodings and encodings that no terminal uses.
        {"xx_XX", "ja_JP.EUC-JP", "", "UTF-8", "UTF-8"},
        {"xx_XX.nonsense", "", "", "UTF-8", "nonsense"},
        {"xx_XX.UTF-16", "", "", "UTF-8", "UTF-16"},
        {"xx_XX.ibm-37", "", "", "UTF-8", "ibm-37"},
    };
    const char* const names[] = {"LC_ALL", "LC_CTYPE", "LANG"};
    for (const auto& row : table) {
        const char* const values[] = {row.all, row.ctype, row.lang};
        for (int i = 0; i < 3; ++i) setenv(names[i], values[i], 1);
        EXPECT_EQ(row.encoding, tools::localeEncoding()) << row.all << row.lang;
        EXPECT_EQ(row.name, tools::localeEncodingName()) << row.all << row.lang;
    }
    for (const char* const name : names) unsetenv(name);
}

TEST(LocaleTextTest, MessagesUseTheLocaleEncodingAndDataUsesUtf8) {
    const std::string name = "éあ";
    const std::map<std::string, std::string> shownIn = {{"ja_JP.UTF-8", name},
                                                        {"fr_FR.ISO-8859-1", "\xE9\\xE3\\x81\\x82"},
                                                        {"ja_JP.EUC-JP", "\x8F\xAB\xB1\xA4\xA2"}};
    TempTree tree;
    tree.file(name, "# \xFF");
    tree.file("t_en.msg", "1 \"" + name + "\"\n");
    tree.file("report", "<Message Name=\"a\" ><MessageText>" + name + "</MessageText></Message>");
    const struct {
        std::string command, shown;  // with $ for the name
    } table[] = {
        {"$Q -L en -n " + name, "$:1:3: byte 2: FF is not UTF-8\n"},
        {"$Q -L en -f " + name + " report",
         "qblconv: unknown encoding: $; qblconv -l lists all encodings\n"},
        {"$M -L en -c " + name, "$:1:3: error: not UTF-8; save the file as UTF-8\n"},
        {"$M t_en.msg && $M -g 1 t_en.bmf", "$\n"},
        {"$M -s report en", ": $\n"},
    };
    const auto with = [](std::string text, const std::string& shown) {
        const std::size_t at = text.find('$');
        return at == text.npos ? text : text.replace(at, 1, shown);
    };
    for (const auto& row : table) {
        for (const auto& [locale, shown] : shownIn)
            EXPECT_EQ(with(row.shown, shown),
                      runTool(tree, row.command, "LC_ALL=" + locale).output);
    }
    for (const char* const data :
         {"$M -d t_en.bmf", "$Q -XLfr -n *\x82", "$M -cX *\x82", "cat report | $Q"})
        EXPECT_NE(std::string::npos,
                  runTool(tree, data, "LC_ALL=fr_FR.ISO-8859-1").output.find(name));
}

TEST(ReasonsTest, UseTheLanguageOfTheMessages) {
    TempTree tree;
    const Outcome made = runTool(tree, "localedef -i fr_FR -f ISO-8859-1 ./fr_FR");
    // LANGUAGE affects only the C library. Its newlocale() leaks in version 2.36 if LOCPATH is set.
    const std::string environment = "LC_ALL=C LANGUAGE=de ASAN_OPTIONS=detect_leaks=0 LOCPATH=.";
    const auto said = [&](const std::string& locales) {
        return runTool(tree, "echo | $Q -L '" + locales + "' >/dev/full", environment).output;
    };
    EXPECT_EQ("the standard output: cannot be written: No space left on device\n", said("en fr"));
    EXPECT_EQ("die Standardausgabe: nicht schreibbar: No space left on device\n", said("de fr"));
    EXPECT_EQ("Unknown error 9999", tools::Reasons().text(9999));
    const std::string start = "la sortie standard : impossible d'écrire : ";
    const std::string found = said("fr");
    for (const char* const locales : {"xx fr", "fr_FR.UTF-8", "fr_CA,de"})
        EXPECT_EQ(found, said(locales)) << locales;
    if (found == start + "No space left on device\n")
        GTEST_SKIP() << "the C library has no French messages: " << made.output;
    EXPECT_EQ(start + "Aucun espace disponible sur le périphérique\n", found);
}
