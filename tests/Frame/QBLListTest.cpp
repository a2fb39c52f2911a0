#include "QBLCore/Frame/QBLList.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <deque>
#include <memory>
#include <random>
#include <ranges>
#include <string>
#include <vector>

static_assert(std::bidirectional_iterator<QBLList<int>::iterator>);
static_assert(std::bidirectional_iterator<QBLList<int>::const_iterator>);
static_assert(std::ranges::bidirectional_range<const QBLList<int>>);

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

typedef QBLList<int*> List;
int g_values[4] = {10, 20, 30, 40};
int *g_a = &g_values[0], *g_b = &g_values[1], *g_c = &g_values[2], *g_d = &g_values[3];

List filled() { return {g_a, g_b, g_c}; }

std::deque<int*> contents(const List& list) { return {list.begin(), list.end()}; }

}  // namespace

TEST(QBLListTest, IteratorsStopAtBothEndsAndErasingTheEndDoesNothing) {
    List list = filled();
    List::iterator it = list.end();
    EXPECT_TRUE(++it == list.end());
    EXPECT_TRUE(list.erase(list.end()) == list.end());
    it = list.begin();
    EXPECT_TRUE(--it == list.begin());
    EXPECT_EQ(g_b, *++it);
    it = list.insert(it, g_d);
    EXPECT_EQ(g_b, *it) << "an insertion leaves the iterator on its element";
    EXPECT_EQ((std::deque<int*>{g_a, g_d, g_b, g_c}), contents(list));
    const unsigned int before = it.index;
    it = list.erase(it);
    EXPECT_EQ(g_c, *it);
    EXPECT_EQ(before, it.index);
    EXPECT_EQ(g_c, list.end()[2]) << "an index from the end counts from the first element";
    EXPECT_EQ(g_a, list.end()[9]);
}

TEST(QBLListTest, RangeErasureStopsAtTheEndForAnyRange) {
    List list = filled(), other = filled();
    List::iterator second = ++list.begin();
    EXPECT_TRUE(list.erase(second, list.begin()) == list.begin());
    EXPECT_EQ((std::deque<int*>{g_a}), contents(list));
    list.erase(list.begin(), other.begin());
    EXPECT_TRUE(list.empty());
    list.push_back(g_b);
    list.erase(other.begin(), other.end());
    list.erase(other.end());
    EXPECT_EQ(1U, list.size());
    EXPECT_EQ(3U, other.size());
    List::iterator third = ++ ++other.begin();
    EXPECT_EQ(g_c, other.erase(other.begin(), third)[0])
        << "the result is at the element after the range";
}

TEST(QBLListTest, IgnoresPositionsOfAnotherList) {
    List list = filled(), other = filled();
    list.insert(other.begin(), g_d);
    list.insert(List::iterator(), g_d);
    list.splice(other.begin(), other, other.begin());
    list.splice(list.begin(), other, list.begin());
    list.splice(list.begin(), list, list.begin());
    for (const List* each : {&list, &other})
        EXPECT_EQ((std::deque<int*>{g_a, g_b, g_c}), contents(*each));
    EXPECT_EQ(3U, list.size() + other.size() - 3);
    list.splice(list.begin(), list, --list.end());
    EXPECT_EQ((std::deque<int*>{g_c, g_a, g_b}), contents(list));
}

TEST(QBLListTest, IteratorsOfBothKindsCompareAndReachMembers) {
    QBLList<std::string> list;
    list.push_back("four");
    const QBLList<std::string>& view = list;
    EXPECT_EQ(4U, list.begin()->size() + view.begin()->size() - 4);
    EXPECT_TRUE(list.begin() == view.begin() && view.begin() == list.begin());
    EXPECT_TRUE(list.begin() != view.end() && view.end() != list.begin());
}

TEST(QBLListTest, IsAContainerForAlgorithmsAndAdaptors) {
    QBLList<int> list = {3, 1, 2};
    EXPECT_EQ(list.cend(), std::find(list.cbegin(), list.cend(), 9));
    list.erase(std::find(list.cbegin(), list.cend(), 1));
    EXPECT_EQ(7, *list.emplace(list.cbegin(), 7));
    list.append_range(list);
    std::replace(list.begin(), list.end(), 2, 5);
    std::fill_n(std::front_inserter(list), 1, list.back() = 4);
    EXPECT_EQ((std::deque<int>{4, 3, 7, 5, 3, 7, 4}),
              std::deque<int>(list.crbegin(), list.crend()));
    list.assign(++list.begin(), list.end());
    list.emplace(QBLList<int>{1}.begin(), 8);
    EXPECT_EQ(6U, list.size());
    list = {};
    EXPECT_EQ(list.rend(), list.rbegin());
    QBLList<std::unique_ptr<int>> owners;
    owners.emplace_front(new int(1));
    EXPECT_EQ(1, *owners.emplace_back(std::move(owners.front())));
}

TEST(QBLListTest, CopiesItsOwnElementBeforeLinking) {
    QBLList<std::string> list;
    list.push_back("first");
    for (int i = 0; i < 3; ++i) list.push_back(list.front());
    EXPECT_EQ("first", list.at(2));
}

// The fuzz target compares each operation, and the position of the cursor, with a std::deque.
TEST(QBLListTest, AgreesWithAModelUnderRandomOperations) {
    std::mt19937 random(1);
    for (int round = 0; round < 10; ++round) {
        std::vector<std::uint8_t> commands;  // fewer erasures, so that the list grows
        for (int step = 1; step <= 2000; ++step) {
            const char command = step % 200 == 0 ? '6' : "0120123457777777"[random() % 16];
            commands.push_back(static_cast<std::uint8_t>(command - '0'));
            commands.push_back(static_cast<std::uint8_t>(random()));
        }
        LLVMFuzzerTestOneInput(commands.data(), commands.size());
    }
}
