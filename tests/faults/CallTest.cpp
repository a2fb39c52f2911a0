// Lets every system call of every row fail once with each error number of its manual page. After
// each failure, checks that the row failed as promised or gave the same result as without the
// failure, that it succeeds afterwards, and that no block, descriptor or file is left.
#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <functional>
#include <map>

#include "tests/faults/Attempt.hpp"
#include "tests/faults/Calls.hpp"

namespace {

using faults::attempt;
using faults::Disaster;
using faults::Outcome;
using faults::Row;

constexpr long kMostCalls = 20000, kSampled = 40;
constexpr unsigned kMemory = faults::kOutOfMemory | faults::kBadAlloc;

/// What must not grow.
struct Held {
    long blocks, descriptors;

    static Held now() {
        const faults::Calm calm;
        const std::filesystem::directory_iterator open("/proc/self/fd");
        return {faults::liveBlocks(), std::distance(begin(open), end(open))};
    }
    bool exceeds(const Held& other) const {
        return blocks > other.blocks || descriptors > other.descriptors;
    }
};

/// Whether the system has answered: there is no such thing, or this process may not use it.
bool isAbsence(int error) {
    const int answers[] = {EACCES,  ELOOP,   ENAMETOOLONG, ENODATA, ENOENT,
                           ENOTDIR, ENOTSUP, ENXIO,        EPERM,   ERANGE};
    return std::find(std::begin(answers), std::end(answers), error) != std::end(answers);
}

class CallTest : public testing::Test {
protected:
    /// Runs a row with each of its calls failing.
    /// @param arm  requests the failure after n calls
    void failEach(const Row& row, const std::function<void(long)>& arm) {
        m_bFaulty = false;
        for (long n = 0; n < kMostCalls; n += 1 + n / kSampled) {
            m_where = row.name + ", " + m_failure + ", call " + std::to_string(n) + ": ";
            const Held before = Held::now();
            Held last = before;
            int growing = 0;
            do {
                if (!failOnce(row, n, arm) || m_bFaulty) return;
                const Held now = Held::now();
                growing = now.exceeds(last) ? growing + 1 : 0;
                last = now;
            } while (last.exceeds(before) && growing > 0 && growing < 4);
            if (growing != 0)
                ADD_FAILURE() << m_where << "four runs lost blocks: " << last.blocks - before.blocks
                              << ", descriptors: " << last.descriptors - before.descriptors;
        }
        ADD_FAILURE() << m_where << "more than " << kMostCalls << " calls";
    }

    static bool runsCleanly(const Row& row, std::string& result) {
        attempt(row);  // may fill caches
        faults::startCounting();
        const Outcome clean = attempt(row);
        result = clean.text;
        EXPECT_TRUE(clean.done) << row.name << ": " << clean.text;
        return clean.done;
    }

    std::string m_expected, m_failure;

private:
    /// @return false if the row makes no more than n calls
    bool failOnce(const Row& row, long n, const std::function<void(long)>& arm) {
        arm(n);
        const int error = faults::injectedError();
        Outcome outcome = attempt(row);
        const bool failed = faults::disarmCalls();
        check(row, outcome, error);
        if (!failed) return false;
        outcome = attempt(row);
        if (!outcome.done || outcome.text != m_expected) report("retry: " + outcome.text);
        return true;
    }

    void check(const Row& row, const Outcome& outcome, int error) {
        unsigned allowed = row.promises | row.calls;
        if (error != ENOMEM) allowed &= ~kMemory;
        if ((allowed & faults::kAbsence) != 0 && isAbsence(error)) allowed |= faults::kFallback;
        unsigned got = outcome.promise;
        if (outcome.done) got = outcome.text != m_expected ? faults::kFallback : faults::kNothing;
        const bool isWrong =
            (got & ~allowed) != 0 || (outcome.error != 0 && outcome.error != error);
        if (isWrong) report(outcome.text + " " + std::to_string(outcome.error));
    }

    void report(const std::string& what) {
        m_bFaulty = true;
        ADD_FAILURE() << m_where << what;
    }

    std::string m_where;
    bool m_bFaulty = false;
};

/// Fails the calls of one hook.
class HookTest : public CallTest {
public:
    explicit HookTest(std::size_t hook) : m_uHook(hook) {}

    void TestBody() override {
        long reached = 0;
        for (const Row& row : faults::rows()) {
            if (!runsCleanly(row, m_expected)) return;
            if (faults::callCounts()[m_uHook] == 0) continue;
            ++reached;
            for (const int error : faults::hooks()[m_uHook].errors) {
                m_failure = strerrorname_np(error);
                failEach(row, [&](long n) { faults::armCall(m_uHook, n, error); });
            }
        }
        EXPECT_NE(0, reached) << "no row calls " << faults::hooks()[m_uHook].name;
    }

private:
    std::size_t m_uHook;
};

class DisasterTest : public CallTest {
public:
    explicit DisasterTest(Disaster disaster) : m_disaster(disaster) {}

    void TestBody() override {
        for (const Row& row : faults::rows())
            if (runsCleanly(row, m_expected))
                failEach(row, [&](long n) { faults::armDisaster(m_disaster, n); });
    }

private:
    Disaster m_disaster;
};

/// Runs the rows on a file system whose numbers need more than 32 bits.
class FutureTest : public CallTest {
public:
    void TestBody() override {
        for (const Row& row : faults::rows()) {
            if (!runsCleanly(row, m_expected)) return;
            const faults::System future(faults::Kind::kFuture);
            const Outcome outcome = attempt(row);
            EXPECT_TRUE(outcome.done && outcome.text == m_expected) << row.name << outcome.text;
        }
    }
};

}  // namespace

void faults::registerCallTests() {
    const auto add = [](const char* suite, const char* name, auto make) {
        testing::RegisterTest(suite, name, nullptr, nullptr, __FILE__, __LINE__,
                              [make]() -> testing::Test* { return make(); });
    };
    for (std::size_t hook = 0; hook < hooks().size(); ++hook)
        add("Calls", hooks()[hook].name, [hook] { return new HookTest(hook); });
    static const std::map<const char*, Disaster> s_disasters = {
        {"ShortTransfers", Disaster::kShort},
        {"NoDescriptor", Disaster::kDescriptors},
        {"FullDisk", Disaster::kFull},
        {"ReadOnly", Disaster::kReadOnly}};
    for (const auto& disaster : s_disasters)
        add("Disasters", disaster.first,
            [which = disaster.second] { return new DisasterTest(which); });
    add("Disasters", "LargeNumbers", [] { return new FutureTest; });
}
