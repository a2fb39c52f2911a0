#include <gtest/gtest.h>

#include <cstdint>
#include <random>
#include <sstream>
#include <string>

#include "fuzz/support/Utf8Checks.hpp"
#include "i18n/cpp/utf/i18n_utf.hpp"
#include "i18n/cpp/utf/i18n_utf_blocks.hpp"

using namespace std::string_literals;

namespace {

void append(std::string& bytes, char32_t c) {
    const auto trail = [c](int shift) { return static_cast<char>(0x80 | (c >> shift & 0x3F)); };
    if (c < 0x80) return bytes.push_back(static_cast<char>(c));
    bytes += static_cast<char>(c < 0x800     ? 0xC0 | c >> 6
                               : c < 0x10000 ? 0xE0 | c >> 12
                                             : 0xF0 | c >> 18);
    if (c >= 0x10000) bytes += trail(12);
    if (c >= 0x800) bytes += trail(6);
    bytes += trail(0);
}

/// Encodes the first `count` units. The last of these units must not be the first half of a
/// surrogate pair.
std::string encoded(const std::u16string& units, std::size_t count) {
    std::string bytes;
    for (std::size_t i = 0; i < count; ++i) {
        const bool pair = i18nIsHigh(units[i]);
        append(bytes, pair ? i18nCombine(units[i], units[i + 1]) : units[i]);
        if (pair) ++i;
    }
    return bytes;
}

/// Returns the length of the well-formed part at the beginning of a text.
std::size_t wellFormed(const std::u16string& units) {
    std::size_t i = 0;
    while (i < units.size() && !i18nIsLow(units[i])) {
        const bool high = i18nIsHigh(units[i]);
        if (high && (i + 1 == units.size() || !i18nIsLow(units[i + 1]))) break;
        i += high ? 2 : 1;
    }
    return i;
}

/// Returns random characters of 1 to 4 bytes in UTF-8, and sometimes a lone surrogate.
std::u16string randomText(std::mt19937& random, unsigned classes) {
    std::u16string units;
    const std::size_t length = 32 + random() % 100;
    while (units.size() < length) {
        const auto bits = static_cast<std::uint32_t>(random() >> 4);
        char16_t pair[2];
        switch (random() % 400 == 0 ? 4 : bits % (classes + 1)) {
            case 0:
                units += static_cast<char16_t>(bits >> 8 & 0x7F);
                break;
            case 1:
                units += static_cast<char16_t>(0x80 + (bits >> 8) % 0x780);
                break;
            case 2:
                units += static_cast<char16_t>(0x800 + (bits >> 8) % 0xD000);
                break;
            case 3:
                units.append(pair, static_cast<std::size_t>(
                                       i18nPutCodePoint(pair, 0x10000 + (bits >> 2) % 0x100000)));
                break;
            default:
                units += static_cast<char16_t>(0xD800 + (bits >> 8) % 0x800);
        }
    }
    return units;
}

void encodeRandomTexts(void (*encode)(I18NEncoding&), std::size_t near) {
    std::mt19937 random(7);
    for (int run = 0; run < 20000; ++run) {
        const std::u16string units = randomText(random, 1 + static_cast<unsigned>(run) % 3);
        std::string bytes(units.size() * 3, '\xFF');
        I18NEncoding encoding{units.data(), units.data() + units.size(), &bytes[0]};
        encode(encoding);
        const auto done = static_cast<std::size_t>(encoding.at - units.data());
        const std::size_t good = wellFormed(units);
        ASSERT_LE(done, good) << "run " << run;
        EXPECT_TRUE(units.size() - done < near || good - done < near) << "run " << run;
        bytes.resize(static_cast<std::size_t>(encoding.out - bytes.data()));
        ASSERT_EQ(encoded(units, done), bytes) << "run " << run;
    }
}

}  // namespace

TEST(I18NUtfBlocksTest, AllKernelsEncodeCorrectly) {
    if (i18nHasShuffles()) encodeRandomTexts(i18nEncodeBlocks, 24);
    if (!i18nHasWideBlocks()) GTEST_SKIP() << "passed, but this processor lacks AVX2";
    encodeRandomTexts(i18nEncodeWideBlocks, 32);
}

TEST(I18NUtfBlocksTest, AllKernelsDecodeAsThePlainDecoder) {
    const std::string fills[] = {"a", "\u00E9", "\u3042", "\u4E00", "\U0001F600"};
    const std::string tokens =
        "\0 z \u0301 \u3099 \U0001D15E \x80 \xC3 \xC1\xBF \xE4\xB8 \xE0\x9F\xBF \xED\xA0\x80 "
        "\xF0\x9F\x98 \xF0\x8F\xBF\xBF \xF4\x90\x80\x80 \xFB\xBF"s;
    const std::string missing = eachUtf8Decoder([&](I18NDecoder kernel, const char* name) {
        for (std::size_t i = 0; i < 5 * 140; ++i) {
            std::string before(i % 4, 'x'), after, token;
            while (before.size() < i / 5) before += fills[i % 5];
            while (after.size() < 200) after += fills[i % 5];
            for (std::istringstream each(tokens); each >> token;)
                for (const std::string& end : {std::string(), after}) {
                    std::string bytes = before;
                    bytes.append(token).append(end);
                    EXPECT_TRUE(decodesAsPlainly(kernel, bytes)) << name << ": " << bytes;
                }
        }
        for (char32_t c = 1; c < 0x20000; ++c) {
            std::string bytes;
            append(bytes, c);
            bytes += fills[c % 5] + bytes;
            EXPECT_TRUE(decodesAsPlainly(kernel, bytes)) << name << ": " << bytes;
        }
    });
    if (!missing.empty()) GTEST_SKIP() << "passed, but this processor lacks " << missing;
}
