#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "fuzz/support/ConverterChecks.hpp"
#include "i18n/cpp/converter/i18n_code_tables.hpp"
#include "i18n/cpp/converter/i18n_single_bytes.hpp"
#include "i18n/cpp/i18n_encoding_names.h"
#include "i18n/cpp/utf/i18n_ascii_copy.hpp"
#include "i18n/cpp/utf/i18n_utf_blocks.hpp"
#include "tests/support/Workers.hpp"

namespace {

/// Returns runs of ASCII, runs of characters from a few places in Unicode, and single characters.
std::u16string randomText(std::mt19937& random) {
    std::u16string text;
    const std::size_t places[] = {0xA0, 0x3040, 0x4E00, random() % 0xD700};
    while (text.size() < 600) {
        const std::size_t kind = random() % 8, place = places[random() % 4];
        if (kind == 0) text += static_cast<char16_t>(random() % 0xFFFF);
        for (std::size_t i = random() % (kind < 4 ? 90 : 12); kind != 0 && i > 0; --i) {
            const std::size_t ascii = random() % 30 != 0 ? 0x20 + random() % 0x5F : random() % 0x80;
            text += static_cast<char16_t>(kind < 4 ? ascii : place + random() % 96);
        }
    }
    return text;
}

/// Encodes the text without the characters that the encoding lacks. Unless `isValid`, then replaces
/// some bytes by random bytes.
std::string randomBytes(std::mt19937& random, const I18NConverter& converter,
                        const std::u16string& text, bool isValid) {
    I18NConverter only(converter);
    only.setUserDefinedUnconvertibleOutputSequenceCallback(
        [](wchar_t, const char*, char*, int*, I18NErrorCodes*) {});
    std::string bytes = encodedByIcu(only, text).output;
    for (std::size_t i = 0; !isValid && i < bytes.size() / 100; ++i)
        bytes[random() % bytes.size()] = static_cast<char>(random());
    return bytes;
}

}  // namespace

TEST(I18NCodeTablesTest, StreamsConvertAsIcuInEveryEncodingWithoutShifts) {
    int tested = 0;
    for (int i = 0; i < I18NCountEncodings(); ++i) {
        I18NConverter converter(I18NGetEncodingName(i, 0));
        if (!dependsOnTextAlone(converter)) continue;
        ++tested;
        std::mt19937 random(static_cast<unsigned>(i));
        for (int run = 0; run < 2 * (I18N_STOP + 1); ++run) {
            converter.setBuiltInUnconvertibleInputSequenceCallback(run / 2);
            converter.setBuiltInUnconvertibleOutputSequenceCallback(run / 2);
            const std::u16string text = randomText(random);
            const std::string bytes = randomBytes(random, converter, text, run / 2 == I18N_STOP);
            const std::vector<std::size_t> sizes = {1 + random() % 200, 1 + random() % 20,
                                                    1 + random() % 2000};
            EXPECT_EQ(nullptr, differenceFromIcu(converter, bytes, text, sizes))
                << converter.getEncoding() << " run " << run;
        }
    }
    EXPECT_GT(tested, 150);
}

TEST(I18NCodeTablesTest, ConvertersConvertAsIcuIntoAnyRoom) {
    using namespace converterchecks;
    for (int i = 0; i < I18NCountEncodings(); ++i) {
        I18NConverter converter(I18NGetEncodingName(i, 0));
        if (!dependsOnTextAlone(converter) || converter.sizeofLegacyNull() > 1) continue;
        converter.useFallback(false);
        std::mt19937 random(static_cast<unsigned>(i));
        std::u16string text;
        while (text.size() < 8000) text += randomText(random);
        text.erase(std::remove(text.begin(), text.end(), u'\0'), text.end());
        const std::string bytes = randomBytes(random, converter, text, false);
        const Converted units = resultOf(decodedByIcu(converter, bytes));
        const Converted encoding = resultOf(encodedByIcu(converter, text));
        for (const std::size_t most : {4000, 40})
            for (const std::size_t room : {std::size_t{9000}, 20 + random() % 40}) {
                const std::size_t piece = 1 + random() % most;
                EXPECT_TRUE(decodedInPieces(converter, bytes, piece, room) == units)
                    << converter.getEncoding() << " " << piece << " " << room;
                EXPECT_TRUE(encodedInPieces(converter, text, piece, room) == encoding)
                    << converter.getEncoding() << " " << piece << " " << room;
            }
    }
}

TEST(I18NCodeTablesTest, EncodingsThatContainASCIIHaveTables) {
    const auto expect = [](bool has, std::initializer_list<const char*> names) {
        for (const char* const name : names) {
            const I18NConverter converter(name);
            UConverter* const icu = I18NConverterAccess::icu(converter);
            EXPECT_EQ(has, I18NDecodingTable::of(icu) != nullptr) << name;
            EXPECT_EQ(has, I18NEncodingTable::of(icu) != nullptr) << name;
        }
    };
    expect(true, {"Shift_JIS", "GB18030", "Big5-HKSCS", "windows-1252"});
    expect(false, {"ISO-2022-JP", "IBM037", "ibm-930", "HZ", "UTF-7", "SCSU", "LMBCS-1", "UTF-16"});
}

TEST(I18NCodeTablesTest, ManyThreadsFillATable) {
    std::mt19937 random(2);
    const std::u16string text = randomText(random);
    const I18NConverter converter("ibm-949");
    const std::string bytes = randomBytes(random, converter, text, false);
    Workers workers(
        4, [&] { EXPECT_EQ(nullptr, differenceFromIcu(converter, bytes, text, {bytes.size()})); });
}

TEST(I18NCodeTablesTest, AllKernelsDecodeSinglesUpToTheBlockWithAnother) {
    std::mt19937 random(1);
    I18NSingleBytes table;
    for (unsigned i = 0; i < 0x100; ++i)
        table.set(static_cast<unsigned char>(i),
                  i == 0x81 ? I18NSingleBytes::kNone : static_cast<char16_t>(random() % 0xD800));
    for (std::size_t run = 0; run < 2000; ++run) {
        const std::size_t size = run % 200;
        std::vector<unsigned char> bytes(size);
        std::vector<char16_t> units(size), expected(size);
        for (unsigned char& byte : bytes)
            byte = static_cast<unsigned char>(random() % (run < 1000 ? 0x81 : 0x100));
        for (std::size_t i = 0; i < size; ++i) expected[i] = table.units[bytes[i]];
        const auto check = [&](I18NSinglesDecoder decode, std::size_t block) {
            I18NSinglesDecoding decoding = {bytes.data(), bytes.data() + size, units.data(),
                                            units.data() + size};
            decode(decoding, table);
            const auto done = static_cast<std::size_t>(decoding.at - bytes.data());
            const auto none = static_cast<std::size_t>(std::find(bytes.begin(), bytes.end(), 0x81) -
                                                       bytes.begin());
            EXPECT_EQ(none / block * block, done) << size;
            EXPECT_TRUE(std::equal(expected.begin(),
                                   expected.begin() + static_cast<std::ptrdiff_t>(done),
                                   units.begin()));
            EXPECT_EQ(units.data() + done, decoding.out);
        };
        check(i18nDecodeSingles, 16);
        if (i18nHasWidestBlocks()) check(i18nDecodeWidestSingles, 64);
    }
}

TEST(I18NCodeTablesTest, AllKernelsCopyASCIIAndCountItsLines) {
    std::mt19937 random(1);
    for (std::size_t run = 0; run < 4000; ++run) {
        const std::size_t size = run % 200;
        std::vector<char> bytes(size), out(size);
        for (char& byte : bytes)
            byte = "ab\r\n\n\r\r\nab\x7F\x1A\xE4"[random() % (run < 2000 ? 10 : 13)];
        const auto check = [&](I18NASCIICopier copier, std::size_t block) {
            I18NASCIICopy copy = {bytes.data(), bytes.data() + size, out.data(), run % 3 == 0};
            copy.odd[0] = 0x7F;
            copy.odd[5] = 0x1A;
            copier(copy);
            const auto done = static_cast<std::size_t>(copy.at - bytes.data());
            const auto other = static_cast<std::size_t>(
                std::find_if(bytes.begin(), bytes.end(),
                             [](char c) { return c < 0 || c == 0x7F || c == 0x1A; }) -
                bytes.begin());
            EXPECT_EQ(other / block * block, done) << size;
            EXPECT_TRUE(std::equal(out.data(), copy.out, bytes.data()));
            bool isAfterCR = run % 3 == 0;
            std::size_t lines = 0;
            for (const char* at = bytes.data(); at != copy.at; isAfterCR = *at++ == '\r')
                lines += *at == '\r' || (*at == '\n' && !isAfterCR) ? 1 : 0;
            EXPECT_EQ(lines, copy.lines);
            EXPECT_EQ(isAfterCR, copy.isAfterCR);
        };
        check(i18nCopyASCIIBlocks, 16);
        if (i18nHasWideBlocks()) check(i18nCopyWideASCIIBlocks, 32);
    }
}
