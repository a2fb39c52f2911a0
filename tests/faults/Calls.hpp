#ifndef TESTS_FAULTS_CALLS_HPP
#define TESTS_FAULTS_CALLS_HPP

#include <cstddef>
#include <vector>

/// Makes system calls of the calling thread fail. The program's functions replace those of the C
/// library in the whole process, so the calls of the C++ library and ICU fail, too.
namespace faults {

/// A function that can fail, or one kind of its calls.
struct Hook {
    const char* name;
    std::vector<int> errors;  // the error numbers that its manual page names
};
const std::vector<Hook>& hooks();

/// What happens to the system instead of one failure. It begins with the n-th call that it affects,
/// and lasts until it is disarmed.
enum class Disaster {
    kShort,        // the n-th read or write transfers one byte; it does not last
    kDescriptors,  // no descriptor is left
    kFull,         // the disk is full; the write before transfers one byte
    kReadOnly      // the file system becomes read-only
};

/// Makes the call of this hook after n successful ones fail with this error number.
void armCall(std::size_t hook, long n, int error);
void armDisaster(Disaster disaster, long n);
/// Requests the cancellation of the calling thread at the cancellation point after n others.
/// @param cancelled  receives true then
void armCancel(long n, bool* cancelled);
/// Cancels all requests except that of armCancel(). @return true if a call has failed or was short
bool disarmCalls();
/// The error number of the failures that are requested; ENOMEM if only allocations fail.
int injectedError();

/// The calls of this thread since startCounting(), for each hook.
const std::vector<long>& callCounts();
void startCounting();

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

}  // namespace faults

#endif
