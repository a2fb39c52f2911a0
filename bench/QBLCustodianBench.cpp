#include "QBLCore/QBLCustodian/QBLCustodian.hpp"

#include <sched.h>
#include <semaphore.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <future>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "QBLCore/Frame/QBLCore.h"
#include "bench/support/Bench.hpp"

namespace {

using Clock = std::chrono::steady_clock;
using Tasks = std::vector<QBLCustodianTask*>;

constexpr unsigned long kPauseMs = 2;
constexpr int kPasses = 100;

/// Keeps the custodian in a pass, so that all tasks registered during this pass start in the next
/// pass together.
class Gate : public QBLCustodianTask {
public:
    int doIt(int) override {
        m_entered.set_value();
        m_opened.get_future().wait();
        return 1;
    }
    void waitUntilEntered() { m_entered.get_future().wait(); }
    void open() { m_opened.set_value(); }

private:
    std::promise<void> m_entered, m_opened;
};

/// Registers tasks with the custodian, which calls them in this order in each pass. Restarts the
/// library before the measurement, because a pause that began with the old schedule lasts a full
/// minute. Restarts the library again after the measurement, so that the custodian's thread does
/// not disturb other measurements.
class Registered {
public:
    explicit Registered(const Tasks& tasks) : m_ulBefore(QBLCustodian::setSchedule(kPauseMs)) {
        startAnew();
        add(&m_gate);
        m_gate.waitUntilEntered();
        for (QBLCustodianTask* task : tasks) add(task);
        m_gate.open();
    }
    ~Registered() {
        QBLCustodian::setSchedule(m_ulBefore);
        startAnew();
    }
    Registered(const Registered&) = delete;
    Registered& operator=(const Registered&) = delete;

private:
    static void startAnew() {
        qblCoreTerminate();
        qblCoreInitialize();
    }
    static void add(QBLCustodianTask* task) {
        if (!QBLCustodian::registerTask(task)) throw std::runtime_error("no custodian");
    }

    Gate m_gate;
    const unsigned long m_ulBefore;
};

void callByHand(const Tasks& tasks) {
    for (QBLCustodianTask* task : tasks) {
        task->doIt(0);
        sched_yield();
    }
}

/// 1,000 empty tasks. The first and the last measure the time between their calls.
class Round {
public:
    Round() : m_first(*this), m_last(*this), m_others(998) {
        sem_init(&m_passed, 0, 0);
        m_tasks.push_back(&m_first);
        for (Empty& task : m_others) m_tasks.push_back(&task);
        m_tasks.push_back(&m_last);
    }
    ~Round() { sem_destroy(&m_passed); }
    Round(const Round&) = delete;
    Round& operator=(const Round&) = delete;

    const Tasks& tasks() const { return m_tasks; }
    /// Waits for the end of a pass.
    /// @return seconds from the call of the first task to the call of the last one
    double seconds() {
        while (sem_wait(&m_passed) != 0) {
        }
        return m_dSeconds;
    }
    double secondsByHand() {
        std::this_thread::sleep_for(std::chrono::milliseconds(kPauseMs));
        callByHand(m_tasks);
        return seconds();
    }

private:
    struct Empty : QBLCustodianTask {
        int doIt(int) override { return 0; }
    };
    struct First : QBLCustodianTask {
        explicit First(Round& round) : m_round(round) {}
        int doIt(int) override {
            m_round.m_begun = Clock::now();
            return 0;
        }
        Round& m_round;
    };
    struct Last : QBLCustodianTask {
        explicit Last(Round& round) : m_round(round) {}
        int doIt(int) override {
            m_round.m_dSeconds =
                std::chrono::duration<double>(Clock::now() - m_round.m_begun).count();
            sem_post(&m_round.m_passed);
            return 0;
        }
        Round& m_round;
    };

    First m_first;
    Last m_last;
    std::vector<Empty> m_others;
    Tasks m_tasks;
    Clock::time_point m_begun;
    std::atomic<double> m_dSeconds{0};
    sem_t m_passed;
};

double medianUs(std::vector<double> seconds) {
    const auto middle = seconds.begin() + static_cast<std::ptrdiff_t>(seconds.size() / 2);
    std::nth_element(seconds.begin(), middle, seconds.end());
    return *middle * 1e6;
}

void passByCustodian(benchmark::State& state) {
    std::vector<double> ours, byHand;
    {
        Round round;
        const Registered registered(round.tasks());
        for (auto _ : state) {
            ours.push_back(round.seconds());
            state.SetIterationTime(ours.back());
        }
    }
    Round round;
    for (int i = 0; i < kPasses; ++i) byHand.push_back(round.secondsByHand());
    state.counters["over_us"] = medianUs(ours) - medianUs(byHand);
}

void passByHand(benchmark::State& state) {
    Round round;
    for (auto _ : state) state.SetIterationTime(round.secondsByHand());
}

/// A task that appends its letter to a text when it is called. The custodian then drops the task.
class Letter : public QBLCustodianTask {
public:
    Letter(char letter, std::string& text) : m_cLetter(letter), m_text(text) {}
    int doIt(int) override {
        m_text += m_cLetter;
        return 1;
    }

private:
    const char m_cLetter;
    std::string& m_text;
};

const OutputCheck check("QBLCustodian", [] {
    std::string ours, byHand;
    {
        Letter a('a', ours), b('b', ours), c('c', ours);
        const Registered registered({&a, &b, &c});
    }
    Letter a('a', byHand), b('b', byHand), c('c', byHand);
    callByHand({&a, &b, &c});
    return ours == "abc" && ours == byHand;
});

BENCHMARK(passByCustodian)->Name("BM_QBLCustodian_pass")->UseManualTime()->Iterations(kPasses);
BENCHMARK(passByHand)->Name("BM_ByHand_pass")->UseManualTime()->Iterations(kPasses);

}  // namespace
