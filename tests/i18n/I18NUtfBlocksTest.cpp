#include <gtest/gtest.h>
#include <unicode/unistr.h>

#include <algorithm>
#include <random>
#include <sstream>
#include <string>

#include "fuzz/support/Utf8Checks.hpp"
#include "i18n/cpp/utf/i18n_utf_blocks.hpp"

using namespace std::string_literals;

namespace {

std::string utf8Of(const icu::UnicodeString& text) {
    std::string bytes;
    return text.toUTF8String(bytes);
}

/// Returns random characters of 1 to 4 bytes in UTF-8, and sometimes a lone surrogate.
icu::UnicodeString randomText(std::mt19937& random, unsigned classes) {
    const unsigned firsts[] = {0, 0x80, 0x800, 0x10000, 0xD800};
    const unsigned counts[] = {0x80, 0x780, 0xD000, 0x100000, 0x800};
    icu::UnicodeString text;
    for (const auto length = static_cast<int>(32 + random() % 100); text.length() < length;) {
        const std::size_t kind = random() % 400 == 0 ? 4 : random() % (classes + 1);
        text.append(static_cast<UChar32>(firsts[kind] + random() % counts[kind]));
    }
    return text;
}

void encodeRandomTexts(void (*encode)(I18NEncoding&), std::size_t near) {
    std::mt19937 random(7);
    for (int run = 0; run < 20000; ++run) {
        const icu::UnicodeString text = randomText(random, 1 + static_cast<unsigned>(run) % 3);
        const char16_t* const units = text.getBuffer();
        const auto size = static_cast<std::size_t>(text.length());
        std::string bytes(size * 3, '\xFF');
        I18NEncoding encoding{units, units + size, &bytes[0]};
        encode(encoding);
        const auto done = static_cast<std::size_t>(encoding.at - units);
        // ICU replaces lone surrogates, so the well-formed part ends at the first difference.
        const icu::UnicodeString valid = icu::UnicodeString::fromUTF8(utf8Of(text));
        const auto good = static_cast<std::size_t>(
            std::mismatch(units, units + size, valid.getBuffer()).first - units);
        ASSERT_LE(done, good) << "run " << run;
        EXPECT_TRUE(size - done < near || good - done < near) << "run " << run;
        bytes.resize(static_cast<std::size_t>(encoding.out - bytes.data()));
        ASSERT_EQ(utf8Of(text.tempSubString(0, static_cast<int>(done))), bytes) << "run " << run;
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
        "\xED\xBF\xBF "
        "\xF0\x9F\x98 \xF0\x8F\xBF\xBF \xF4\x90\x80\x80 \xFB\xBF"s;
    const std::string bad[] = {"\xE0\x9F\xBF", "\xED\xA0\x80", "\xF0\x8F\xBF\xBF",
                               "\xF4\x90\x80\x80", "\xC3"};
    const std::string odd = "\x80\x9F\xBF\xC0\xC1\xC3\xE0\xED\xEF\xF0\xF4\xF5\xFB\xFD\xFF";
    std::mt19937 random(1);
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
        for (int round = 0; round < 20000; ++round) {
            std::string bytes;
            for (int i = 0; i < 30; ++i) bytes += (random() % 9 == 0 ? bad : fills)[random() % 5];
            for (int i = 1 << random() % 6; i != 0; --i)
                bytes[random() % bytes.size()] = odd[random() % odd.size()];
            EXPECT_TRUE(decodesAsPlainly(kernel, bytes)) << name << ": " << bytes;
        }
        for (char32_t c = 1; c < 0x20000; ++c) {
            std::string bytes = utf8Of(icu::UnicodeString(static_cast<UChar32>(c)));
            bytes += fills[c % 5] + bytes;
            EXPECT_TRUE(decodesAsPlainly(kernel, bytes)) << name << ": " << bytes;
        }
    });
    if (!missing.empty()) GTEST_SKIP() << "passed, but this processor lacks " << missing;
}
