#include "QBLCore/Utility/QBLSquisher.hpp"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <zlib.h>

#include <cstdlib>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "QBLCore/Utility/QBLBase64.h"
#include "tests/support/Child.hpp"
#include "tests/support/FaultInjection.hpp"
#include "tests/support/Workers.hpp"

namespace {

using Text = std::unique_ptr<char[]>;

std::string shown(const Text& text) { return text ? text.get() : "(null)"; }

/// The token of what zlib made, with any header.
std::string tokenOf(const std::string& packed, unsigned long length, unsigned long wrong = 0) {
    const auto* const bytes = reinterpret_cast<const Bytef*>(packed.data());
    const unsigned long crc = wrong ^ crc32(0xFFFFFFFF, bytes, static_cast<uInt>(packed.size()));
    std::string data;
    for (const unsigned long number : {length, crc})
        for (int shift = 24; shift >= 0; shift -= 8) data += static_cast<char>(number >> shift);
    data += packed;
    std::string token(QBLBase64URLEncodedSize(static_cast<unsigned>(data.size())), '\0');
    QBLBase64URLEncode(data.data(), static_cast<unsigned>(data.size()), &token[0]);
    return token.c_str();
}

std::string compressed(const std::string& text) {
    uLongf size = compressBound(static_cast<uLong>(text.size()));
    std::string packed(size, '\0');
    EXPECT_EQ(Z_OK, compress2(reinterpret_cast<Bytef*>(&packed[0]), &size,
                              reinterpret_cast<const Bytef*>(text.data()),
                              static_cast<uLong>(text.size()), 9));
    return packed.substr(0, size);
}

/// Bytes but NUL; few different ones compress well.
std::string randomText(std::mt19937& random, std::size_t count, unsigned kinds) {
    std::string text(count, ' ');
    for (char& c : text) c = static_cast<char>(1 + random() % kinds);
    return text;
}

bool squishesAsZlibDoes(const std::string& text) {
    return shown(Text(QBLSquisher::squish(text.c_str()))) == tokenOf(compressed(text), text.size());
}

TEST(QBLSquisherTest, TokensAreWhatZlibMakesAndComeBack) {
    std::mt19937 random(4);
    int refused = 0;
    for (unsigned n = 0; n < 5000; n += n < 100 ? 1 : 97) {
        for (const unsigned kinds : {3U, 127U, 255U}) {
            const std::string text = randomText(random, n, kinds);
            const std::string expected = tokenOf(compressed(text), n);
            const Text token(QBLSquisher::squish(text.c_str()));
            ASSERT_EQ(expected, shown(token));
            ASSERT_EQ(text, shown(Text(QBLSquisher::unSquish(token.get()))));
            const unsigned size = QBLsqu_squished_size(n);
            const Text room(new char[size]);
            const bool fits = expected.size() < size;
            ASSERT_EQ(fits ? 0 : -5, QBLsqu_squish(text.c_str(), room.get())) << n;
            ASSERT_EQ(fits ? expected : "", room.get());
            ASSERT_TRUE(fits || kinds > 127) << n;
            if (!fits) ++refused;
        }
    }
    EXPECT_GT(refused, 0) << "some are too long for the formula";
    EXPECT_EQ(nullptr, Text(QBLSquisher::squish(nullptr)));
}

TEST(QBLSquisherTest, RefusesDamagedTokens) {
    const std::string text = "a text that is squished", packed = compressed(text);
    const std::string good = tokenOf(packed, text.size());
    std::string changed = good, invalid = good;
    const std::size_t last = good.find_last_not_of('=');
    changed[last] = changed[last] == 'A' ? 'Q' : 'A';
    invalid[last] = '}';
    const struct {
        int first;  // code of the first step
        bool good;  // the second one
        std::string token;
    } rows[] = {{0, true, good},
                {0, true, good + "\n"},
                {0, true, tokenOf(packed, text.size() + 9)},
                {0, true, tokenOf(packed, 10000000)},
                {0, false, tokenOf("", 0)},
                {0, false, tokenOf(packed, 0)},
                {0, false, tokenOf(packed, text.size() - 1)},
                {0, false, tokenOf(packed.substr(0, packed.size() - 1), text.size())},
                {1, false, invalid},
                {2, false, tokenOf(packed, 10000001)},
                {3, false, changed},
                {3, false, good.substr(0, 10)},
                {3, false, tokenOf(packed, 0xFFFFFFFF, 1)},
                {3, false, ""}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.token);
        QBLsqu_state state;
        unsigned size = 0;
        ASSERT_EQ(row.first, QBLsqu_unsquish1(row.token.c_str(), &state, &size));
        ASSERT_EQ(row.first != 0, state.buffer == nullptr);
        const Text out(new char[size + 1]);
        EXPECT_EQ(row.good, QBLsqu_unsquish2(&state, out.get()) == 0);
        EXPECT_EQ(row.good || row.first != 0, state.buffer == nullptr);
        std::free(state.buffer);
        const Text back(QBLSquisher::unSquish(row.token.c_str()));
        EXPECT_EQ(row.good ? text : "(null)", shown(back));
    }
    std::string longText;
    longText.resize(10000001, 'x');
    const Text token(QBLSquisher::squish(longText.c_str()));
    EXPECT_NE(nullptr, token);
    EXPECT_EQ(nullptr, Text(QBLSquisher::unSquish(token.get())));
}

TEST(QBLSquisherTest, ThreadsAndForksSquishEachOnItsOwn) {
    std::mt19937 random(5);
    std::vector<std::string> texts(50);
    for (std::string& text : texts) text = randomText(random, random() % 3000, 20);
    const auto allGood = [&texts] {
        for (const std::string& text : texts)
            if (!squishesAsZlibDoes(text)) return false;
        return true;
    };
    EXPECT_TRUE(allGood());
    EXPECT_EQ(0, inChild([&] { return allGood() ? 0 : 1; }));
    Workers(4, [&] { EXPECT_TRUE(allGood()); }).join();
}

TEST(QBLSquisherTest, FailsCleanlyWithoutMemory) {
    const std::string text = "some text, some text", token = tokenOf(compressed(text), text.size());
    // A sanitizer's allocator would end the process.
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
        // A new thread has nothing yet to compress with.
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
    EXPECT_LT(6, runs) << "compressing takes that many";
    EXPECT_TRUE(squishesAsZlibDoes(text));
    EXPECT_EQ(2, fault::eachAllocation([&] {
                  const Text made(QBLSquisher::squish(text.c_str()));
                  EXPECT_EQ(fault::allocationFailed(), made == nullptr);
              }))
        << "this thread has what it compresses with";
    EXPECT_EQ(1, fault::eachAllocation([&] {
                  const Text back(QBLSquisher::unSquish(token.c_str()));
                  EXPECT_EQ(fault::allocationFailed(), back == nullptr);
              }));
}

}  // namespace
