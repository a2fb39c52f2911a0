#ifndef BENCH_SUPPORT_BENCH_HPP
#define BENCH_SUPPORT_BENCH_HPP

#include <benchmark/benchmark.h>

#include <functional>

/// Registers a check that both sides of a pair give the same output. All checks run before the
/// first measurement. If a check returns false, the program prints the check's name and ends
/// without measuring.
///     const OutputCheck check("QBLList", [] { return sumOurs() == sumPeers(); });
class OutputCheck {
public:
    OutputCheck(const char* name, std::function<bool()> sameOutput);
    /// Runs all checks and prints the names of the failed ones to standard error.
    /// @return true if all checks passed
    static bool runAll();
};

/// Keeps the calling thread on one processor until the end of the scope.
class Pinned {
public:
    /// @param n  index, from 0, of one of the processors that the process may use
    explicit Pinned(int n);
    ~Pinned();
    Pinned(const Pinned&) = delete;
    Pinned& operator=(const Pinned&) = delete;
    /// Returns false if there is no such processor; the thread then stays unpinned.
    bool done() const { return m_bDone; }

private:
    bool m_bDone;
};

#endif
