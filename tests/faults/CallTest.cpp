// Lets every system call of every row fail once with each error number of its manual page. After
// each failure, checks that the row failed as promised or gave the same result as without the
// failure, that it succeeds afterwards, and that no block, descriptor or file is left.
#include <gtest/gtest.h>
#include <pthread.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
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
    /// @param tryOnce  runs it with a failure after n calls; returns false if it makes no more
    /// calls
    template <class TryOnce>
    void each(const Row& row, TryOnce tryOnce) {
        m_bFaulty = false;
        for (long n = 0; n < kMostCalls; n += 1 + n / kSampled) {
            m_where = row.name + ", " + m_failure + ", call " + std::to_string(n) + ": ";
            const Held before = Held::now();
            Held last = before;
            int growing = 0;
            do {
                if (!tryOnce(n) || m_bFaulty) return;
                const Held now = Held::now();
                growing = now.exceeds(last) ? growing + 1 : 0;
                last = now;
            } while (last.exceeds(before) && growing > 0 && growing < 4);
            if (growing != 0)
                report("four runs lost blocks: " + std::to_string(last.blocks - before.blocks) +
                       ", descriptors: " + std::to_string(last.descriptors - before.descriptors));
        }
        report("too many calls");
    }

    /// @param arm  requests a failure
    /// @return true if a call has failed
    template <class Arm>
    bool failOnce(const Row& row, Arm arm) {
        arm();
        const int error = faults::injectedError();
        const Outcome outcome = attempt(row);
        const bool failed = faults::disarmCalls();
        check(row, outcome, error);
        if (failed) retry(row);
        return failed;
    }

    void retry(const Row& row) {
        const Outcome outcome = attempt(row);
        if (!outcome.done || outcome.text != m_expected) report("retry: " + outcome.text);
    }

    bool runsCleanly(const Row& row) {
        attempt(row);  // may fill caches
        faults::startCounting();
        const Outcome clean = attempt(row);
        m_expected = clean.text;
        EXPECT_TRUE(clean.done) << row.name << ": " << clean.text;
        return clean.done;
    }

    void report(const std::string& what) {
        m_bFaulty = true;
        ADD_FAILURE() << m_where << what;
    }

    std::string m_expected, m_failure;

private:
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
            if (!runsCleanly(row)) return;
            if (faults::callCounts()[m_uHook] == 0) continue;
            ++reached;
            for (const int error : faults::hooks()[m_uHook].errors) {
                if (error == 0) continue;
                m_failure = strerrorname_np(error);
                each(row, [&](long n) {
                    return failOnce(row, [=] { faults::armCall(m_uHook, n, error); });
                });
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
            if (runsCleanly(row))
                each(row, [&](long n) {
                    return failOnce(row, [=] { faults::armDisaster(m_disaster, n); });
                });
    }

private:
    Disaster m_disaster;
};

/// Cancels a thread at each cancellation point of each row.
class CancelTest : public CallTest {
public:
    void TestBody() override {
        m_failure = "cancelled";
        for (const Row& row : faults::rows())
            if (runsCleanly(row)) each(row, [&](long n) { return cancelOnce(row, n); });
    }

private:
    struct Job {
        const Row& row;
        long n;
        Outcome outcome{};
        bool cancelled = false;
    };

    static void* run(void* given) {
        Job& job = *static_cast<Job*>(given);
        faults::armCancel(job.n, &job.cancelled);
        job.outcome = attempt(job.row);
        faults::armCancel(-1, nullptr);
        return nullptr;
    }

    bool cancelOnce(const Row& row, long n) {
        Job job{row, n};
        pthread_t thread;
        void* result = nullptr;
        if (pthread_create(&thread, nullptr, &run, &job) != 0) return false;
        pthread_join(thread, &result);
        // The row may disable cancellation, and then finish.
        const bool isDone = job.outcome.done && job.outcome.text == m_expected;
        if (result != PTHREAD_CANCELED && !isDone) report(job.outcome.text);
        if (job.cancelled) retry(row);
        return job.cancelled;
    }
};

/// Runs the rows on a file system whose numbers need more than 32 bits.
class FutureTest : public CallTest {
public:
    void TestBody() override {
        for (const Row& row : faults::rows()) {
            if (!runsCleanly(row)) return;
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
    static const std::map<const char*, Disaster> kDisasters = {
        {"ShortTransfers", Disaster::kShort},
        {"NoDescriptor", Disaster::kDescriptors},
        {"FullDisk", Disaster::kFull},
        {"ReadOnly", Disaster::kReadOnly}};
    for (const auto& disaster : kDisasters)
        add("Disasters", disaster.first,
            [which = disaster.second] { return new DisasterTest(which); });
    add("Cancellation", "AtEachPoint", [] { return new CancelTest; });
    add("Disasters", "LargeNumbers", [] { return new FutureTest; });
}
