// In which words, language and encoding the tools speak.
#include <gtest/gtest.h>

#include <filesystem>

#include "tests/tools/RunTool.hpp"

TEST(MessageTextTest, WithoutCataloguesTheTextsAreTheEnglishOnes) {
    TempTree tree;
    tree.file("bad", "a\xFF'{0}'\n");
    for (const char* const program : {QBL_CONV, QBL_MSGC}) {
        const std::string name = std::filesystem::path(program).filename(), path = program;
        std::filesystem::copy_file(path, tree(name));
        for (const char* const arguments : {" -h", " -V", " -Z", " --hepl", " -L", " -X bad",
                                            " -n \"'{0}\" bad", " bad", " -n bad"}) {
            const Outcome expected = runTool(tree, "'" + path + "'" + arguments);
            for (const char* const catalogue : {"", "no message file"}) {
                if (*catalogue != '\0') tree.file(name + "msgs_de.bmf", catalogue);
                const Outcome found = runTool(tree, "./" + name + arguments, "LC_ALL=de_DE");
                EXPECT_EQ(expected.output, found.output) << name << arguments;
                EXPECT_EQ(expected.status, found.status);
            }
        }
    }
}
