// Lets every allocation of every row fail once, first alone and then with all later ones. After
// each failure, checks that the row failed as promised or gave the same result as without the
// failure, that it succeeds when memory is available again, and that no block is lost.
#include <gtest/gtest.h>

#include <new>
#include <string>

#include "QBLCore/Exceptions/QBLOutOfMemoryError.hpp"
#include "QBLCore/Exceptions/QBLSystemError.hpp"
#include "QBLCore/Exceptions/QBLThreadResourceError.hpp"
#include "tests/faults/Attempt.hpp"
#include "tests/faults/Rows.hpp"

// The C library loses a block if memory runs out while it loads a library.
// NOLINTBEGIN(bugprone-reserved-identifier,readability-identifier-naming): the sanitizer's name
extern "C" [[gnu::visibility("default")]] const char* __lsan_default_suppressions();
const char* __lsan_default_suppressions() { return "leak:_dl_map_object_deps"; }
// NOLINTEND(bugprone-reserved-identifier,readability-identifier-naming)

namespace faults {

std::vector<Row>& rows() {
    static std::vector<Row> s_rows;
    return s_rows;
}

}  // namespace faults

namespace {

using faults::attempt;
using faults::Mode;
using faults::Outcome;

constexpr long kMostAllocations = 100000, kSampled = 100;

/// Names the current exception.
Outcome failure() {
    const faults::Calm calm;
    try {
        throw;
    } catch (const faults::Broken& broken) {
        return {false, ~0U, broken.what};
    } catch (const faults::Refused&) {
        return {false, faults::kRefuses, "refused"};
    } catch (const QBLOutOfMemoryError&) {
        return {false, faults::kOutOfMemory, "QBLOutOfMemoryError"};
    } catch (const QBLThreadResourceError&) {
        return {false, faults::kThreadResource, "QBLThreadResourceError"};
    } catch (const QBLSystemError& error) {
        return {false, faults::kOther, error.getThrowableName(), error.getErrorCode()};
    } catch (const QBLThrowable& error) {
        return {false, faults::kOther, error.getThrowableName()};
    } catch (const std::bad_alloc&) {
        return {false, faults::kBadAlloc, "std::bad_alloc"};
    } catch (const std::exception& error) {
        return {false, ~0U, error.what()};
    }
}

}  // namespace

faults::Outcome faults::attempt(const Row& row) {
    try {
        return {true, kNothing, row.run()};
    } catch (...) {
        return failure();
    }
}

namespace {

class RowTest : public testing::Test {
public:
    explicit RowTest(const faults::Row& row) : m_row(row) {}

    void TestBody() override {
        for (int round = 0; round < 2; ++round) {  // the first run may fill caches
            const Outcome clean = attempt(m_row);
            ASSERT_TRUE(clean.done) << clean.text;
            ASSERT_TRUE(round == 0 || clean.text == m_expected) << clean.text;
            m_expected = clean.text;
        }
        // Rows with very many allocations: all of the first ones, and a sample of the others.
        for (const Mode mode : {Mode::kOnce, Mode::kFromThenOn})
            for (long n = 0; failAt(n, mode) && !HasFailure(); n += 1 + n / kSampled)
                ASSERT_LT(n, kMostAllocations);
    }

private:
    /// @return false if the row has no more than n allocations
    bool failAt(long n, Mode mode) {
        SCOPED_TRACE(testing::Message() << "allocation " << n << " of mode " << int(mode));
        const long before = faults::liveBlocks();
        long live[4] = {};
        bool failed = false;
        // The first failure may change what caches hold. A leak shows in every run.
        for (long& blocks : live) {
            faults::arm(n, mode);
            Outcome outcome = attempt(m_row);
            failed = faults::hasFailed();
            faults::arm(-1, mode);
            check(outcome, failed);
            outcome = attempt(m_row);
            EXPECT_TRUE(outcome.done) << "retry: " << outcome.text;
            EXPECT_EQ(m_expected, outcome.text) << "retry";
            outcome.text = {};
            blocks = faults::liveBlocks();
            if (!failed || HasFailure() || blocks <= before) return failed;
        }
        EXPECT_FALSE(live[0] < live[1] && live[1] < live[2] && live[2] < live[3])
            << "lost blocks: " << live[3] - live[0] << " in three runs";
        return failed;
    }

    void check(const Outcome& outcome, bool failed) const {
        if (outcome.done) {
            EXPECT_EQ(m_expected, outcome.text);
        } else {
            EXPECT_TRUE(failed) << outcome.text;
            EXPECT_TRUE(outcome.promise != ~0U && (outcome.promise & m_row.promises) != 0)
                << outcome.text;
        }
    }

    const faults::Row& m_row;
    std::string m_expected;
};

}  // namespace

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
#ifndef __clang_analyzer__  // it takes the factories of the tests for lost
    for (const faults::Row& row : faults::rows())
        testing::RegisterTest("Faults", row.name.c_str(), nullptr, nullptr, __FILE__, __LINE__,
                              [&row]() -> testing::Test* { return new RowTest(row); });
#endif
    faults::registerCallTests();
    return RUN_ALL_TESTS();
}
