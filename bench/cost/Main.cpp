// Doubles the input of every row four times, and counts the work for each length. The work must not
// grow faster than the row states, which is also what docs/limits.md states. A row that grows
// faster fails after the last two doublings: a margin of 1.6 is far below the factor of 4 between
// linear and quadratic work.
#include <gtest/gtest.h>

#include <cmath>
#include <iostream>

#include "QBLCore/Frame/QBLCore.h"
#include "bench/cost/Work.hpp"
#include "i18n/cpp/i18n_init.h"

namespace {

using cost::Order;

constexpr int kDoublings = 4;
// Blocks and bytes grow in steps, for example when a table doubles.
constexpr double kMargin = 1.6, kMarginOfBlocks = 3;
constexpr std::uint64_t kLeast = 1000;  // less work does not tell how it grows

/// By which factor the work may grow when the length grows by a factor.
double allowed(Order order, double length, double factor) {
    switch (order) {
        case Order::kConstant:
            return 1;
        case Order::kLinear:
            return factor;
        case Order::kLinearLog:
            return factor * std::log2(length * factor) / std::log2(length);
        default:
            return factor * factor;
    }
}

class RowTest : public testing::Test {
public:
    explicit RowTest(const cost::Row& row) : m_row(row) {}

    void TestBody() override {
        cost::Work filled;  // the first run fills caches
        m_row.run(m_row.first, filled);
        std::uint64_t counts[kDoublings + 1];
        for (int i = 0; i <= kDoublings; ++i) {
            cost::Work work;
            m_row.run(m_row.first << i, work);
            counts[i] = work.count();
            RecordProperty("work" + std::to_string(i), std::to_string(counts[i]));
            std::cout << counts[i] << (i < kDoublings ? " " : "\n");
        }
        const auto before = static_cast<double>(m_row.first << (kDoublings - 2));
        const double growth = static_cast<double>(counts[kDoublings]) /
                              static_cast<double>(std::max(counts[kDoublings - 2], kLeast));
        const double margin = cost::Work::isExact() ? kMargin : kMarginOfBlocks;
        EXPECT_LE(growth, margin * allowed(m_row.order, before, 4));
    }

private:
    const cost::Row& m_row;
};

}  // namespace

/// Sums of n additions, and copies of blocks, count as what they are.
TEST(CostTest, CountsInstructionsAndCopies) {
    if (!cost::Work::isExact()) return;
    cost::Work sum, copy;
    sum.of([] {
        for (volatile int i = 0; i < 10000; i = i + 1) continue;
    });
    EXPECT_GT(sum.count(), 10000U);
    const std::string block(1 << 20, 'a');
    copy.of([&] { cost::use(std::string(block)); });
    EXPECT_GT(copy.count(), 10000U);
}

int main(int argc, char** argv) {
    qblCoreInitialize();
    I18NInitialize();
#ifndef __clang_analyzer__  // it takes the factories of the tests for lost
    for (const cost::Row& row : cost::rows())
        testing::RegisterTest("Cost", row.name, nullptr, nullptr, __FILE__, __LINE__,
                              [&row]() -> testing::Test* { return new RowTest(row); });
#endif
    testing::InitGoogleTest(&argc, argv);
    std::cout << "counts " << (cost::Work::isExact() ? "instructions" : "blocks and bytes") << '\n';
    const int status = RUN_ALL_TESTS();
    I18NTerminate();
    qblCoreTerminate();
    return status;
}
