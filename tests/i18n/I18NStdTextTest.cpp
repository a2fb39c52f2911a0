// Compiled as C++20, for its concepts, char8_t and transparent hashes.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <functional>
#include <iterator>
#include <ranges>
#include <string>
#include <unordered_map>

#include "i18n/cpp/i18n_literals.hpp"
#include "i18n/cpp/i18n_pooledstring.hpp"
#include "i18n/cpp/i18n_string.hpp"

static_assert(std::bidirectional_iterator<I18NStringIterator>);
static_assert(std::ranges::bidirectional_range<const I18NString>);
static_assert(std::is_nothrow_move_constructible_v<I18NString>);
// None of these types is a standard text: the operations that are not templates take them, or they
// are not text at all.
static_assert(!kI18NIsStdText<I18NString> && !kI18NIsStdText<I18NPooledString>);
static_assert(!kI18NIsStdText<const char*> && !kI18NIsStdText<char[4]> && !kI18NIsStdText<wchar_t>);
static_assert(!kI18NIsStdText<std::nullptr_t> && !kI18NIsStdText<int>);
static_assert(!std::is_convertible_v<std::string, I18NString>);

namespace {

const std::string kNul("a\0\xC3\xA9z", 5);
constexpr wchar_t kHigh = 0xD800;

}  // namespace

TEST(I18NStdTextTest, TakesAndGivesEveryViewAsAWhole) {
    const I18NString text(kNul);
    EXPECT_EQ(4, text.nUnits()) << "a NUL is a character like any other";
    EXPECT_EQ(kNul, text.utf8View());
    EXPECT_EQ(text, I18NString(std::u16string(u"a\0\u00E9z", 4)));
    EXPECT_EQ(text, I18NString(std::u32string_view(U"a\0\u00E9z", 4)));
    EXPECT_EQ(text, L"a\0\u00E9z"_i18n);
    EXPECT_EQ(text, u8"a\0\u00E9z"_i18n);
    EXPECT_EQ("a\0z"_i18n.toWide(), std::wstring(L"a\0z", 3));
    EXPECT_EQ(3, "a\0z"_i18n.nUnits() + ""_i18n.nUnits());
    EXPECT_TRUE("a\0z"_i18n.isUsingAsciiBuffer());
    const std::string malformed = "a\xE4\xB8\xED\xA0\x80zzzzzzzzzzzzzzzzzzzz\xED\xA0\x80";
    for (std::size_t at = 0; at <= malformed.size(); ++at)  // the decoder works in blocks
        EXPECT_TRUE(I18NString(std::string(malformed).insert(at, 1, '\0')).contains(L'\0')) << at;
    const std::u32string mixed = {U'x', char32_t{kHigh}, U'\U0001F600', 0x110000};
    EXPECT_EQ((std::u32string{U'x', char32_t{kHigh}, U'\U0001F600', 0xFFFD}),
              I18NString(mixed).toUtf32());
    EXPECT_EQ(u"\u00E9"_i18n, I18NString(std::string_view("e\xCC\x81"))) << "form C";
    EXPECT_EQ("", (u"\u00E9"_i18n = std::string_view()).utf8View()) << "empty, but UTF-16";
    EXPECT_EQ(u"\x15"_i18n, I18NString(std::string("\x80"))) << "the error value of const char*";
}

TEST(I18NStdTextTest, AppendsAndAssignsPartsOfItself) {
    for (const char* start : {"0123456789abcdef", "01234\u00E96789abcdef"}) {
        I18NString text(start);
        const I18NString before(text);
        text += text.utf8View().substr(0, 5);
        EXPECT_EQ(before + "01234", text);
        text = text.utf8View().substr(1, 3);
        EXPECT_EQ("123", text);
        text = before;
        text.append(std::u16string_view(text.getExternalBuffer(), 9).substr(2));
        EXPECT_EQ(before + std::u16string(before.toUtf16(), 2, 7), text);
        text = std::u16string_view(text.getExternalBuffer(), 9).substr(4);
        EXPECT_EQ(before.toUtf16().substr(4, 5), text.toUtf16());
    }
    I18NString loose;
    loose.useNormalization(false);
    loose = std::string("e\xCC\x81");
    loose += U"e\u0301";
    EXPECT_EQ(4, loose.nUnits());
    EXPECT_TRUE(loose == std::string("e\u0301e\u0301") && loose.ends_with(u"e\u0301"));
    EXPECT_EQ(u8"\u00E9"_i18n, "e"_i18n + u"\u0301");
    EXPECT_EQ("left right"_i18n, std::string("left ") + "right"_i18n);
}

TEST(I18NStdTextTest, ComparesAndSearchesAsWithAString) {
    const std::array<std::string, 6> texts = {"", "a", "ab", "b\xC3\xA9", "\xEF\xBC\x9E", "b"};
    for (const std::string& a : texts) {
        for (const std::string& b : texts) {
            const I18NString left(a), right(b);
            const I18NPooledString pooled(a), other(b);
            const std::string_view view(b);
            const int order = left.compare(right);
            EXPECT_TRUE((left == view) == (order == 0) && (view == left) == (order == 0));
            EXPECT_TRUE((left < view) == (order < 0) && (view < left) == (order > 0));
            EXPECT_TRUE((left <= b.c_str()) == (order <= 0) && (b >= left) == (order <= 0));
            EXPECT_TRUE((pooled < other) == (order < 0) && (pooled >= view) == (order >= 0));
            EXPECT_TRUE((pooled == b.c_str()) == (order == 0) && (right > pooled) == (order < 0));
            EXPECT_EQ(a.starts_with(b), left.starts_with(view));
            EXPECT_EQ(a.ends_with(b), left.ends_with(b.c_str()));
            EXPECT_EQ(a.find(b) != a.npos, left.contains(right));
            EXPECT_EQ(left.find(right, 1), left.find(view, 1));
            EXPECT_EQ(left.rfind(right), left.rfind(b));
            EXPECT_EQ(left.findFirstOf(right), left.findFirstOf(view));
            EXPECT_EQ(left.findLastNotOf(right), left.findLastNotOf(view));
            EXPECT_EQ(I18NString(left).insert(1, right), I18NString(left).insert(1, view));
            EXPECT_EQ(I18NString(left).replace(0, 1, right), I18NString(left).replace(0, 1, b));
        }
    }
    const auto text = "plain \u00E9"_i18n;
    EXPECT_TRUE(text.ends_with(L'\u00E9') && text.contains(u"n e\u0301") && !text.contains('q'));
    EXPECT_TRUE(text.starts_with(static_cast<const char*>(nullptr)) && !text.ends_with(kNul));
    EXPECT_TRUE(text.starts_with(nullptr) && text.ends_with(nullptr) && text.contains(nullptr));
    EXPECT_FALSE(I18NString("a") == kNul || I18NString("a") == std::u32string_view(U"a\0", 2));
}

// A class with both conversions compiled before there were templates; its pointer still wins.
TEST(I18NStdTextTest, LeavesExistingCallsAsTheyWere) {
    struct Both : std::string {
        operator const char*() const { return "pointer"; }
    };
    I18NString text(Both{});
    text.append(Both());
    EXPECT_EQ("pointerpointer", text);
    text = Both();
    EXPECT_EQ("pointer", text);
    text = L'w';
    text += L"i";
    text += I18NPooledString("de");
    EXPECT_EQ("wide", text);
    EXPECT_TRUE(I18NString() == nullptr);
}

TEST(I18NStdTextTest, IteratesInBothDirections) {
    const std::u32string points = {U'a', char32_t{kHigh}, U'\U0001F600', U'z'};
    const I18NString text(points);
    EXPECT_EQ(points, std::u32string(text.begin(), text.end()));
    EXPECT_TRUE(std::equal(text.rbegin(), text.rend(), points.rbegin(), points.rend()));
    EXPECT_TRUE(std::equal(text.begin(), text.end(), I18NString(text).begin()));
    EXPECT_EQ(2, std::find(text.begin(), text.end(), U'\U0001F600').getOffset());
    EXPECT_EQ(text.end(), std::ranges::find(text, L'q'));
    EXPECT_EQ(L'z', *--text.end());
    std::u32string seen;
    for (wchar_t c : text) seen += static_cast<char32_t>(c);
    EXPECT_EQ(points, seen);
    EXPECT_TRUE(*text.begin() == 'a' && U'a' == *text.begin() && *text.begin() != *text.rbegin());
    EXPECT_FALSE(*"\u00E9"_i18n.begin() == '\xE9') << "a byte is not a code point";
}

TEST(I18NStdTextTest, FindsPooledKeysByText) {
    typedef std::hash<I18NPooledString> Hash;
    std::unordered_map<I18NPooledString, int, Hash, std::equal_to<>> counts;
    ++counts[I18NPooledString(std::string("word"))];
    ++counts[I18NPooledString("caf\xC3\xA9")];
    ++counts[I18NPooledString("cafe\xCC\x81")];
    EXPECT_EQ(2U, counts.size()) << "one text, though its bytes differ";
    EXPECT_TRUE(counts.contains("word") && counts.contains("word"_i18n));
    EXPECT_EQ(2, counts.find(std::string_view("cafe\xCC\x81"))->second);
    I18NPooledString holder;
    holder = std::u16string(u"\u00E9\0z", 3);
    EXPECT_EQ(u8"\u00E9", holder) << "up to the NUL";
}
