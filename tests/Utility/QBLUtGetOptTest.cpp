#include "QBLCore/Utility/QBLUtGetOpt.hpp"

#include "tests/support/ThrowChecks.hpp"

// fuzz/QBLUtGetOptFuzz.cpp compares the results for any words with a model.
TEST(QBLUtGetOptTest, PrintsItsErrorsWithoutFormattingThem) {
    const std::string name(10000, 'p'), tail = " : 'x' not a valid option\n";
    std::string program = name + "%n%s%%%%%", option = "-x";
    char* words[] = {&program[0], &option[0], nullptr};
    QBLUtGetOpt strange, lacking, quiet;
    testing::internal::CaptureStderr();
    EXPECT_EQ(0, strange.getOpt(2, words, "a"));
    EXPECT_EQ("\n" + name + "%n%s%%%%%" + tail, strange.getErrorMsg());
    EXPECT_EQ("\n" + name + "%n%s%%%" + tail, testing::internal::GetCapturedStderr());
    lacking.setPrintErrors(0);
    EXPECT_EQ(0, lacking.getOpt(2, words, "ax:"));
    EXPECT_TRUE(lacking.getErrorLetter() == 'x' && lacking.isArgumentMissing());
    EXPECT_EQ(-1, QBLUtGetOpt().getOpt(0, words, "a")) << "there are no words";
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
