#ifndef TESTS_FAULTS_INJECTOR_HPP
#define TESTS_FAULTS_INJECTOR_HPP

/// Makes allocations of the calling thread fail. The program's malloc, calloc, realloc, aligned
/// allocations and operator new replace the C and C++ libraries' functions in the whole process, so
/// ICU's and zlib's allocations fail, too.
namespace faults {

enum class Mode { kOnce, kFromThenOn };

/// Makes the allocation after n successful ones fail, or also all later ones. A negative n cancels
/// the request.
void arm(long n, Mode mode);
/// Returns true if an allocation has failed since the last arm().
bool hasFailed();

/// While an object lives, allocations and calls of its thread succeed and are not counted, and the
/// thread cannot be cancelled.
class Calm {
public:
    Calm();
    ~Calm();
    Calm(const Calm&) = delete;
    Calm& operator=(const Calm&) = delete;

private:
    int m_iBefore;  // the cancellation state
};
bool isCalm();

/// The number of blocks that the process holds.
long liveBlocks();

}  // namespace faults

#endif
