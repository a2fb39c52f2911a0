#include "QBLCore/Resources/QBLResourceFactory.hpp"

#include <gtest/gtest.h>

#include "QBLCore/FileManagement/QBLFmDir.hpp"
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
    const std::list<std::string> all = QBLResourceFactory::getCandidates("mine", "ja");
    EXPECT_EQ(tree("mine_ja.bmf"), all.front());
    EXPECT_NE(std::string::npos, all.back().find("share/qblcore/mine.bmf"));
    QBLFmDir::setEffectiveWorkingDir("");
    EXPECT_EQ("", QBLResourceFactory::find("mine", "ja"));
}

TEST(QBLResourceFactoryTest, MisuseThrowsAssertErrors) {
    QBL_EXPECT_THROW(QBLResourceFactory::find("base", nullptr), QBLAssertError,
                     "QBL_ASSERT(localeID != NULL);");
    char* text = nullptr;
    QBL_EXPECT_THROW(QBLResourceFile(1).getResource(1, &text), QBLAssertError,
                     "QBL_ASSERT(m_resource != NULL);");
}
