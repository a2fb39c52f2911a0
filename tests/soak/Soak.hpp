#ifndef TESTS_SOAK_SOAK_HPP
#define TESTS_SOAK_SOAK_HPP

#include <memory>
#include <random>
#include <string>
#include <vector>

#include "tests/support/Library.hpp"

/// Work that 16 threads do in any order and at the same time.
namespace soak {

/// Numbers that depend on the seed of the run and on the thread only.
class Random {
public:
    explicit Random(unsigned seed) : m_engine(seed) {}
    /// Returns a number from 0 to end - 1.
    unsigned below(std::size_t end) { return static_cast<unsigned>(m_engine() % end); }
    bool oneOf(unsigned count) { return below(count) == 0; }
    template <class All>
    auto& of(All& all) {
        return all[below(std::size(all))];
    }

private:
    std::minstd_rand m_engine;
};

/// One piece of work. It frees all that it has taken, and calls need() for what must hold.
struct Job {
    const char* name;
    bool isAlone;  // it also runs while threads start and stop the library
    void (*work)(Random& random);
};
extern const std::vector<Job> kJobs;

/// Ends the process with a message if something does not hold.
void need(bool holds, const char* what);
/// Returns the directory of the run.
const std::string& directory();
void start();
void stop();

/// Makes what all threads of one round share; the owner destroys it.
std::shared_ptr<void> share();

}  // namespace soak

#endif
