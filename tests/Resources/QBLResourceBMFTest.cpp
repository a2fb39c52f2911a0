#include "QBLCore/Resources/QBLResourceBMF.hpp"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "tests/support/BmfFile.hpp"
#include "tests/support/TempTree.hpp"

namespace {

const std::map<unsigned, std::string> kTexts = {
    {5, "five"}, {7, ""}, {0x7FFFFFFF, "middle"}, {0x80000001, "a high one"}};

/// Returns the text of an identifier; "none" if the file lacks the identifier, "untouched" if the
/// text cannot be read.
std::string resourceText(QBLResourceBMF& resource, unsigned long id) {
    char untouched[] = "untouched";
    char* text = untouched;
    return resource.getResource(id, &text) ? text : "none";
}

bool isOpened(QBLResourceBMF& resource, const TempTree& tree, const std::string& bytes) {
    resource.setResourceFileName(tree.file("t.bmf", bytes));
    return resource.open();
}

}  // namespace

TEST(QBLResourceBMFTest, FindsEachTextByItsIdentifier) {
    TempTree tree;
    for (const int preload : {0, 1}) {
        QBLResourceBMF resource(preload);
        EXPECT_EQ("none", resourceText(resource, 5)) << "no file is open";
        ASSERT_TRUE(isOpened(resource, tree, bmfBytes(kTexts)));
        EXPECT_EQ(preload == 0, resource.isOpen());
        for (const auto& [id, text] : kTexts) EXPECT_EQ(text, resourceText(resource, id));
        for (const unsigned long id : {0UL, 4UL, 6UL, 8UL, 0x80000000UL, 0xFFFFFFFFUL})
            EXPECT_EQ("none", resourceText(resource, id));
        EXPECT_EQ(sizeof(long) > 4 ? "none" : "five", resourceText(resource, (1UL << 31 << 1) + 5));
        char *first = nullptr, *second = nullptr;
        ASSERT_TRUE(resource.getResource(0x80000001, &first) && resource.getResource(5, &second));
        EXPECT_STREQ("five", second);
        EXPECT_EQ(preload == 0, first == second)
            << "texts share a buffer unless the file is preloaded";
        resource.close();
        EXPECT_EQ(preload != 0 ? "five" : "untouched", resourceText(resource, 5));
        ASSERT_TRUE(isOpened(resource, tree, bmfBytes({})));
        EXPECT_EQ("none", resourceText(resource, 5));
    }
}

TEST(QBLResourceBMFTest, RejectsFilesThatAreNotMessageFiles) {
    TempTree tree;
    QBLResourceBMF resource(0);
    const std::string good = bmfBytes(kTexts);
    for (const std::string& bad :
         {"BMF2" + good.substr(4), "BMF1x" + good.substr(5), good.substr(0, 15)}) {
        ASSERT_TRUE(isOpened(resource, tree, good));
        EXPECT_FALSE(isOpened(resource, tree, bad));
        EXPECT_FALSE(resource.isOpen());
        EXPECT_EQ(0U, resource.getEntryCount()) << "of the file before";
        EXPECT_EQ("none", resourceText(resource, kTexts.begin()->first));
    }
    ASSERT_EQ(0, mkfifo(tree("fifo").c_str(), 0600));
    for (const std::string& name : {tree("fifo"), tree.dir("dir"), tree("missing")}) {
        resource.setResourceFileName(name);
        EXPECT_FALSE(resource.open()) << name;
    }
}

// fuzz/QBLResourceBMFFuzz.cpp opens malformed files.
TEST(QBLResourceBMFTest, TextWithoutItsNullEndsAtTheEndOfTheBlock) {
    TempTree tree;
    std::string open = bmfBytes(kTexts);
    open.replace(12, 4, bigEndian(4));
    QBLResourceBMF resource(1);
    ASSERT_TRUE(isOpened(resource, tree, open.replace(16 + 8, 4, bigEndian(4))));
    EXPECT_EQ("five", resourceText(resource, 5));
    EXPECT_EQ("none", resourceText(resource, 0x7FFFFFFF)) << "the text is outside of the block";
}
