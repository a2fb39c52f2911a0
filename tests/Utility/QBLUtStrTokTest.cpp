#include "QBLCore/Utility/QBLUtStrTok.hpp"

#include <gtest/gtest.h>

#include <vector>

TEST(QBLUtStrTokTest, ReturnsTheTokensBetweenSeparators) {
    const struct {
        const char *text, *separators;
        std::vector<std::string> tokens;
    } table[] = {{" ,de_DE,;en\t\r\nfr ", " \t\r\n,;", {"de_DE", "en", "fr"}},
                 {"::/lib::/usr/lib:", ":", {"/lib", "/usr/lib"}},
                 {"a\xFF"
                  "b\xC3\xA9",
                  "\xFF",
                  {"a", "b\xC3\xA9"}},
                 {" a b ", "", {" a b "}},
                 {" a b ", nullptr, {" a b "}},
                 {",;,", ",;", {}},
                 {"", ",", {}},
                 {nullptr, ",", {}}};
    for (const auto& row : table) {
        QBLUtStrTok tokens(row.text, row.separators);
        std::vector<std::string> found;
        for (std::string token; tokens.nextToken(token);) found.push_back(token);
        EXPECT_EQ(row.tokens, found) << (row.text != nullptr ? row.text : "null");
        std::string left = "left";
        EXPECT_FALSE(tokens.nextToken(left));
        EXPECT_EQ("left", left);
    }
}

TEST(QBLUtStrTokTest, AcceptsOtherSeparatorsForOneToken) {
    QBLUtStrTok tokens("name = a b; other");
    std::string token;
    EXPECT_TRUE(tokens.nextToken(token, " =") && token == "name");
    EXPECT_TRUE(tokens.nextToken(token, "=;") && token == " ") << "the text before a separator";
    EXPECT_TRUE(tokens.nextToken(token, ";=") && token == " a b");
    EXPECT_TRUE(tokens.nextToken(token) && token == "other");
    EXPECT_FALSE(tokens.nextToken(token));
}
