#include <gtest/gtest.h>
#include <unicode/ucnv.h>
#include <unicode/ucnv_cb.h>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <string>

#include "i18n/cpp/i18n_converter.hpp"
#include "i18n/cpp/i18n_internal_resources.hpp"

namespace {

extern "C" {
void dropBytes(const char*, const char*, int, wchar_t*, int*, I18NErrorCodes*) {}

// The policy I18N_LOOKUP, written from its description.
void lookUp(const void* encoding, UConverterToUnicodeArgs* args, const char* bytes, int32_t length,
            UConverterCallbackReason reason, UErrorCode* status) {
    if (reason > UCNV_IRREGULAR) return;
    std::string copy(bytes, static_cast<std::size_t>(length));
    wchar_t character = 0;
    I18NInternalResources::getInternalResForTesting().getReplacementSequence(
        static_cast<const char*>(encoding), reinterpret_cast<unsigned char*>(&copy[0]), length,
        &character, nullptr);
    const auto unit = static_cast<UChar>(character);
    *status = U_ZERO_ERROR;
    ucnv_cbToUWriteUChars(args, &unit, 1, 0, status);
}
}

const struct {
    int policy;
    UConverterToUCallback icu;
} kPolicies[] = {{I18N_ESCAPE, UCNV_TO_U_CALLBACK_ESCAPE},
                 {I18N_LOOKUP, lookUp},
                 {I18N_SUBSTITUTE, UCNV_TO_U_CALLBACK_SUBSTITUTE},
                 {I18N_USER_DEFINED, UCNV_TO_U_CALLBACK_SKIP},
                 {I18N_STOP, UCNV_TO_U_CALLBACK_STOP}};

struct Close {
    void operator()(UConverter* converter) const { ucnv_close(converter); }
};

constexpr int kRoom = 16;

// Converts the bytes by ICU into null-terminated text. Returns true if ICU rejects some bytes.
bool refusedByICU(UConverter* icu, const char* bytes, UChar* text) {
    UErrorCode status = U_ZERO_ERROR;
    ucnv_toUnicode(icu, &text, text + kRoom - 1, &bytes, bytes + 2, nullptr, true, &status);
    *text = 0;
    ucnv_resetToUnicode(icu);
    return U_FAILURE(status);
}

}  // namespace

TEST(I18NConverterTablesTest, AgreeWithICUOnEveryPairOfBytes) {
    for (const char* encoding :
         {"ibm-943_P15A-2003", "ibm-943_P130-1999", "EUC-JP", "Big5", "windows-949"})
        for (const auto& row : kPolicies) {
            I18NConverter converter(encoding);
            converter.setBuiltInUnconvertibleInputSequenceCallback(row.policy);
            if (row.policy == I18N_USER_DEFINED)
                converter.setUserDefinedUnconvertibleInputSequenceCallback(dropBytes);
            UErrorCode status = U_ZERO_ERROR;
            const std::unique_ptr<UConverter, Close> icu(ucnv_open(encoding, &status));
            ucnv_setFallback(icu.get(), true);
            ucnv_setToUCallBack(icu.get(), row.icu, row.icu == lookUp ? encoding : nullptr, nullptr,
                                nullptr, &status);
            ASSERT_TRUE(U_SUCCESS(status)) << encoding;
            std::string differing;
            int refused = 0;
            for (int pair = 0; pair <= 0xFFFF; ++pair) {
                const char bytes[] = {static_cast<char>(pair >> 8), static_cast<char>(pair)};
                char16_t ours[kRoom] = {}, theirs[kRoom] = {};
                I18NErrorCodes error;
                converter.toUnicode(ours, sizeof ours, bytes, 2, &error);
                const bool refuses = refusedByICU(icu.get(), bytes, theirs);
                refused += refuses ? 1 : 0;
                if (error != (refuses ? I18N_CONVERSION : I18N_OK) ||
                    !std::equal(ours, ours + kRoom, theirs))
                    differing += " " + std::to_string(pair);
            }
            EXPECT_EQ("", differing) << encoding << ", policy " << row.policy;
            EXPECT_EQ(row.policy == I18N_STOP, refused > 0) << encoding;
        }
}

TEST(I18NConverterTablesTest, RoundTripEveryScalarValue) {
    std::u16string all;
    for (char32_t c = 0; c <= 0x10FFFF; ++c) {
        if (c >= 0xD800 && c <= 0xDFFF) continue;
        if (c > 0xFFFF) all += static_cast<char16_t>(0xD7C0 + (c >> 10));
        all += static_cast<char16_t>(c > 0xFFFF ? 0xDC00 | (c & 0x3FF) : c);
    }
    const int size = static_cast<int>(all.size() * sizeof(char16_t));
    for (const char* encoding : {"UTF-8", "UTF-16", "UTF-32", "GB18030"}) {
        I18NConverter converter(encoding);
        converter.setBuiltInUnconvertibleInputSequenceCallback(I18N_STOP);
        converter.setBuiltInUnconvertibleOutputSequenceCallback(I18N_STOP);
        char* bytes = nullptr;
        void* text = nullptr;
        int byteCount = 0, textSize = 0;
        converter.fromUnicodeStream(&bytes, &byteCount, all.data(), size);
        converter.toUnicode(&text, &textSize, bytes, byteCount - converter.sizeofLegacyNull());
        EXPECT_EQ(size + 2, textSize) << encoding;
        EXPECT_TRUE(all == std::u16string(static_cast<char16_t*>(text), all.size())) << encoding;
        std::free(bytes);
        std::free(text);
    }
}
