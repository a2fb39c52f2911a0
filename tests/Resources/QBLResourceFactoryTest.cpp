#include "QBLCore/Resources/QBLResourceFactory.hpp"

#include <unistd.h>

#include "QBLCore/FileManagement/QBLFmDir.hpp"
#include "QBLCore/Messages/QBLMessage.hpp"
#include "QBLCore/Resources/QBLCatalogueSettings.hpp"
#include "QBLCore/Resources/QBLResource.hpp"
#include "QBLCore/Resources/QBLResourceFile.hpp"
#include "tests/support/BmfFile.hpp"
#include "tests/support/TempTree.hpp"
#include "tests/support/ThrowChecks.hpp"

namespace {

/// Returns the text of identifier 1 for these locales.
std::string seen(const std::string& base, const char* locales) {
    QBLResourceFile file(base, locales, 1);
    char* text = nullptr;
    return file.isOpen() && file.getResource(1, &text) ? text : "none";
}

}  // namespace

TEST(QBLResourceFactoryTest, FindsTheMostSpecificFileOfTheFirstLocale) {
    TempTree tree;
    const std::string base = tree("base");
    const auto add = [&](const char* suffix) {
        tree.file(std::string("base") + suffix + ".bmf", bmfBytes({{1, suffix}}));
    };
    EXPECT_EQ("none", seen(base, "de_AT fr"));
    // A failed search is not remembered: a file is found as soon as it exists.
    EXPECT_EQ("none", seen(base, "es"));
    add("");
    EXPECT_EQ("", seen(base, "es"));
    add("_en");
    EXPECT_EQ("_en", seen(base, "de_AT fr"));
    EXPECT_EQ("_en", seen(base, nullptr));
    add("_fr");
    EXPECT_EQ("_en", seen(base, "de_AT fr")) << "a successful search is remembered";
    EXPECT_EQ("_fr", seen(base, "de_AT,fr"));
    add("_de");
    EXPECT_EQ("_de", seen(base, "de-AT;fr"));
    add("_de_AT");
    EXPECT_EQ("_de_AT", seen(base, "de_AT.UTF-8\tfr"));
    EXPECT_EQ("", seen(base, "es"));
    ASSERT_TRUE(QBLFmDir::removeFile(tree("base.bmf").c_str()));
    EXPECT_EQ("_en", seen(base, "es")) << "the remembered file no longer exists";
    for (const std::string& name :
         QBLResourceFactory::getCandidates(base, "/etc,x/y;../../de de_../x de@a=/b fr_F/R"))
        EXPECT_EQ(std::string::npos, name.find('/', base.size())) << name;
    EXPECT_EQ(3U, QBLResourceFactory::getCandidates(base, "/etc x/y de").size());
}

TEST(QBLResourceFactoryTest, SearchesTheWorkingDirectoryFirstForPlainNames) {
    TempTree tree;
    tree.file("mine_ja.bmf", bmfBytes({{1, "here"}}));
    QBLFmDir::setEffectiveWorkingDir(tree.root());
    EXPECT_EQ("here", seen("mine", "ja"));
    EXPECT_EQ(tree("mine_ja.bmf"), QBLResourceFactory::find("mine", "ja"));
    EXPECT_EQ(tree("mine_ja.bmf"), QBLResourceFactory::getCandidates("mine", "ja").front());
    QBLFmDir::setEffectiveWorkingDir("");
    EXPECT_EQ("", QBLResourceFactory::find("mine", "ja"));
}

TEST(QBLCatalogueSettingsTest, AddsPlacesForCataloguesOfPrograms) {
    TempTree here, first, second;
    QBLFmDir::setEffectiveWorkingDir(here.root());
    const std::filesystem::path self = std::filesystem::read_symlink("/proc/self/exe");
    const std::string name = "placed" + std::to_string(getpid());
    const std::string beside = self.parent_path() / (name + ".bmf");
    std::ofstream(beside) << bmfBytes({{1, "beside"}});
    EXPECT_EQ("beside", seen(name, "ja"));
    const auto places = QBLCatalogueSettings::getDirectories();
    const std::string share = self.parent_path().parent_path() / "share" / self.filename();
    EXPECT_EQ(share, *std::prev(places.end(), 2));
    for (const TempTree* tree : {&second, &first, &second})
        QBLCatalogueSettings::addDirectory(tree->root());
    EXPECT_EQ(places.size() + 2, QBLCatalogueSettings::getDirectories().size());
    EXPECT_EQ("beside", seen(name, "ja")) << "a file that was found stays in use";
    for (const TempTree* tree : {&here, &first, &second}) {
        tree->file(name + ".bmf", bmfBytes({{1, tree->root()}}));
        EXPECT_EQ(tree->root(), seen(name, std::string("fr ").append(tree->root()).c_str()));
    }
    std::filesystem::remove(beside);
    QBLFmDir::setEffectiveWorkingDir("");
}

TEST(QBLCatalogueSettingsTest, SetsTheLanguageOfMessagesWithoutALanguage) {
    TempTree tree;
    for (const char* language : {"en", "de", "fr"})
        tree.file(std::string("base_") + language + ".bmf", bmfBytes({{1, language}}));
    const auto shown = [&] {
        I18NString out;
        QBLMessage(tree("base").c_str(), 1).format(nullptr, "", out);
        return out.toUtf8() + seen(tree("base"), nullptr);
    };
    EXPECT_EQ("enen", shown());
    QBLCatalogueSettings::setDefaultLocales("ja,fr");
    EXPECT_EQ("frfr", shown());
    const struct {
        const char *all, *messages, *lang, *shown;
    } table[] = {{"", "de_DE.UTF-8", "fr", "dede"},
                 {"fr_FR", "de", "de", "frfr"},
                 {"", "", "de", "dede"},
                 {"C.UTF-8", "de", "de", "enen"},
                 {"", "", "", "enen"}};
    for (const auto& row : table) {
        setenv("LC_ALL", row.all, 1);
        setenv("LC_MESSAGES", row.messages, 1);
        setenv("LANG", row.lang, 1);
        QBLCatalogueSettings::useLocalesOfUser();
        EXPECT_EQ(row.shown, shown());
    }
}

TEST(QBLResourceFactoryTest, MisuseThrowsAssertErrors) {
    QBL_EXPECT_THROW(QBLResourceFactory::find("base", nullptr), QBLAssertError,
                     "QBL_ASSERT(localeID != NULL);");
    char* text = nullptr;
    QBL_EXPECT_THROW(QBLResourceFile(1).getResource(1, &text), QBLAssertError,
                     "QBL_ASSERT(m_resource != NULL);");
}
