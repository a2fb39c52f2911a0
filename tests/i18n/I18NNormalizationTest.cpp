#include <gtest/gtest.h>
#include <unicode/normalizer2.h>
#include <unicode/unistr.h>

#include "i18n/cpp/i18n_string.hpp"
#include "tests/support/Workers.hpp"

static std::u16string unitsOf(const icu::UnicodeString& text) {
    return std::u16string(text.getBuffer(), static_cast<std::size_t>(text.length()));
}

// The characters stand alone, decomposed, and among marks of several combining classes. Line ends
// keep them from combining with others.
TEST(I18NStringTest, NormalizesEveryCharacterAsICUDoes) {
    UErrorCode status = U_ZERO_ERROR;
    const std::pair<I18NNormalizationForms, const icu::Normalizer2*> forms[] = {
        {I18N_NFC, icu::Normalizer2::getNFCInstance(status)},
        {I18N_NFD, icu::Normalizer2::getNFDInstance(status)},
        {I18N_NFKC, icu::Normalizer2::getNFKCInstance(status)},
        {I18N_NFKD, icu::Normalizer2::getNFKDInstance(status)}};
    const icu::UnicodeString marks = u"\u0315\u0300\u05AE\u0062\n";
    constexpr UChar32 kBlock = 256;
    for (UChar32 first = 0; first < 0x110000; first += kSanitizer ? 16 * kBlock : kBlock) {
        icu::UnicodeString text;
        for (UChar32 c = first; c < first + kBlock; ++c) {
            if (c == 0 || U_IS_SURROGATE(c)) continue;
            for (const auto& [form, icu] : forms)
                if (!icu->isNormalized(c, status))
                    text.append(icu->normalize(c, status)).append(u'\n');
            text.append(u'a').append(c).append(marks).append(u'a').append(marks, 0, 3).append(c);
            text.append(u'\n').append(c).append(u"\n\u09C7").append(c).append(u'\n');
        }
        for (const auto& [form, icu] : forms) {
            I18NString ours;
            ours.useNormalization(false);
            ours = unitsOf(text);
            ours.useNormalization(true);
            ASSERT_EQ(unitsOf(icu->normalize(text, status)), ours.normalize(form).toUtf16())
                << "characters from " << first << ", form " << form;
        }
        ASSERT_EQ(unitsOf(forms[0].second->normalize(text, status)),
                  I18NString(unitsOf(text)).toUtf16())
            << "characters from " << first;
    }
    ASSERT_TRUE(U_SUCCESS(status));
}
