// Lets every allocation of every row fail once, first alone and then with all later ones. Lets
// every system call of every row fail once with each error number of its manual page. After each
// failure, checks that the row failed as promised or gave the same result as without the failure,
// that it succeeds afterwards, and that no block and no descriptor is lost.
#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <new>
#include <thread>
#include <utility>

#include "tests/faults/Rows.hpp"
#include "tests/support/Library.hpp"

namespace fault {

std::vector<Row>& rows() {
    static std::vector<Row> s_rows;
    return s_rows;
}

const TempTree& tree() {
    static const TempTree kTree;
    return kTree;
}

void start() {
    static const bool kStarted = calmly([] {
        setenv("TAV_EXEC_PATH", QBL_RES_DIR, 1);
        const bool started = qblCoreInitialize() == 0;
        I18NInitialize();
        return started;
    });
    if (!kStarted) throw Broken{"not started"};
}

void needErrno(bool done, int error, int documented) {
    if (!done && error != injectedError() && error != documented)
        throw Broken{"errno is " + std::to_string(error)};
    need(done);
}
void needErrno(bool done) { needErrno(done, errno); }

namespace {

constexpr long kMost = 100000;
constexpr unsigned kMemory = kOutOfMemory | kBadAlloc;

struct Outcome {
    bool done = false;
    unsigned promise = kNothing;
    std::string text;     // the result, or the error
    long long error = 0;  // the error number of a QBLSystemError
};

/// Names the current exception.
Outcome failure() {
    const Calm calm;
    try {
        throw;
    } catch (const Broken& broken) {
        return {false, ~0U, broken.what};
    } catch (const Refused&) {
        return {false, kRefuses, "refused"};
    } catch (const QBLOutOfMemoryError&) {
        return {false, kOutOfMemory, "QBLOutOfMemoryError"};
    } catch (const QBLThreadResourceError&) {
        return {false, kThreadResource, "QBLThreadResourceError"};
    } catch (const QBLSystemError& error) {
        return {false, kOther, error.getThrowableName(), error.getErrorCode()};
    } catch (const QBLThrowable& error) {
        return {false, kOther, error.getThrowableName()};
    } catch (const std::bad_alloc&) {
        return {false, kBadAlloc, "std::bad_alloc"};
    } catch (const std::exception& error) {
        return {false, ~0U, error.what()};
    }
}

Outcome attempt(const Row& row) {
    try {
        return {true, kNothing, row.run()};
    } catch (...) {
        return failure();
    }
}

/// What must not grow.
struct Held {
    long blocks, descriptors;

    static Held now() {
        const Calm calm;
        const std::filesystem::directory_iterator open("/proc/self/fd");
        return {liveBlocks(), std::distance(begin(open), end(open))};
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

/// Runs a row with failures.
class Trial {
public:
    explicit Trial(const Row& row) : m_row(row), m_where(row.name + ": ") {
        const Outcome first = attempt(row);  // may fill caches
        reset();
        const Outcome clean = attempt(row);
        m_expected = clean.text;
        m_bClean = clean.done && first.text == clean.text;
        if (!m_bClean) report(first.text + ", then " + clean.text);
    }

    /// Calls tryOnce(n) for each n, or for a sample of the great ones, until it returns false
    /// because the row gives no n-th occasion to fail.
    template <class TryOnce>
    void each(const char* failure, long sampled, TryOnce tryOnce) {
        m_bFaulty = !m_bClean;
        for (long n = 0; n < kMost; n += 1 + n / sampled) {
            m_where = m_row.name + ", " + failure + ", " + std::to_string(n) + ": ";
            // The first failure may change what caches hold. A leak shows in every run.
            const Held before = Held::now();
            Held last = before;
            int growing = 0;
            do {
                if (m_bFaulty || !tryOnce(n) || m_bFaulty) return;
                const Held now = Held::now();
                growing = now.exceeds(last) ? growing + 1 : 0;
                last = now;
            } while (last.exceeds(before) && growing > 0 && growing < 4);
            if (growing != 0)
                report("four runs lost blocks: " + std::to_string(last.blocks - before.blocks) +
                       ", descriptors: " + std::to_string(last.descriptors - before.descriptors));
        }
        report("too many occasions");
    }

    /// @param arm  requests a failure of an allocation, or of a call
    /// @return true if something has failed
    template <class Arm>
    bool fail(bool ofCall, Arm arm) {
        arm();
        const int error = injectedError();
        const Outcome outcome = attempt(m_row);
        const bool failed = reset();
        check(outcome, failed ? allowed(ofCall, error) : kNothing, error);
        if (failed) retry();
        return failed;
    }

    void retry() { check(attempt(m_row), kNothing, 0); }

    bool runInThread(long n) {
        Outcome outcome;
        bool cancelled = false, ended = false;
        std::thread([&] {
            cancelAfter(n, &cancelled);
            outcome = attempt(m_row);
            cancelAfter(-1, nullptr);
            ended = true;
        }).join();
        // The row may disable cancellation, and then finish.
        if (ended) check(outcome, kNothing, 0);
        if (cancelled) retry();
        return cancelled;
    }

private:
    unsigned allowed(bool ofCall, int error) const {
        if (!ofCall) return m_row.promises;
        unsigned all = m_row.promises | m_row.calls;
        if (error != ENOMEM) all &= ~kMemory;
        return (all & kAbsence) != 0 && isAbsence(error) ? all | kFallback : all;
    }
    void check(const Outcome& outcome, unsigned allowed, int error) {
        unsigned got = outcome.promise;
        if (outcome.done) got = outcome.text != m_expected ? kFallback : kNothing;
        if ((got & ~allowed) != 0 || (outcome.error != 0 && outcome.error != error))
            report(outcome.text + " " + std::to_string(outcome.error));
    }
    void report(const std::string& what) {
        m_bFaulty = true;
        ADD_FAILURE() << m_where << what;
    }

    const Row& m_row;
    std::string m_where, m_expected;
    bool m_bClean = false, m_bFaulty = false;
};

void failAllocations(const Row& row) {
    Trial trial(row);
    for (const Mode mode : {Mode::kOnce, Mode::kFromThenOn})
        trial.each(mode == Mode::kOnce ? "allocation" : "allocations from", 100,
                   [&](long n) { return trial.fail(false, [=] { failAllocation(n, mode); }); });
}

void failCalls(Call call) {
    bool reached = false;
    for (const Row& row : rows()) {
        Trial trial(row);
        if (seen(call) == 0) continue;
        reached = true;
        for (const int error : hooks()[call].errors)
            if (error != 0)
                trial.each(strerrorname_np(error), 40, [&](long n) {
                    return trial.fail(true, [=] { failCall(call, n, error); });
                });
    }
    EXPECT_TRUE(reached) << "no row calls " << hooks()[call].name;
}

void strikeAll(Disaster disaster) {
    for (const Row& row : rows()) {
        Trial trial(row);
        trial.each("disaster", 40,
                   [&](long n) { return trial.fail(true, [=] { strike(disaster, n); }); });
    }
}

/// Cancels a thread at each cancellation point of each row.
void cancelEverywhere() {
    for (const Row& row : rows()) {
        Trial trial(row);
        trial.each("cancelled", 40, [&](long n) { return trial.runInThread(n); });
    }
}

/// Runs the rows on a file system whose numbers need more than 32 bits.
void runInFuture() {
    for (const Row& row : rows()) {
        Trial trial(row);
        const System future(Kind::kFuture);
        trial.retry();
    }
}

class Case : public testing::Test {
public:
    explicit Case(std::function<void()> body) : m_body(std::move(body)) {}
    void TestBody() override { m_body(); }

private:
    std::function<void()> m_body;
};

void add(const char* suite, const char* name, const std::function<void()>& body) {
    testing::RegisterTest(suite, name, nullptr, nullptr, __FILE__, __LINE__,
                          [body]() -> testing::Test* { return new Case(body); });
}

[[maybe_unused]] void addTests() {
    for (const Row& row : rows()) add("Faults", row.name.c_str(), [&row] { failAllocations(row); });
    for (std::size_t call = 0; call < kCallCount; ++call)
        add("Calls", hooks()[call].name, [call] { failCalls(static_cast<Call>(call)); });
    const std::pair<const char*, Disaster> disasters[] = {{"ShortTransfers", Disaster::kShort},
                                                          {"NoDescriptor", Disaster::kDescriptors},
                                                          {"FullDisk", Disaster::kFull},
                                                          {"ReadOnly", Disaster::kReadOnly}};
    for (const auto& disaster : disasters)
        add("Disasters", disaster.first, [which = disaster.second] { strikeAll(which); });
    add("Disasters", "LargeNumbers", &runInFuture);
    add("Cancellation", "AtEachPoint", &cancelEverywhere);
}

}  // namespace
}  // namespace fault

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
#ifndef __clang_analyzer__  // it takes the factories of the tests for lost
    fault::addTests();
#endif
    return RUN_ALL_TESTS();
}
