#ifndef TESTS_SUPPORT_FAULTINJECTION_HPP
#define TESTS_SUPPORT_FAULTINJECTION_HPP

/// Makes allocations and system calls of the code under test fail on request. If a program links
/// the library qbl_fault_injection, this library's functions replace functions of the C and C++
/// libraries, also for the shared libraries of the process. Requests apply to the calling thread
/// only.
namespace fault {

enum Call {
    kThreadCreate,
    kThreadBegin,  // the first pthread_setspecific of the thread that is created
    kSemInit,
    kMutexInit,
    kCondInit,
    kKeyCreate,
    kCondTimedWait,
    kClockRead,  // gettimeofday
    kFsync,
    kRead,
    kCallCount
};

/// Makes one allocation fail after n successful ones; a negative n cancels the request.
/// @param thrown  the value that a throwing operator new throws; 0 means std::bad_alloc
void failAllocation(long n, int thrown = 0);
/// While on, every allocation fails.
void exhaustMemory(bool on);
/// Returns true if an allocation has failed since the last failAllocation().
bool allocationFailed();

/// Makes one call of this function fail with this error number, after n successful ones.
void failCall(Call call, long n, int error);
bool callFailed(Call call);
/// Returns how often the hook was called. If the result is 0 after a call of the function, the hook
/// does not work.
unsigned long seen(Call call);
/// Cancels all requests and resets all counts.
void reset();

/// Runs the body repeatedly: in the first run its first allocation fails, in the second run its
/// second allocation, and so on, until a run completes without a failure. The body checks the
/// results.
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

}  // namespace fault

#endif
