#include <gtest/gtest.h>
#include <unicode/uchar.h>

#include <cstdio>
#include <memory>
#include <set>
#include <sstream>

#include "i18n/cpp/i18n_string.hpp"
#include "tests/support/Workers.hpp"

namespace {

const char kFile[] = "/usr/share/unicode/NormalizationTest.txt.bz2";

/// Returns the text of the file; empty if the file or bzip2 is missing.
std::string conformanceFile() {
    const std::string command = std::string("bzip2 -dc ") + kFile + " 2>/dev/null";
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> pipe(popen(command.c_str(), "r"), pclose);
    std::string text;
    char piece[65536];
    for (std::size_t n = 1; pipe != nullptr && n != 0;) {
        n = std::fread(piece, 1, sizeof piece, pipe.get());
        text.append(piece, n);
    }
    return text;
}

std::wstring wideOf(const std::u16string& units) {
    return std::wstring(units.begin(), units.end());
}

std::u16string normalized(const std::u16string& text, I18NNormalizationForms form) {
    I18NString string;
    string.useNormalization(false);
    const std::wstring wide = wideOf(text);
    string = wide.c_str();
    string.useNormalization(true);
    return string.normalize(form).toUtf16();
}

/// Reads a column such as "1E0A 0323;" as text; empty after the last column of the line.
std::u16string column(std::istream& line) {
    std::string codes;
    std::getline(line, codes, ';');
    std::istringstream words(codes);
    std::wstring text;
    for (unsigned long code = 0; words >> std::hex >> code;) text += static_cast<wchar_t>(code);
    I18NString string;
    string.useNormalization(false);
    return (string = text.c_str()).toUtf16();
}

void expectForms(const std::u16string (&columns)[5]) {
    const auto& [source, nfc, nfd, nfkc, nfkd] = columns;
    for (int i = 0; i < 5; ++i) {
        EXPECT_EQ(i < 3 ? nfc : nfkc, normalized(columns[i], I18N_NFC));
        EXPECT_EQ(i < 3 ? nfd : nfkd, normalized(columns[i], I18N_NFD));
        EXPECT_EQ(nfkc, normalized(columns[i], I18N_NFKC));
        EXPECT_EQ(nfkd, normalized(columns[i], I18N_NFKD));
        EXPECT_EQ(i < 3 ? nfc : nfkc, I18NString(wideOf(columns[i]).c_str()).toUtf16());
    }
}

}  // namespace

TEST(I18NStringTest, PassesTheUnicodeNormalizationTest) {
    std::istringstream file(conformanceFile());
    std::string line;
    if (!std::getline(file, line)) GTEST_SKIP() << kFile << " not found: run ./dev setup test";
    if (line.find(std::string("-") + U_UNICODE_VERSION + ".") == std::string::npos)
        GTEST_SKIP() << line << " is not for ICU's Unicode " << U_UNICODE_VERSION;
    std::set<wchar_t> listed;
    int rows = 0;
    while (std::getline(file, line) && !testing::Test::HasFailure()) {
        if (line.empty() || line[0] == '#' || line[0] == '@') continue;
        if (line.find(' ') > line.find(';'))
            listed.insert(static_cast<wchar_t>(std::stoul(line, nullptr, 16)));
        SCOPED_TRACE(line);
        std::istringstream fields(line);
        if (++rows % 10 != 0 && kSanitizer) continue;
        std::u16string columns[5];
        for (std::u16string& each : columns) each = column(fields);
        expectForms(columns);
    }
    EXPECT_GT(rows, 18000);
    // All characters that the file does not list stay unchanged in every form. Line ends between
    // the characters keep them from combining.
    constexpr wchar_t kBlock = 0x1000;
    for (wchar_t block = 0; block < 0x110000; block += kSanitizer ? 16 * kBlock : kBlock) {
        std::wstring text;
        for (wchar_t c = block; c < block + kBlock; ++c)
            if (c != 0 && listed.count(c) == 0 && (c < 0xD800 || c > 0xDFFF)) (text += c) += L'\n';
        I18NString others;
        others.useNormalization(false);
        const std::u16string units = (others = text.c_str()).toUtf16();
        for (const auto form : {I18N_NFC, I18N_NFD, I18N_NFKC, I18N_NFKD})
            ASSERT_EQ(units, normalized(units, form)) << "characters from " << block;
        ASSERT_EQ(units, I18NString(text.c_str()).toUtf16()) << "characters from " << block;
    }
}
