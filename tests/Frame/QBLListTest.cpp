#include "QBLCore/Frame/QBLList.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <deque>
#include <memory>
#include <random>
#include <ranges>
#include <string>

static_assert(std::bidirectional_iterator<QBLList<int>::iterator>);
static_assert(std::bidirectional_iterator<QBLList<int>::const_iterator>);
static_assert(std::ranges::bidirectional_range<const QBLList<int>>);

namespace {

typedef QBLList<int*> List;
int g_values[4] = {10, 20, 30, 40};
int *g_a = &g_values[0], *g_b = &g_values[1], *g_c = &g_values[2], *g_d = &g_values[3];

void fill(List& list) {
    list.push_back(g_a);
    list.push_back(g_b);
    list.push_back(g_c);
}

std::deque<int*> contents(const List& list) {
    std::deque<int*> out;
    for (int* p : list) out.push_back(p);
    return out;
}

}  // namespace

TEST(QBLListTest, EmptyListIgnoresRemovalsAndHasANullValue) {
    List list;
    EXPECT_TRUE(list.begin() == list.end());
    list.pop_front();
    list.pop_back();
    list.erase(list.begin());
    list.erase(list.end());
    list.clear();
    EXPECT_EQ(0U, list.size());
    for (unsigned int n : {0U, 1U, 0xFFFFFFFFU}) EXPECT_EQ(nullptr, list.at(n)) << n;
}

TEST(QBLListTest, IndexPastTheEndReturnsTheElementAtTheCursor) {
    List list;
    fill(list);
    EXPECT_EQ(g_a, list.at(9)) << "a new cursor is on the first element";
    EXPECT_EQ(g_b, list.at(1));
    EXPECT_EQ(g_c, list.at(2)) << "the ends do not move the cursor";
    EXPECT_EQ(g_a, list.at(0));
    EXPECT_EQ(g_b, list.at(5));
    const List& view = list;
    EXPECT_EQ(g_b, view[3]);
    list.push_back(g_d);
    EXPECT_EQ(g_a, list.at(9)) << "an insertion resets the cursor";
}

TEST(QBLListTest, IteratorsStopAtBothEndsAndErasingTheEndDoesNothing) {
    List list;
    fill(list);
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
    List list, other;
    fill(list);
    fill(other);
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
    List list, other;
    fill(list);
    fill(other);
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

// Compares every operation with std::deque. A model of the list's cursor predicts the results for
// indices past the end.
TEST(QBLListTest, AgreesWithAModelUnderRandomOperations) {
    const unsigned int seed = std::random_device()();
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    const auto roll = [&random](unsigned int n) { return static_cast<unsigned int>(random() % n); };
    QBLList<int> list;
    std::deque<int> model;
    unsigned int cursor = 0;
    unsigned int walk = 0;
    for (int step = 0; step < 20000; ++step) {
        const unsigned int size = list.size();
        ASSERT_EQ(model.size(), size);
        const unsigned int at = size != 0 ? roll(size) : 0;
        QBLList<int>::iterator it = list.begin();
        bool changed = true;
        switch (roll(size < 60 ? 8 : 12)) {
            case 0:
                list.push_back(step);
                model.push_back(step);
                break;
            case 1:
                list.push_front(step);
                model.push_front(step);
                break;
            case 2:
                it[at];
                list.insert(size != 0 ? it : list.end(), step);
                model.insert(model.begin() + at, step);
                break;
            case 3:
                it[at];
                list.erase(it);
                if (size != 0) model.erase(model.begin() + at);
                break;
            case 4:
                list.pop_back();
                if (size != 0) model.pop_back();
                break;
            case 5:
                list.pop_front();
                if (size != 0) model.pop_front();
                break;
            default: {
                changed = false;
                walk += roll(3) == 0 ? 0xFFFFFFFFU : 1;
                const unsigned int n = roll(4) == 0 ? at : walk % (size + 2);
                if (n < size) {
                    ASSERT_EQ(model[n], list.at(n));
                    if (n != 0 && n != size - 1) cursor = n;
                } else if (size != 0) {
                    ASSERT_EQ(model[cursor], list.at(n));
                }
            }
        }
        if (changed) cursor = 0;
    }
    unsigned int n = 0;
    for (int value : list) ASSERT_EQ(model[n++], value);
    for (QBLList<int>::iterator it = list.end(); it != list.begin();) ASSERT_EQ(model[--n], *--it);
}
