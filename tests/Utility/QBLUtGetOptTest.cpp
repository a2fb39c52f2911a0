#include "QBLCore/Utility/QBLUtGetOpt.hpp"

#include <gtest/gtest.h>

#include <vector>

#include "tests/support/ThrowChecks.hpp"

namespace {

/// Parses words and records all results of getOpt() as one text: letters with their arguments, "0",
/// "-1", and the final index. Also captures the output to standard error.
struct Parsed {
    Parsed(std::vector<std::string> words, const char* letters, int calls) {
        std::vector<char*> argv(words.size() + 1);
        for (std::size_t i = 0; i < words.size(); ++i) argv[i] = &words[i][0];
        testing::internal::CaptureStderr();
        for (const char* name = "stale"; calls > 0; --calls) {
            const int c =
                options.getOpt(static_cast<int>(words.size()), argv.data(), letters, &name);
            text += c > 0 ? std::string(1, static_cast<char>(c)) : std::to_string(c);
            if (name != nullptr) text += std::string("(--") + name + ")";
            if (options.getOptArg() != nullptr)
                text += std::string("(") + options.getOptArg() + ")";
            text += " ";
        }
        text += "at " + std::to_string(options.getOptInd());
        written = testing::internal::GetCapturedStderr();
    }

    QBLUtGetOpt options;
    std::string text, written;
};

}  // namespace

TEST(QBLUtGetOptTest, ReturnsLettersArgumentsAndLongOptions) {
    const struct {
        std::vector<std::string> words;
        const char* letters;
        int calls;
        const char* given;
    } table[] = {{{"prog", "-ab", "x"}, "ab:", 3, "a b(x) -1(x) at 3"},
                 {{"prog", "-abx", "-a"}, "b:a", 3, "a b(x) a(x) at 3"},
                 {{"prog", "--verbose"}, "ab", 2, "-1(--verbose) -1 at 2"},
                 {{"prog", "--", "-a"}, "a", 2, "-1 a at 3"},
                 {{"prog", "file", "-a"}, "a", 2, "-1 -1 at 1"},
                 {{"prog", "-", "-a"}, "a", 1, "-1 at 1"},
                 {{"prog", "-axa-:", "-\xFF"}, "a-:\xFF", 6, "a 0 a -(:) \xFF(:) -1(:) at 3"},
                 {{}, "a", 1, "-1 at 1"}};
    for (const auto& row : table)
        EXPECT_EQ(row.given, Parsed(row.words, row.letters, row.calls).text);
    const Parsed lacking({"prog", "-a", "-b"}, "ab:", 3);
    EXPECT_EQ("a 0 -1 at 3", lacking.text);
    EXPECT_STREQ("\nprog : 'a' option requires an argument\n", lacking.options.getErrorMsg());
    EXPECT_EQ(lacking.written, lacking.options.getErrorMsg());
    EXPECT_TRUE(lacking.options.getErrorLetter() == 'b' && lacking.options.isArgumentMissing());
}

TEST(QBLUtGetOptTest, PrintsItsErrorsWithoutFormattingThem) {
    const std::string name(10000, 'p'), tail = " : 'x' not a valid option\n";
    Parsed strange({name + "%n%s%%%%%", "-x"}, "a", 1);
    EXPECT_EQ("\n" + name + "%n%s%%%%%" + tail, strange.options.getErrorMsg());
    EXPECT_EQ("\n" + name + "%n%s%%%" + tail, strange.written);
    QBLUtGetOpt quiet;
    EXPECT_EQ(1, quiet.setPrintErrors(0));
    testing::internal::CaptureStderr();
    quiet.error("literal", 0, 'x');
    quiet.error(nullptr, 0, 'x');
    EXPECT_EQ("", testing::internal::GetCapturedStderr());
    EXPECT_EQ("\n" + tail, quiet.getErrorMsg());
    EXPECT_TRUE(quiet.getErrorLetter() == 'x' && !quiet.isArgumentMissing());
    char word[] = "-a", *argv[] = {word, word, word, nullptr};
    EXPECT_TRUE(quiet.getOpt(3, argv, "a") == 'a' && quiet.getOpt(1, argv, "a") == -1)
        << "fewer words";
    QBL_EXPECT_THROW(quiet.getOpt(1, nullptr, "a"), QBLAssertError, "QBL_ASSERT(argv);");
    QBL_EXPECT_THROW(quiet.getOpt(1, argv, static_cast<char*>(nullptr)), QBLAssertError,
                     "QBL_ASSERT(opts);");
}
