#include <gtest/gtest.h>
#include <sys/resource.h>

#include <random>

#include "fuzz/support/Tokens.hpp"
#include "tests/faults/Injector.hpp"
#include "tests/support/Child.hpp"
#include "tests/support/Workers.hpp"

namespace {

using Text = std::unique_ptr<char[]>;

/// Returns random bytes without nulls.
/// @param kinds  number of different bytes; a text with few different bytes compresses well
std::string randomText(std::mt19937& random, std::size_t count, unsigned kinds) {
    std::string text(count, ' ');
    for (char& c : text) c = static_cast<char>(1 + random() % kinds);
    return text;
}

TEST(QBLSquisherTest, RejectsDamagedTokens) {
    const std::string text = "a text that is squished", packed = compressed(text);
    const std::string good = tokenOf(packed, text.size());
    const std::string padded = tokenOf(packed + '-', text.size());
    std::string changed = good, invalid = good;
    changed.back() = changed.back() == 'A' ? 'Q' : 'A';
    invalid.back() = '}';
    const struct {
        int first, second;  // codes of the steps
        std::string token;
    } rows[] = {{0, 0, good},
                {0, 0, good + "\n"},
                {0, 0, padded},
                {0, 0, tokenOf(packed, 10000000)},
                {0, -3, tokenOf(packed, 0)},
                {0, -5, tokenOf(packed, text.size() - 1)},
                {0, -5, tokenOf(packed.substr(0, packed.size() - 1), text.size())},
                {1, 0, invalid},
                {2, 0, tokenOf(packed, 10000001)},
                {3, 0, changed},
                {3, 0, padded.substr(0, padded.size() - 1) + 'A'},
                {3, 0, good.substr(0, 10)},
                {3, 0, tokenOf(packed, 0xFFFFFFFF, 1)},
                {3, 0, ""}};
    ASSERT_EQ('=', padded.back());
    EXPECT_EQ(nullptr, Text(QBLSquisher::squish(nullptr)));
    for (const auto& row : rows) {
        const Unsquished got(row.token);
        EXPECT_EQ(row.first, got.first) << row.token;
        EXPECT_EQ(row.second, got.second) << row.token;
        EXPECT_EQ(row.first == 0 && row.second == 0 ? text : "", got.text) << row.token;
        EXPECT_TRUE(got.consistent) << row.token;
    }
    std::string longText;
    longText.resize(10000001, 'x');
    const Text tooLong(QBLSquisher::squish(longText.c_str()));
    ASSERT_NE(nullptr, tooLong);
    EXPECT_EQ(2, Unsquished(tooLong.get()).first);
}

TEST(QBLSquisherTest, TokensMatchZlibInThreadsAndForks) {
    std::mt19937 random(5);
    std::vector<std::string> texts;
    for (unsigned n = 0; n < 5000; n += n < 100 ? 1 : 97)
        for (const unsigned kinds : {3U, 127U, 255U}) texts.push_back(randomText(random, n, kinds));
    const auto allGood = [&texts] {
        int refused = 0;  // some tokens exceed QBLsqu_squished_size()
        for (std::size_t i = 0; i < texts.size(); ++i) {
            const Squished squished(texts[i]);
            if (!squished.right || (!squished.fits && i % 3 != 2)) return false;
            refused += squished.fits ? 0 : 1;
        }
        return refused > 0;
    };
    EXPECT_TRUE(allGood());
    EXPECT_EQ(0, inChild([&] { return allGood() ? 0 : 1; }));
    Workers(4, [&] { EXPECT_TRUE(allGood()); }).join();
}

TEST(QBLSquisherTest, FailsCleanlyWhenMemoryRunsOut) {
    const std::string text = "some text, some text", token = tokenOf(compressed(text), text.size());
    // A sanitizer's allocator would abort the process.
    if (!kSanitizer) {
        EXPECT_EQ(-4, -inChild([] {
            std::string big;
            big.resize(100000000, 'A');
            const rlimit none = {1, RLIM_INFINITY};
            setrlimit(RLIMIT_AS, &none);
            QBLsqu_state state;
            return -QBLsqu_unsquish1(big.c_str(), &state, nullptr);
        }));
    }
    bool failed = true;
    long runs = 0;
    for (; failed; ++runs) {
        // A new thread must allocate its compression state.
        Workers(1, [&] {
            char room[200] = "unset";
            fault::failAllocation(runs);
            const int code = QBLsqu_squish(text.c_str(), room);
            failed = fault::allocationFailed();
            fault::failAllocation(-1);
            EXPECT_TRUE(code == 0 || (failed && code == -4)) << code;
            EXPECT_STREQ(code == 0 ? token.c_str() : "", room);
            EXPECT_EQ(0, QBLsqu_squish(text.c_str(), room));
            EXPECT_STREQ(token.c_str(), room);
        }).join();
    }
    EXPECT_LT(6, runs) << "compression has at least this many allocations";
    EXPECT_LT(0, fault::eachAllocation([&] {
                  QBLsqu_state state;
                  char back[40];
                  {
                      const fault::Calm calm;
                      EXPECT_EQ(0, QBLsqu_unsquish1(token.c_str(), &state, nullptr));
                  }
                  const int code = QBLsqu_unsquish2(&state, back);
                  EXPECT_EQ(fault::allocationFailed() ? -4 : 0, code);
                  EXPECT_EQ(code != 0 ? 0 : -2, QBLsqu_unsquish2(&state, back))
                      << "kept only on failure";
                  EXPECT_EQ(text, back);
              }));
}

}  // namespace
