// Doubles the input of every row four times, and counts the work for each length. The work must not
// grow faster than the row states, which is also what docs/limits.md states. A row that grows
// faster fails after the last two doublings: a margin of 1.6 is far below the factor of 4 between
// linear and quadratic work.
#include <gtest/gtest.h>

#include <cmath>
#include <iostream>
#include <sstream>

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
    const double logarithms = std::log2(length * factor) / std::log2(length);
    return factor * (order == Order::kLinear      ? 1
                     : order == Order::kLinearLog ? logarithms
                                                  : factor);
}

class RowTest : public testing::Test {
public:
    explicit RowTest(const cost::Row& row) : m_row(row) {}

    void TestBody() override {
        cost::Work filled;  // the first run fills caches
        m_row.run(m_row.first, filled);
        std::vector<cost::Work> works(kDoublings + 1);
        for (int i = 0; i <= kDoublings; ++i) m_row.run(m_row.first << i, works[i]);
        const auto before = static_cast<double>(m_row.first << (kDoublings - 2));
        const double margin = cost::Work::isExact() ? kMargin : kMarginOfBlocks;
        for (std::size_t k = 0; k < filled.counts().size(); ++k) {
            std::ostringstream line;
            for (const char c : works[0].counts()[k].name) line << (c >= ' ' && c <= '~' ? c : '.');
            line << ':';
            for (const cost::Work& work : works) line << ' ' << work.counts()[k].count;
            std::cout << line.str() << '\n';
            const std::uint64_t most = works[kDoublings].counts()[k].count;
            const std::uint64_t least = works[kDoublings - 2].counts()[k].count;
            const double growth =
                static_cast<double>(most) / static_cast<double>(std::max(least, kLeast));
            EXPECT_LE(growth, margin * allowed(m_row.order, before, 4)) << line.str();
        }
    }

private:
    const cost::Row& m_row;
};

}  // namespace

/// Sums of n additions, and copies of blocks, count as what they are.
TEST(CostTest, CountsInstructionsAndCopies) {
    if (!cost::Work::isExact()) return;
    cost::Work work;
    work.of("sum", [] {
        for (volatile int i = 0; i < 10000; i = i + 1) continue;
    });
    const std::string block(1 << 20, 'a');
    work.of("copy", [&] { cost::use(std::string(block)); });
    for (const auto& each : work.counts()) EXPECT_GT(each.count, 10000U) << each.name;
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
