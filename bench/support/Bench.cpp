#include "bench/support/Bench.hpp"

#include <pthread.h>
#include <sched.h>

#include <cstdio>
#include <utility>
#include <vector>

namespace {

using Check = std::pair<const char*, std::function<bool()>>;

std::vector<Check>& checks() {
    static std::vector<Check> all;
    return all;
}

// The processors that the process may use, read before any thread is pinned.
const cpu_set_t kAllowed = [] {
    cpu_set_t set;
    CPU_ZERO(&set);
    sched_getaffinity(0, sizeof set, &set);
    return set;
}();

bool bind(const cpu_set_t& set) {
    return pthread_setaffinity_np(pthread_self(), sizeof set, &set) == 0;
}

}  // namespace

OutputCheck::OutputCheck(const char* name, std::function<bool()> sameOutput) {
    checks().emplace_back(name, std::move(sameOutput));
}

bool OutputCheck::runAll() {
    bool good = true;
    for (const Check& check : checks()) {
        if (check.second()) continue;
        std::fprintf(stderr, "%s: our output differs from the yardstick's, nothing is measured\n",
                     check.first);
        good = false;
    }
    return good;
}

Pinned::Pinned(int n) : m_bDone(false) {
    for (int cpu = 0; cpu < CPU_SETSIZE; ++cpu) {
        if (!CPU_ISSET(cpu, &kAllowed) || n-- != 0) continue;
        cpu_set_t one;
        CPU_ZERO(&one);
        CPU_SET(cpu, &one);
        m_bDone = bind(one);
        return;
    }
}

Pinned::~Pinned() {
    if (m_bDone) bind(kAllowed);
}
