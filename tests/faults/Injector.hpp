#ifndef TESTS_FAULTS_INJECTOR_HPP
#define TESTS_FAULTS_INJECTOR_HPP

#include <cstddef>
#include <vector>

/// Makes allocations and system calls of the calling thread fail. If a program links the library
/// qbl_fault_injection, its functions replace those of the C and C++ libraries in the whole
/// process, so the allocations and calls of ICU and zlib fail, too.
namespace fault {

enum class Mode { kOnce, kFromThenOn };

/// Makes the allocation after n successful ones fail, or also all later ones. A negative n cancels
/// the request.
void failAllocation(long n, Mode mode = Mode::kOnce);
/// While on, every allocation fails.
inline void exhaustMemory(bool on) { failAllocation(on ? 0 : -1, Mode::kFromThenOn); }
/// Makes every malloc() and operator new of more than this many bytes fail.
void limitAllocations(std::size_t most);
/// Returns true if an allocation has failed since the last request.
bool allocationFailed();
/// The number of blocks that the process holds.
long liveBlocks();

/// Runs the body repeatedly: in the first run its first allocation fails, in the second run its
/// second allocation, and so on, until a run completes without a failure.
/// @return the number of runs with a failed allocation; -1 if the limit was reached.
template <class Body>
long eachAllocation(Body body, long limit = 100000) {
    for (long n = 0; n < limit; ++n) {
        failAllocation(n);
        body();
        const bool failed = allocationFailed();
        failAllocation(-1);
        if (!failed) return n;
    }
    return -1;
}

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

/// A function that can fail, or one kind of its calls.
enum Call : std::size_t {
#define CALL(id, ...) id,
#define HOOK CALL
#define HOOK_NUMBER CALL
#include "tests/faults/Calls.inc"
    kCallCount
};
struct Hook {
    const char* name;
    std::vector<int> errors;  // the error numbers that its manual page names
};
/// Describes each Call.
const std::vector<Hook>& hooks();

/// Makes one call fail with this error number, after n successful ones.
void failCall(Call call, long n, int error);
/// Returns true if the call has failed as requested.
bool callFailed(Call call);
/// The number of calls of this thread since the last reset(). If it is 0 after a call of the
/// function, the hook does not work.
long seen(Call call);
/// Cancels all requests and resets all counts.
/// @return true if an allocation or a call has failed, or a call was short
bool reset();
/// The error number of the failures that are requested; ENOMEM if only allocations fail.
int injectedError();

/// What happens to the system instead of one failure. It begins with the n-th call that it affects,
/// and lasts until reset().
enum class Disaster {
    kNone,
    kShort,        // the n-th read or write transfers one byte; it does not last
    kDescriptors,  // no descriptor is left
    kFull,         // the disk is full; the write before transfers one byte
    kReadOnly      // the file system becomes read-only
};
void strike(Disaster disaster, long n);

/// Requests the cancellation of the calling thread at the cancellation point after n others.
/// reset() does not cancel the request.
/// @param cancelled  receives true then
void cancelAfter(long n, bool* cancelled);

/// A system that works, but not like the one on which the program runs. It lasts as long as the
/// object, for all calls of the thread.
enum class Kind {
    kUsual,
    kNoExchange,     // the kernel or file system has no renameat2
    kClosedFolders,  // folders may be searched, but not be read
    kUnknownTypes,   // folders do not tell the types of their entries
    kFuture          // inodes need more than 32 bits, and times are after 2038
};
class System {
public:
    explicit System(Kind kind);
    ~System();
    System(const System&) = delete;
    System& operator=(const System&) = delete;
};

}  // namespace fault

#endif
