#ifndef TESTS_SUPPORT_FAULTINJECTION_HPP
#define TESTS_SUPPORT_FAULTINJECTION_HPP

/// Makes allocations and system calls of the code under test fail on request. A program that links
/// the library qbl_fault_injection has its definitions of them in the place of the C++ and C
/// libraries' own, for every shared library of the process. Plans belong to the calling thread.
namespace fault {

enum Call {
    kThreadCreate,
    kSemInit,
    kMutexInit,
    kCondInit,
    kKeyCreate,
    kCondTimedWait,
    kClockRead,  // gettimeofday
    kFsync,
    kCallCount
};

/// The next allocation but n fails, once; a negative n switches this off.
/// @param thrown  what a throwing operator new throws then; 0 means std::bad_alloc
void failAllocation(long n, int thrown = 0);
/// While on, every allocation fails.
void exhaustMemory(bool on);
/// Whether that has happened since it was asked for.
bool allocationFailed();

/// The next call but n of this function fails with this error number, once.
void failCall(Call call, long n, int error);
bool callFailed(Call call);
/// Calls that came by so far; 0 for a function that was called means that its hook is dead.
unsigned long seen(Call call);
/// Forgets all plans and counts.
void reset();

/// Runs the body with its first, its second, ... allocation failing, until a run has none left to
/// fail; the body checks what a failed run must look like.
/// @return how many runs had a failed allocation.
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

}  // namespace fault

#endif
