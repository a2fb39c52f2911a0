#include "QBLCore/Utility/QBLUtStrTok.hpp"

#include <gtest/gtest.h>

// fuzz/QBLFmDirFuzz.cpp compares the tokens of any text with a model.
TEST(QBLUtStrTokTest, AcceptsNull) {
    std::string token = "left";
    EXPECT_FALSE(QBLUtStrTok(nullptr, ",").nextToken(token));
    EXPECT_EQ("left", token);
    EXPECT_TRUE(QBLUtStrTok(" a b ", nullptr).nextToken(token) && token == " a b ");
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
