#include "QBLCore/Utility/QBLBase64.h"

#include <gtest/gtest.h>

#include <memory>
#include <random>
#include <string>

#include "QBLCore/Utility/internal/QBLBase64Kernels.hpp"
#include "fuzz/support/Base64Model.hpp"

namespace {

const struct Side {
    const char* name;
    const QBLBase64Alphabet& alphabet;
    Base64Model model;
} kSides[] = {{"standard", kQBLBase64Standard, {'+', '/'}}, {"URL", kQBLBase64Url, {'_', '~'}}};

const struct Level {
    const char* name;
    const QBLBase64Kernels& kernels;
    bool runs;
} kLevels[] = {{"scalar", kQBLBase64Scalar, true},
               {"SSSE3", kQBLBase64Ssse3, __builtin_cpu_supports("ssse3") != 0},
               {"AVX2", kQBLBase64Avx2, __builtin_cpu_supports("avx2") != 0}};

/// Calls body(level, side) for all that this processor can do.
template <class Body>
void eachLevel(Body body) {
    for (const Level& level : kLevels) {
        if (!level.runs) continue;
        for (const Side& side : kSides) {
            SCOPED_TRACE(std::string(level.name) + ' ' + side.name);
            body(level.kernels, side);
        }
    }
}

/// Compares with the model; the room is exact, and what is behind it has to stay.
void expectSameDecoding(const QBLBase64Kernels& kernels, const Side& side,
                        const std::string& text) {
    std::string expected, copy = text;
    const bool good = side.model.decode(text, expected);
    const std::unique_ptr<unsigned char[]> room(new unsigned char[text.size() * 3 / 4 + 1]());
    room[expected.size()] = 77;
    std::size_t length = 0;
    ASSERT_EQ(good, qblBase64Decode(kernels, side.alphabet, text.c_str(), room.get(), length))
        << text;
    if (!good) return;
    ASSERT_EQ(expected, std::string(room.get(), room.get() + length)) << text;
    ASSERT_EQ(77, room[length]) << text;
    auto* const place = reinterpret_cast<unsigned char*>(&copy[0]);
    ASSERT_TRUE(qblBase64Decode(kernels, side.alphabet, copy.c_str(), place, length));
    ASSERT_EQ(expected, copy.substr(0, length)) << "in its own place: " << text;
}

std::string randomBytes(std::mt19937& random, std::size_t count) {
    std::string bytes(count, '\0');
    for (char& c : bytes) c = static_cast<char>(random());
    return bytes;
}

TEST(QBLBase64Test, EncodesAndDecodesEveryLengthAtEveryLevel) {
    eachLevel([](const QBLBase64Kernels& kernels, const Side& side) {
        std::mt19937 random(1);
        for (unsigned n = 0; n < 4200; n += n < 260 ? 1 : 37) {
            const std::string data = randomBytes(random, n);
            const unsigned size = QBLBase64EncodedSize(n);
            const std::unique_ptr<char[]> room(new char[size]);
            qblBase64Encode(kernels, side.alphabet,
                            reinterpret_cast<const unsigned char*>(data.data()), n, room.get());
            std::string text = room.get();
            ASSERT_EQ(side.model.encode(data), text);
            ASSERT_EQ(size, text.size() + 1);
            expectSameDecoding(kernels, side, text);
            for (std::size_t i = 0; i < n; i += 1 + random() % 90)
                text.insert(random() % (text.size() + 1), 1, " \t\n\v\f\r"[random() % 6]);
            expectSameDecoding(kernels, side, text);
        }
    });
}

TEST(QBLBase64Test, DecodesEveryCharacterAtEveryPlaceAsItIsDefined) {
    eachLevel([](const QBLBase64Kernels& kernels, const Side& side) {
        for (int c = 1; c < 256; ++c) {
            for (std::size_t place = 0; place < 70; ++place) {
                std::string text(70, 'Q');
                text[place] = static_cast<char>(c);
                expectSameDecoding(kernels, side, text);
            }
        }
        std::mt19937 random(2);
        for (int round = 0; round < 4000; ++round) {
            std::string text(random() % 200, 'x');
            for (char& c : text) c = static_cast<char>(1 + random() % (round % 2 ? 122 : 128));
            for (std::size_t i = 0; i < text.size(); ++i)
                if (random() % 4 != 0) text[i] = "az09=AZ "[random() % 8];
            expectSameDecoding(kernels, side, text);
        }
    });
}

TEST(QBLBase64Test, ComputesSizesBeyond32Bits) {
    const unsigned sizes[][2] = {{0, 1},
                                 {3, 5},
                                 {4, 9},
                                 {0x20000000, 715827885},
                                 {3221225469U, 4294967293U},
                                 {3221225470U, 0},
                                 {0xFFFFFFFF, 0}};
    for (const auto& size : sizes) {
        EXPECT_EQ(size[1], QBLBase64EncodedSize(size[0])) << size[0];
        EXPECT_EQ(size[1], QBLBase64URLEncodedSize(size[0])) << size[0];
    }
}

extern "C" int qblCodesFailedFromC();
TEST(QBLBase64Test, FlatFunctionsWorkFromC) {
    EXPECT_EQ(0, qblCodesFailedFromC()) << "the line in QBLCodesC.c";
}

}  // namespace
