#include "i18n/cpp/i18n_converter.hpp"

#include <gtest/gtest.h>

#include <climits>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "fuzz/support/ConverterChecks.hpp"
#include "i18n/cpp/i18n_converter_c.h"
#include "i18n/cpp/i18n_converter_holders.hpp"
#include "i18n/cpp/i18n_platform_encoding.h"
#include "i18n/cpp/i18n_string.hpp"
#include "tests/support/ThrowChecks.hpp"

using namespace converterchecks;

extern "C" int i18nFlatFailedFromC(I18NStringHandle string);

namespace {

const char kFailed[] = "cannot be converted";

std::string bytesOf(const I18NConverter& converter, const std::u16string& text) {
    const Converted result = encoded(converter, text);
    return result.isRefused ? kFailed : result.output;
}

std::u16string unitsOf(const I18NConverter& converter, const std::string& bytes) {
    const std::string units = decoded(converter, bytes).output;
    return std::u16string(reinterpret_cast<const char16_t*>(units.data()), units.size() / 2);
}

// Returns the text of the bytes in UTF-8, or kFailed if the conversion fails. So a table can also
// contain expected failures.
std::string utf8Of(const I18NConverter& converter, const std::string& bytes) {
    return decoded(converter, bytes).isRefused
               ? kFailed
               : bytesOf(I18NConverter("UTF-8"), unitsOf(converter, bytes));
}

extern "C" {
void replaceInput(const char* encoding, const char*, int length, wchar_t* codePoints, int* count,
                  I18NErrorCodes*) {
    // 0xDC00 is a lone surrogate, which is dropped.
    for (const int c : {int{*encoding}, 0xDC00, 0x1F600, '0' + length})
        codePoints[(*count)++] = static_cast<wchar_t>(c);
}

void replaceOutput(wchar_t codePoint, const char* encoding, char* bytes, int* count,
                   I18NErrorCodes* error) {
    if (codePoint == 0xFFFE) *error = I18N_NOMEM;
    if (codePoint == 0xFFFC) throw codePoint;
    bytes[0] = *encoding;
    *count = codePoint == 0xFFFD ? 0 : 1;
}

void overfillInput(const char*, const char*, int, wchar_t* codePoints, int* count,
                   I18NErrorCodes*) {
    for (*count = 0; *count < 40; ++*count) codePoints[*count] = *count < 31 ? L'x' : 0x1F600;
}

void overfillOutput(wchar_t, const char*, char* bytes, int* count, I18NErrorCodes*) {
    std::memset(bytes, 'x', 40);
    *count = 40;
}
}

enum Origin { kOriginal, kCopied, kAssigned };

// Returns a converter with a policy for both directions. If the converter is a copy, its original
// is already destroyed.
std::unique_ptr<I18NConverter> converterFrom(Origin origin, const char* encoding, int policy) {
    auto first = std::make_unique<I18NConverter>(encoding);
    if (policy == I18N_USER_DEFINED) {
        first->setUserDefinedUnconvertibleInputSequenceCallback(replaceInput);
        first->setUserDefinedUnconvertibleOutputSequenceCallback(replaceOutput);
    } else {
        first->setBuiltInUnconvertibleInputSequenceCallback(policy);
        first->setBuiltInUnconvertibleOutputSequenceCallback(policy);
    }
    if (origin == kOriginal) return first;
    if (origin == kCopied) return std::make_unique<I18NConverter>(*first);
    auto second = std::make_unique<I18NConverter>("UTF-16");
    *second = *second;  // cppcheck-suppress selfAssignment  // must not change the converter
    *second = *first;
    return second;
}

}  // namespace

TEST(I18NConverterTest, AppliesThePolicyToUnconvertibleText) {
    const struct {
        const char* encoding;
        std::u16string text;
        std::string written[5];  // by policy
        std::string bytes;
        std::string read[5];
    } rows[] = {
        {"us-ascii",
         u"a\u4E00b",
         {"a%U4E00b", "a\x1A\x62", "a\x1A\x62", "aub", kFailed},
         "a\x80\x62",
         {"a%X80b", "a\uFFFFb", "a\uFFFDb", "au\U0001F6001b", kFailed}},
        {"ibm-943",
         u"a\u0E01b",
         {"a%U0E01b", "a\xFC\xFC\x62", "a\xFC\xFC\x62", "aib", kFailed},
         "a\x85\xA0\x62",
         {"a%X85%XA0b", "a\uFFFFb", "a\uFFFDb", "ai\U0001F6002b", kFailed}},
        {"UTF-8",
         std::u16string(u"a") + char16_t(0xD800) + u"b",
         {"a%UD800b", "a\uFFFDb", "a\uFFFDb", "aUb", kFailed},
         "a\xFF\x62",
         {"a%XFFb", "a\uFFFFb", "a\uFFFDb", "aU\U0001F6001b", kFailed}},
    };
    for (const auto& row : rows)
        for (int policy = I18N_ESCAPE; policy <= I18N_STOP; ++policy)
            for (const Origin origin : {kOriginal, kCopied, kAssigned}) {
                SCOPED_TRACE(row.encoding + (" " + std::to_string(policy)) + "/" +
                             std::to_string(origin));
                const auto converter = converterFrom(origin, row.encoding, policy);
                EXPECT_STREQ(row.encoding, converter->getEncoding());
                EXPECT_EQ(row.written[policy], bytesOf(*converter, row.text));
                EXPECT_EQ(row.read[policy], utf8Of(*converter, row.bytes));
            }
    I18NConverter untouched("us-ascii");
    EXPECT_EQ(I18N_LOOKUP, untouched.getBuiltInUnconvertibleInputSequenceCallback());
    EXPECT_EQ("a\uFFFDb", utf8Of(untouched, "a\x80\x62"))
        << "a converter substitutes until a policy is set";
}

TEST(I18NConverterTest, UserFunctionsMayDropTextFailOrExceedTheLimit) {
    const auto converter = converterFrom(kOriginal, "us-ascii", I18N_USER_DEFINED);
    EXPECT_EQ("ab", bytesOf(*converter, u"a\uFFFDb"));
    EXPECT_EQ(kFailed, bytesOf(*converter, u"a\uFFFEb")) << "the function returns an error";
    EXPECT_EQ(kFailed, bytesOf(*converter, u"a\uFFFCb")) << "the function throws";
    for (const int ignored : {-1, 5, INT_MIN}) {
        converter->setBuiltInUnconvertibleInputSequenceCallback(ignored);
        converter->setBuiltInUnconvertibleOutputSequenceCallback(ignored);
    }
    converter->setUserDefinedUnconvertibleInputSequenceCallback(nullptr);
    converter->setUserDefinedUnconvertibleOutputSequenceCallback(nullptr);
    EXPECT_EQ("u", bytesOf(*converter, u"\u4E00"));
    EXPECT_EQ("u\U0001F6001", utf8Of(*converter, "\x80"));
    converter->setUserDefinedUnconvertibleInputSequenceCallback(overfillInput);
    converter->setUserDefinedUnconvertibleOutputSequenceCallback(overfillOutput);
    EXPECT_EQ(std::string(32, 'x') + "b", bytesOf(*converter, u"\u4E00b"));
    EXPECT_EQ(kFailed, utf8Of(*converter, "\x80\x62")) << "the result exceeds the buffer";
    converter->setBuiltInUnconvertibleOutputSequenceCallback(I18N_USER_DEFINED);
    EXPECT_EQ(nullptr, converter->getUserDefinedUnconvertibleOutputSequenceCallback());
    EXPECT_EQ(kFailed, bytesOf(*converter, u"\u4E00")) << "no function is set";
}

TEST(I18NConverterTest, FixedBuffersReportIfTheyAreTooSmall) {
    constexpr int kFull = I18N_TOO_SMALL;
    const struct {
        const char* encoding;
        int out[9];  // codes by size, for "ab"
    } rows[] = {{"UTF-8", {I18N_ARGUMENT, 0, kFull, 0, 0, 0, 0, 0, 0}},
                {"UTF-16", {I18N_ARGUMENT, kFull, 0, kFull, kFull, kFull, 0, 0, 0}},
                {"UTF-32", {I18N_ARGUMENT, kFull, kFull, kFull, 0, kFull, kFull, kFull, kFull}}};
    const int in[] = {kFull, kFull, 0, 0, kFull, kFull, 0, 0, 0};
    for (const auto& row : rows)
        for (int size = 0; size <= 8; ++size) {
            SCOPED_TRACE(std::string(row.encoding) + ", size " + std::to_string(size));
            const I18NConverter converter(row.encoding);
            const std::string bytes = bytesOf(converter, u"ab");
            const auto expect = [size](const std::string& buffer, int code, int error) {
                EXPECT_EQ(code, error);
                EXPECT_EQ(std::string::npos, buffer.find_first_not_of('z', 1 + size))
                    << "wrote past the end";
                EXPECT_TRUE(size < 2 || buffer[buffer.find_last_not_of('z')] == '\0');
            };
            I18NErrorCodes error = I18N_UNEXPECTED;
            std::string buffer(17, 'z');  // used from its second byte, an odd address
            converter.fromUnicode(&buffer[1], size, u"ab", &error);
            expect(buffer, row.out[size], error);
            buffer.assign(17, 'z');
            converter.toUnicode(&buffer[1], size, bytes.data(), static_cast<int>(bytes.size()),
                                &error);
            expect(buffer, in[size], error);
        }
    char three[3];
    QBL_EXPECT_THROW(I18NConverter("").fromUnicode(three, 3, u"abc"), I18NRuntimeError, nullptr,
                     I18N_TOO_SMALL);
    EXPECT_STREQ("ab", three);
}

TEST(I18NConverterTest, ReportsUnconsumedInput) {
    char null[1];
    int written = 0, consumed = 0;
    I18NErrorCodes error = I18N_OK;
    I18NConverter("UTF-8").fromUnicodeStream(null, 1, u"abc", 6, &written, &consumed, &error);
    EXPECT_EQ(I18N_STREAM_FULL, error) << "with another code, a caller's loop would never end";

    I18NString text(L"\u0416");
    text.append(L'\0').append(L"\u0416");
    int length = 0;
    const char* const bytes = text.c_str(I18NConverter("windows-1251"), &length);
    EXPECT_EQ(std::string("\xC6\0\xC6\0", 4), std::string(bytes, 4));
    EXPECT_EQ(4, length);
    // A copy shares nothing with the original. For this encoding, a clone made by ICU would share
    // data with the original.
    I18NConverter compound("x11-compound-text");
    EXPECT_EQ("a", bytesOf(I18NConverter(compound), u"a"));
}

TEST(I18NConverterTest, StreamsInPiecesMatchASingleCall) {
    const std::u16string text = u"a\u00E9\u3042\u6F22\U0001F600z\u30A2";
    for (const char* encoding : {"UTF-16", "UTF-32", "gb18030", "ISO-2022-JP"})
        for (const int room : {1, 2, 3, 7, 4000})
            for (const int piece : {1, 2, 5, 1000}) {
                SCOPED_TRACE(encoding + (" " + std::to_string(room) + "/" + std::to_string(piece)));
                const I18NConverter converter(encoding);
                const Converted whole = encoded(converter, text);
                EXPECT_TRUE(whole == encodedInPieces(converter, text, piece,
                                                     room + converter.sizeofLegacyNull()));
                EXPECT_TRUE(decoded(converter, whole.output) ==
                            decodedInPieces(converter, whole.output, piece, room * 2 + 2));
            }
}

TEST(I18NConverterTest, StreamsKeepIncompleteSequencesBetweenPieces) {
    I18NConverter converter("Shift_JIS");
    converter.setBuiltInUnconvertibleInputSequenceCallback(I18N_STOP);
    void* block = nullptr;
    int size = 77;
    converter.toUnicodeStream(&block, &size, "", 0);
    EXPECT_EQ(nullptr, block);
    converter.toUnicodeStream(&block, &size, "a\x82", 2);
    EXPECT_EQ(4, size) << "'a' and a NUL";
    std::free(block);
    EXPECT_EQ(u"\u3042", unitsOf(converter, "\xA0"));
    converter.toUnicodeStream(&block, &size, "\x82", 1);
    std::free(block);
    EXPECT_EQ(kFailed, utf8Of(converter, "")) << "the sequence is cut off at the end";
    converter.toUnicodeStream(&block, &size, "\x82", 1);
    std::free(block);
    const I18NConverter copy(converter);
    converter.reset();
    EXPECT_EQ("x", utf8Of(converter, "x"));
    EXPECT_EQ(u"\u3042", unitsOf(copy, "\xA0")) << "a copy takes over the state";
}

TEST(I18NConverterTest, StreamsCountATerminatingNull) {
    const struct {
        const char16_t* text;
        int room, size, written, consumed, code;
    } rows[] = {{u"ab", 8, -1, 3, 6, I18N_OK},         {u"ab", 8, 6, 3, 6, I18N_OK},
                {u"ab", 8, 5, 3, 4, I18N_OK},          {u"ab", 8, 0, 0, 0, I18N_OK},
                {u"ab", 2, 6, 2, 2, I18N_STREAM_FULL}, {u"\u00E9", 2, 4, 2, 2, I18N_STREAM_FULL}};
    for (const auto& row : rows) {
        const I18NConverter converter("UTF-8");
        char bytes[8];
        int written = 77;
        int consumed = 77;
        I18NErrorCodes error = I18N_OK;
        converter.fromUnicodeStream(bytes, row.room, row.text, row.size, &written, &consumed,
                                    &error);
        EXPECT_EQ(row.code, error);
        EXPECT_EQ(row.written, written) << row.room << ", " << row.size;
        EXPECT_EQ(row.consumed, consumed) << row.room << ", " << row.size;
    }
}

TEST(I18NConverterTest, ABlockTakesThePendingOutputOnce) {
    const I18NConverter converter("UTF-8");
    const auto expectRest = [](const std::string& rest, auto call) {
        for (const std::string& expected : {rest, std::string()}) {
            char* block = nullptr;
            int size = 77;
            call(&block, &size);
            EXPECT_EQ(expected.empty(), block == nullptr);
            EXPECT_EQ(expected, block == nullptr ? "" : std::string(block, std::size_t(size)));
            std::free(block);
        }
    };
    for (int round = 0; round < 2; ++round) {
        char buffer[4];
        int written = 0, consumed = 0;
        I18NErrorCodes error = I18N_OK;
        converter.fromUnicodeStream(buffer, 2, u"\u00E9", 2, &written, &consumed, &error);
        EXPECT_EQ(I18N_STREAM_FULL, error);
        expectRest(std::string("\xA9\0", 2), [&](char** block, int* size) {
            converter.fromUnicodeStream(block, size, nullptr, 0);
        });
        converter.toUnicodeStream(buffer, 4, "\xF0\x9F\x98\x80", 4, &written, &consumed, &error);
        EXPECT_EQ(I18N_STREAM_FULL, error);
        expectRest(std::string("\x00\xDE\0\0", 4), [&](char** block, int* size) {
            converter.toUnicodeStream(reinterpret_cast<void**>(block), size, nullptr, 0);
        });
    }
}

TEST(I18NConverterTest, BlocksGrowOnceToTheNeededSize) {
    constexpr std::size_t kCount = 100000;
    I18NConverter converter("US-ASCII");
    converter.setBuiltInUnconvertibleOutputSequenceCallback(I18N_ESCAPE);
    struct Requests {
        int blocks, calls, lastSize, limit;
    } requests = {0, 0, 0, INT_MAX};
    const auto counting = [](void* context, char* block, int size, int* error) -> char* {
        auto& all = *static_cast<Requests*>(context);
        if (size > all.limit) return nullptr;
        ++all.calls;
        if (size > 0) all.lastSize = size;
        all.blocks += (block == nullptr) - (size == 0);
        return I18N_STRINGBUFFER_ALLOCATOR_CALLBACK(nullptr, block, size, error);
    };
    char* bytes = nullptr;
    int size = 0;
    converter.fromUnicode(&bytes, &size, std::u16string(kCount, u'\u4E00').c_str(), counting,
                          &requests);
    EXPECT_EQ(600001, size);
    EXPECT_EQ(600001, requests.lastSize);
    EXPECT_EQ(2, requests.calls);
    EXPECT_EQ(size, std::strlen(bytes) + 1);
    counting(&requests, bytes, 0, &size);
    requests.limit = 1000;
    EXPECT_THROW(converter.fromUnicode(&bytes, &size, std::u16string(500, u'\u4E00').c_str(),
                                       counting, &requests),
                 QBLThrowable);
    EXPECT_EQ(nullptr, bytes);
    EXPECT_EQ(0, requests.blocks);
}

TEST(I18NConverterTest, ConvertsCodePointCountsAndMeasuresBuffers) {
    for (const char* encoding : {"UTF-8", "UTF-16", "UTF-32", "ISO-2022-JP"}) {
        const I18NConverter converter(encoding);
        for (const int n : {-5, -1, 0, 1, 100000})
            EXPECT_EQ(n, converter.numLegacyCodePoints(converter.numLegacyBytes(n))) << encoding;
        EXPECT_EQ(INT_MAX, converter.numLegacyBytes(INT_MAX));
    }
    const struct {
        const char* encoding;
        int length, effective;
    } rows[] = {{"UTF-8", 3, 2},   {"UTF-8", -1, 2}, {"UTF-8", 2, 2},
                {"UTF-16", 5, 3},  {"UTF-16", 3, 3}, {"UTF-16", -1, 2},
                {"UTF-32", -1, 4}, {"UTF-32", 8, 4}, {"UTF-32", 3, 3}};
    const std::string text("-ab\0\0\0\0\0\0\0", 10);
    for (const auto& row : rows)
        EXPECT_EQ(row.effective,
                  I18NConverter(row.encoding).getEffectiveBufferSize(&text[1], row.length))
            << row.encoding << ", " << row.length;
}

TEST(I18NConverterTest, RecognizesEncodingsByName) {
    const struct {
        // 8: UTF-8, i: ISO-8859, w: windows-1252, 6: UTF-16, 3: UTF-32, b: byte-order mark
        const char* is;
        std::vector<const char*> names;
    } rows[] = {{"8", {nullptr, "", "utf8", "Utf-8", "ascii"}},
                {"i", {"iso-8859-15", "ISO8859whatever"}},
                {"w", {"Windows-1252"}},
                {"6b", {"ucs2", "UTF-16"}},
                {"b", {"UTF-16LE"}},
                {"6", {"UTF16_PlatformEndian", "utf16_p"}},
                {"3b", {"UCS-4", "utf32"}},
                {"3", {"UTF32_PlatformEndian"}},
                {"", {"ASCII7", "UTF-8 ", "UTF", "iso-885", "windows-12520", "Shift_JIS"}}};
    for (const auto& row : rows)
        for (const char* name : row.names) {
            std::string is;
            if (I18NConverter::isUTF8(name)) is += "8";
            if (I18NConverter::isISO8859(name)) is += "i";
            if (I18NConverter::isWindows1252(name)) is += "w";
            if (I18NConverter::isUTF16(name)) is += "6";
            if (I18NConverter::isUTF32(name)) is += "3";
            if (I18NConverter::shouldUseBOM(name)) is += "b";
            EXPECT_EQ(row.is, is) << (name != nullptr ? name : "null");
        }
    EXPECT_TRUE(I18NConverter::isPlatformDefault(I18NGetPlatformDefaultEncoding()));
    EXPECT_FALSE(I18NConverter::isPlatformDefault(nullptr));
}

TEST(I18NConverterTest, RejectsUnknownEncodings) {
    const std::string text =
        "The specified encoding is not valid: \"" + std::string(60, 'x') + "\".";
    QBL_EXPECT_THROW(I18NConverter(std::string(61, 'x').c_str()), I18NRuntimeError, text.c_str(),
                     I18N_ENCODING);
}

TEST(I18NConverterTest, CanBeUsedFromC) {
    I18NString text;
    EXPECT_EQ(0, i18nFlatFailedFromC(reinterpret_cast<I18NStringHandle>(&text)));
    EXPECT_EQ(u"\u65E5\u672C!", text.toUtf16());
}
