#include <gtest/gtest.h>
#include <unicode/unistr.h>

#include <random>
#include <string>

#include "i18n/cpp/i18n_string.hpp"

static I18NString read(const std::string& bytes) {
    I18NString string;
    string.useNormalization(false);
    string = bytes.c_str();
    return string;
}

TEST(I18NUtfTest, ConvertsEveryCharacterAtEveryOffsetOfABlock) {
    for (UChar32 first = 1; first < 0x110000; first += first == 0xD7C1 ? 0x83F : 64) {
        icu::UnicodeString all(u"0123456789abcdef");
        for (UChar32 c = first; c < first + 64 && c < 0x110000; ++c)
            if (!U_IS_SURROGATE(c))
                all.append(c).append(UChar32(U"a\u00E9\u4E00\U0001F600"[c % 4]));
        for (int place = 0; place < 16; ++place) {
            std::string bytes;
            all.tempSubString(place).toUTF8String(bytes);
            const std::u16string units(all.getBuffer() + place, std::size_t(all.length() - place));
            const I18NString string = read(bytes);
            ASSERT_EQ(units, string.toUtf16()) << first << ' ' << place;
            ASSERT_EQ(bytes, string.toUtf8()) << first << ' ' << place;
        }
    }
}

TEST(I18NUtfTest, MalformedSequencesDecodeEquallyInBlocksAndAlone) {
    const std::string wholes[] = {"plain", "\u043F\u0440\u0438", "\u65E5\u672C", "\U0001F600"};
    const std::string bad[] = {"\xE0\x9F\xBF", "\xED\xA0\x80", "\xF0\x8F\xBF\xBF",
                               "\xF4\x90\x80\x80"};
    const std::string odd = "\x80\x9F\xBF\xC0\xC1\xC3\xE0\xED\xEF\xF0\xF4\xF5\xFB\xFD\xFF";
    std::mt19937 random(1);
    for (int round = 0; round < 20000; ++round) {
        std::string bytes;
        for (int i = 0; i < 30; ++i) bytes += (random() % 9 == 0 ? bad : wholes)[random() % 4];
        for (int i = 1 << random() % 6; i != 0; --i)
            bytes[random() % bytes.size()] = odd[random() % odd.size()];
        std::u16string expected, units;
        for (std::size_t i = 0, next; i < bytes.size(); i = next) {
            next = i + 1;
            while (next < bytes.size() && (bytes[next] & 0xC0) == 0x80) ++next;
            expected += read(bytes.substr(i, next - i)).toUtf16();
        }
        ASSERT_EQ(expected, read(bytes).toUtf16()) << round;
        for (int i = 0; i < 40; ++i) units += u"a\u00E9\u4E00\xD83D\xDE00"[random() % 5];
        bytes.clear();
        const void* const memory = units.data();
        ASSERT_EQ(icu::UnicodeString(units.c_str()).toUTF8String(bytes),
                  I18NString(memory, static_cast<int>(units.size()) * 2).toUtf8())
            << round;
    }
}
