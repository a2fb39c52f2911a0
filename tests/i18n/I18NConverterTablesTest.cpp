#include <gtest/gtest.h>
#include <unicode/utf16.h>

#include <string>

#include "fuzz/support/ConverterChecks.hpp"

using namespace converterchecks;

TEST(I18NConverterTablesTest, AgreeWithICUOnEveryPairOfBytes) {
    for (const char* encoding :
         {"ibm-943_P15A-2003", "ibm-943_P130-1999", "EUC-JP", "Big5", "windows-949"})
        for (int policy = I18N_ESCAPE; policy <= I18N_STOP; ++policy) {
            I18NConverter converter(encoding);
            converter.setBuiltInUnconvertibleInputSequenceCallback(policy);
            if (policy == I18N_USER_DEFINED)
                converter.setUserDefinedUnconvertibleInputSequenceCallback(
                    [](const char*, const char*, int, wchar_t*, int*, I18NErrorCodes*) {});
            std::string differing, some;
            bool isRefused = false;
            for (int pair = 0; pair <= 0xFFFF; ++pair) {
                some += {'\n', static_cast<char>(pair >> 8), static_cast<char>(pair)};
                // A refused text ends there, so each pair needs a text of its own.
                if (policy != I18N_STOP && pair % 0x40 != 0x3F) continue;
                const Converted expected = resultOf(decodedByIcu(converter, some));
                if (!(decoded(converter, some) == expected))
                    differing += " " + std::to_string(pair);
                isRefused = isRefused || expected.isRefused;
                some.clear();
            }
            EXPECT_EQ("", differing) << encoding << ", policy " << policy;
            EXPECT_EQ(policy == I18N_STOP, isRefused) << encoding;
        }
}

TEST(I18NConverterTablesTest, RoundTripEveryScalarValue) {
    std::u16string all;
    for (UChar32 c = 1; c <= 0x10FFFF; ++c) {
        if (U_IS_SURROGATE(c)) continue;
        if (c > 0xFFFF) all += U16_LEAD(c);
        all += c > 0xFFFF ? U16_TRAIL(c) : static_cast<char16_t>(c);
    }
    const std::string units(reinterpret_cast<const char*>(all.data()), all.size() * 2);
    for (const char* encoding : {"UTF-8", "UTF-16", "UTF-32", "GB18030"}) {
        I18NConverter converter(encoding);
        converter.setBuiltInUnconvertibleInputSequenceCallback(I18N_STOP);
        converter.setBuiltInUnconvertibleOutputSequenceCallback(I18N_STOP);
        const Converted there = encoded(converter, all), back = decoded(converter, there.output);
        EXPECT_FALSE(there.isRefused || back.isRefused) << encoding;
        EXPECT_TRUE(back.output == units) << encoding;
    }
}
