#include <gtest/gtest.h>
#include <unicode/unistr.h>

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
