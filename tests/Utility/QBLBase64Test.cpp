#include <gtest/gtest.h>

#include <random>

#include "QBLCore/Exceptions/QBLOutOfMemoryError.hpp"
#include "QBLCore/Utility/QBLBase64.hpp"
#include "fuzz/support/Base64Checks.hpp"

namespace {

TEST(QBLBase64Test, AllKernelsAgreeWithTheModel) {
    const std::string missing = eachBase64Level(
        [](const QBLBase64Kernels& kernels, const Base64Side& side, const auto& name) {
            std::mt19937 random(1);
            for (unsigned n = 0; n < 4200; n += n < 260 ? 1 : 37) {
                std::string data(n, '\0');
                for (char& c : data) c = static_cast<char>(random());
                ASSERT_TRUE(encodesAsDefined(kernels, side, data)) << name << ' ' << n;
                std::string text = side.model.encode(data);
                for (std::size_t i = 0; i < n; i += 1 + random() % 90)
                    text.insert(random() % (text.size() + 1), 1, " \t\n\v\f\r"[random() % 6]);
                ASSERT_TRUE(decodesAsDefined(kernels, side, text)) << name << ": " << text;
            }
            for (int c = 1; c < 256; ++c) {
                for (std::size_t place = 0; place < 70; ++place) {
                    std::string text(70, 'Q');
                    text[place] = static_cast<char>(c);
                    ASSERT_TRUE(decodesAsDefined(kernels, side, text)) << name << ": " << text;
                }
            }
            for (int round = 0; round < 4000; ++round) {
                std::string text(random() % 200, 'x');
                for (char& c : text) c = static_cast<char>(1 + random() % (round % 2 ? 122 : 128));
                for (std::size_t i = 0; i < text.size(); ++i)
                    if (random() % 4 != 0) text[i] = "az09=AZ "[random() % 8];
                ASSERT_TRUE(decodesAsDefined(kernels, side, text)) << name << ": " << text;
            }
        });
    if (!missing.empty()) GTEST_SKIP() << "passed, but this processor lacks: " << missing;
}

TEST(QBLBase64Test, TheLastKernelThatRunsIsUsedAndDecodesBlocks) {
    const std::string text(1024, 'Q');
    const QBLBase64Kernels* last = nullptr;
    eachBase64Level([&](const QBLBase64Kernels& kernels, const Base64Side& side, const auto& name) {
        unsigned char bytes[768];
        EXPECT_EQ(1024U, kernels.decode(side.alphabet, text.data(), 1024, bytes)) << name;
        last = &kernels;
    });
    EXPECT_EQ(last, &qblBase64Kernels());
}

TEST(QBLBase64Test, ComputesSizesBeyond32Bits) {
    const unsigned sizes[][2] = {
        {0x20000000, 715827885}, {3221225469U, 4294967293U}, {3221225470U, 0}, {0xFFFFFFFF, 0}};
    for (const auto& size : sizes) {
        EXPECT_EQ(size[1], QBLBase64EncodedSize(size[0])) << size[0];
        EXPECT_EQ(size[1], QBLBase64URLEncodedSize(size[0])) << size[0];
    }
}

extern "C" int qblCodesFailedFromC();
TEST(QBLBase64Test, TakesViewsThatNoNullCharacterEnds) {
    const std::string bytes("\xFB\xFF\0z", 4);
    EXPECT_EQ("+/8Aeg==", qblBase64Encode(bytes));
    EXPECT_EQ("_~8Aeg==", qblBase64URLEncode(bytes.data(), bytes.size()));
    EXPECT_EQ(bytes, qblBase64Decode(std::string_view("+/8Aeg==QUJD", 8)));
    EXPECT_EQ(bytes, qblBase64URLDecode("_~8Aeg=="));
    EXPECT_EQ("", qblBase64Decode("").value() + qblBase64Encode(std::string_view()));
    EXPECT_FALSE(qblBase64Decode(std::string_view("QUJD\0QUJD", 9)) || qblBase64Decode("}AAA"));
    EXPECT_THROW(qblBase64Encode(bytes.data(), ~std::size_t{}), QBLOutOfMemoryError);
}

TEST(QBLBase64Test, FlatFunctionsWorkFromC) {
    EXPECT_EQ(0, qblCodesFailedFromC()) << "the failed line in QBLCodesC.c";
}

}  // namespace
