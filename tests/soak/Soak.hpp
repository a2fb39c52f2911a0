#ifndef TESTS_SOAK_SOAK_HPP
#define TESTS_SOAK_SOAK_HPP

#include <random>
#include <string>
#include <vector>

/// Work that 16 threads do in any order and at the same time, and what the process uses.
namespace soak {

/// Numbers that depend on the seed of the run and on the thread only.
class Random {
public:
    explicit Random(unsigned seed) : m_engine(seed) {}
    /// Returns a number from 0 to end - 1.
    unsigned below(unsigned end) { return static_cast<unsigned>(m_engine() % end); }
    template <class T, std::size_t kN>
    T& of(T (&all)[kN]) {
        return all[below(kN)];
    }

private:
    std::minstd_rand m_engine;
};

/// A job that needs the objects of the round runs only while they exist. The others also run while
/// threads start and stop the library.
enum Needs { kAlone, kShared };

/// One piece of work. It frees all that it has taken, and calls need() for what must hold.
struct Job {
    const char* name;
    Needs needs;
    void (*work)(Random& random);
};
extern const std::vector<Job> kLockJobs, kTextJobs;

/// Ends the process with a message if something does not hold.
void need(bool holds, const char* what);
/// Returns the directory of the run.
const std::string& directory();

/// Makes and destroys what all threads of one round share.
void makeSharedLocks();
void dropSharedLocks();
void makeSharedTexts();
void dropSharedTexts();

struct Usage {
    long threads, descriptors;
    long blocks;    // bytes in live blocks
    long resident;  // bytes in memory
};
Usage usage();

}  // namespace soak

#endif
