#ifndef BENCH_SUPPORT_BENCH_HPP
#define BENCH_SUPPORT_BENCH_HPP

#include <benchmark/benchmark.h>

#include <functional>

/// Registers a comparison of what both sides of a pair put out. All of them run before the
/// first measurement; one that gives false ends the program with its name.
///     const OutputCheck check("QBLList", [] { return sumOurs() == sumPeers(); });
class OutputCheck {
public:
    OutputCheck(const char* name, std::function<bool()> sameOutput);
    /// Names of the comparisons that failed go to standard error.
    static bool runAll();
};

/// Keeps the calling thread on one processor until the end of the scope.
class Pinned {
public:
    /// @param n  counts the processors that the process may use, from 0
    explicit Pinned(int n);
    ~Pinned();
    Pinned(const Pinned&) = delete;
    Pinned& operator=(const Pinned&) = delete;
    /// False when there is no such processor; the thread then runs wherever it did.
    bool done() const { return m_bDone; }

private:
    bool m_bDone;
};

#endif
