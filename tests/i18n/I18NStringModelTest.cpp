#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <iostream>
#include <random>
#include <vector>

#include "fuzz/support/SearchChecks.hpp"
#include "fuzz/support/StringChecks.hpp"
#include "i18n/cpp/i18n_internal_resources.hpp"
#include "tests/support/TempTree.hpp"
#include "tests/support/Workers.hpp"

namespace {

/// Returns the value of QBL_TEST_SEED, or a random seed if it is not set.
unsigned seedOfThisRun() {
    const char* const wanted = std::getenv("QBL_TEST_SEED");
    const unsigned seed = wanted != nullptr
                              ? static_cast<unsigned>(std::strtoul(wanted, nullptr, 0))
                              : std::random_device{}();
    std::cout << "QBL_TEST_SEED=" << seed << std::endl;
    return seed;
}

/// Calls a check with random bytes, in each round with other ones.
template <class Check>
void checkRandomInputs(int rounds, std::size_t size, Check check) {
    std::minstd_rand random(seedOfThisRun());
    std::vector<std::uint8_t> bytes(size);
    for (int round = 0; round < rounds / (kSanitizer ? 10 : 1); ++round) {
        for (std::uint8_t& byte : bytes) byte = static_cast<std::uint8_t>(random() >> 8);
        Input input(bytes.data(), bytes.size());
        ASSERT_TRUE(check(input, round)) << "round " << round;
    }
}

}  // namespace

// Offsets and counts that are out of range, and texts of each kind, also null.
TEST(I18NStringTest, WideTextsEditAsStringsDo) {
    const std::pair<const wchar_t*, const char16_t*> texts[] = {
        {nullptr, u""},         {L"", u""},
        {L"x", u"x"},           {L"xyz", u"xyz"},
        {L"\u4E2D", u"\u4E2D"}, {L"a\U0001F600z", u"a\U0001F600z"}};
    for (const std::u16string base : {u"", u"abcd", u"a\u4E2D\u4E2Dd"})
        for (const auto& [wide, units] : texts)
            for (const int offset : {INT_MIN, -1, 0, 1, 3, 4, 5, INT_MAX})
                for (const int count : {INT_MIN, -1, 0, 1, 2, 4, 5, INT_MAX}) {
                    const std::string where = std::to_string(offset) + ", " + std::to_string(count);
                    const std::size_t at =
                        offset < 0 ? 0 : std::min<std::size_t>(offset, base.size());
                    std::u16string inserted = base;
                    inserted.insert(at, units);
                    EXPECT_EQ(I18NString(inserted), I18NString(base).insert(offset, wide)) << where;
                    EXPECT_EQ(I18NString(base).replace(offset, count, I18NString(units)),
                              I18NString(base).replace(offset, count, wide))
                        << where;
                    I18NString appended(base);
                    EXPECT_EQ(I18NString(base + units), appended.append(wide)) << where;
                    EXPECT_EQ(I18NString(units), appended = wide) << where;
                }
}

TEST(I18NStringTest, FollowsAModelThroughRandomEdits) {
    const WorkingTree tree;
    tree.file("res.xml", "<nonNormalizableCharacters value=\"0xFA10;0x1100;0x2F800\"/>");
    I18NInternalResources::__changeResourceFileName("./res.xml");
    I18NInternalResources& resources = I18NInternalResources::getInternalResources();
    for (const std::u32string exempt : {U"", U"\uFA10\u1100\U0002F800"}) {
        if (!exempt.empty()) resources.loadSequenceTable();
        checkRandomInputs(600, 4000, [&](Input& input, int round) {
            return stringchecks::followsModel(input, round % 5 < 2, exempt);
        });
    }
    resources.release();
}

TEST(I18NStringTest, SearchesAndMatchesAsNaiveSearchesDo) {
    checkRandomInputs(20000, 100,
                      [](Input& input, int) { return searchchecks::areAsNaive(input); });
}
