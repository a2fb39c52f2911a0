#include <gtest/gtest.h>
#include <unicode/normalizer2.h>
#include <unicode/unistr.h>

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <iostream>
#include <random>

#include "i18n/cpp/i18n_internal_resources.hpp"
#include "i18n/cpp/i18n_string.hpp"
#include "tests/support/TempTree.hpp"
#include "tests/support/Workers.hpp"

namespace {

constexpr int kRounds = kSanitizer ? 25 : 250;
constexpr int kSteps = 400;

icu::UnicodeString icuOf(const std::u16string& text) {
    return icu::UnicodeString(false, text.data(), static_cast<int>(text.size()));
}

bool isASCII(const std::u16string& text) {
    return std::all_of(text.begin(), text.end(), [](char16_t c) { return c < 0x80; });
}

/// Returns the value of QBL_TEST_SEED, or a random seed if it is not set.
unsigned seedOfThisRun() {
    const char* const wanted = std::getenv("QBL_TEST_SEED");
    const unsigned seed = wanted != nullptr
                              ? static_cast<unsigned>(std::strtoul(wanted, nullptr, 0))
                              : std::random_device{}();
    std::cout << "QBL_TEST_SEED=" << seed << std::endl;
    return seed;
}

/// A resource file in a temporary working directory.
class Resources {
public:
    explicit Resources(const char* text) : m_before(std::filesystem::current_path()) {
        m_tree.file("res.xml", text);
        std::filesystem::current_path(m_tree.root());
        I18NInternalResources::__changeResourceFileName("./res.xml");
    }
    ~Resources() {
        get().release();
        std::filesystem::current_path(m_before);
    }
    static I18NInternalResources& get() { return I18NInternalResources::getInternalResources(); }

private:
    const std::filesystem::path m_before;
    const TempTree m_tree;
};

/// The expected content and state of a string.
struct Model {
    std::u16string units;
    bool ascii = true;
    bool normalizes = true;
    std::u32string exempt;

    bool isExempt() const {
        const icu::UnicodeString text = icuOf(units);
        return std::any_of(exempt.begin(), exempt.end(),
                           [&](char32_t c) { return text.indexOf(static_cast<UChar32>(c)) >= 0; });
    }
    /// Updates the model after a piece was added to the units.
    void changed(const std::u16string& piece) {
        ascii = ascii && isASCII(piece);
        if (!normalizes || isExempt()) return;
        UErrorCode status = U_ZERO_ERROR;
        const icu::UnicodeString text = icuOf(units);
        const icu::UnicodeString result =
            icu::Normalizer2::getNFCInstance(status)->normalize(text, status);
        units.assign(result.getBuffer(), static_cast<std::size_t>(result.length()));
    }
    /// Returns i, or i - 1 if i is within a surrogate pair.
    std::size_t atCodePoint(std::size_t i) const {
        const bool within = i > 0 && i < units.size() && (units[i] & 0xFC00) == 0xDC00 &&
                            (units[i - 1] & 0xFC00) == 0xD800;
        return i - (within ? 1 : 0);
    }
};

/// Compares all visible properties of a string with the model, and its conversions twice.
void expectSame(const Model& model, I18NString& text) {
    std::string utf8;
    icuOf(model.units).toUTF8String(utf8);
    const int size = static_cast<int>(model.units.size());
    ASSERT_EQ(model.units, text.toUtf16());
    ASSERT_EQ(size, text.nUnits());
    ASSERT_EQ(icuOf(model.units).countChar32(), text.length());
    ASSERT_EQ(model.ascii, text.isUsingAsciiBuffer());
    ASSERT_TRUE(text.isNormalized() || model.isExempt());
    int length = 0, wideLength = 0;
    const char* const bytes = text.c_str(nullptr, &length);
    const char* const wide = text.c_str("UTF-16", &wideLength);
    const int widestZero = size == 0 && !model.ascii ? 4 : 0;
    ASSERT_EQ(widestZero != 0 ? 4 : static_cast<int>(utf8.size()) + 1, length);
    ASSERT_EQ(0, std::memcmp(utf8.c_str(), bytes, utf8.size() + 1));
    ASSERT_EQ(widestZero != 0 ? 4 : size * 2 + 2, wideLength);
    ASSERT_EQ(0, std::memcmp(model.units.c_str(), wide, model.units.size() * 2 + 2));
    if (!model.ascii) {
        ASSERT_EQ(icuOf(model.units), text.getUnicodeString());
        ASSERT_EQ(0, text.getExternalBuffer()[size]);
    }
    ASSERT_EQ(bytes, text.c_str());
    ASSERT_EQ(wide, text.c_str("UTF-16"));
}

/// Applies a random edit to the model and the string.
void edit(std::minstd_rand& random, const std::u16string& piece, Model& model, I18NString& text) {
    const std::u16string before = model.units;
    const std::size_t at = model.atCodePoint(random() % (before.size() + 1));
    const std::size_t end =
        model.atCodePoint(std::min<std::size_t>(at + random() % 4, before.size()));
    const std::size_t count = end > at ? end - at : 0;
    const auto offset = static_cast<int>(at);
    I18NString other;
    other.useNormalization(false);
    other = std::wstring(piece.begin(), piece.end()).c_str();
    switch (random() % 8) {
        case 0:
            model.units.insert(at, piece);
            text.insert(offset, other);
            return model.changed(piece);
        case 1:
            model.units.erase(at, count);
            text.erase(offset, static_cast<int>(count));
            return model.changed(u"");
        case 2:
            model.units.replace(at, count, piece);
            text.replace(offset, static_cast<int>(count), other);
            return model.changed(piece);
        case 3:
            model.units += piece;
            if (piece == u"\xD87E" || piece == u"\xDC00")
                text += other;
            else
                text += other.c_str();
            return model.changed(piece);
        case 4:
            if (before.size() < 100) return;
            model.units.erase(0, at);
            text = std::wstring(before.begin() + offset, before.end()).c_str();
            return model.changed(model.units);
        case 5: {
            I18NString copy(text);
            text = std::move(copy);
            return;
        }
        case 6:
            if (random() % 20 != 0) return;
            model.units.clear();
            text.remove();
            return;
        default:
            if (before.size() > 300) return;
            model.units += before;
            text += text;
            return model.changed(before);
    }
}

}  // namespace

// Offsets and counts that are out of range, and texts of each kind, also null.
TEST(I18NStringTest, WideTextsEditAsStringsDo) {
    const struct {
        const wchar_t* wide;
        const char16_t* units;
    } texts[] = {{nullptr, u""},         {L"", u""},
                 {L"x", u"x"},           {L"xyz", u"xyz"},
                 {L"\u4E2D", u"\u4E2D"}, {L"a\U0001F600z", u"a\U0001F600z"}};
    for (const std::u16string base : {u"", u"abcd", u"a\u4E2D\u4E2Dd"})
        for (const auto& text : texts)
            for (const int offset : {INT_MIN, -1, 0, 1, 3, 4, 5, INT_MAX})
                for (const int count : {INT_MIN, -1, 0, 1, 2, 4, 5, INT_MAX}) {
                    const std::string where = std::to_string(offset) + ", " + std::to_string(count);
                    const std::size_t at =
                        offset < 0 ? 0 : std::min<std::size_t>(offset, base.size());
                    std::u16string inserted = base;
                    inserted.insert(at, text.units);
                    EXPECT_EQ(I18NString(inserted), I18NString(base).insert(offset, text.wide))
                        << where;
                    EXPECT_EQ(I18NString(base).replace(offset, count, I18NString(text.units)),
                              I18NString(base).replace(offset, count, text.wide))
                        << where;
                    I18NString appended(base);
                    EXPECT_EQ(I18NString(base + text.units), appended.append(text.wide)) << where;
                    EXPECT_EQ(I18NString(text.units), appended = text.wide) << where;
                }
}

TEST(I18NStringTest, FollowsAModelThroughRandomEdits) {
    std::minstd_rand random(seedOfThisRun());
    // The ASCII pieces come first, because some rounds use only these.
    const std::u16string pieces[] = {u"",
                                     u"a",
                                     u"bcd",
                                     u"0123456789012345678901234567890123456789",
                                     u"e",
                                     u"\u0301",
                                     u"\u00E9",
                                     u"\u0323",
                                     u"\u4E2D",
                                     u"\u1100",
                                     u"\u1161\u11A8",
                                     u"\U0001F600",
                                     u"\u1161",
                                     u"\uFA10",
                                     u"\u0301\u0323\u0301",
                                     u"\xD87E",
                                     u"\xDC00",
                                     u"\u0344"};
    const Resources resources("<nonNormalizableCharacters value=\"0xFA10;0x1100;0x2F800\"/>");
    for (int round = 0; round < kRounds; ++round) {
        const std::size_t few = round % 5 < 2 ? 4 : std::size(pieces);
        Model model;
        I18NString text;
        model.normalizes = round % 5 != 4;
        if (round == kRounds / 3) Resources::get().loadSequenceTable();
        if (round >= kRounds / 3) model.exempt = U"\uFA10\u1100\U0002F800";
        text.useNormalization(model.normalizes);
        for (int step = 0; step < kSteps; ++step) {
            edit(random, pieces[random() % few], model, text);
            expectSame(model, text);
            if (HasFatalFailure()) FAIL() << "round " << round << " step " << step;
        }
    }
}
