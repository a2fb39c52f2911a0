#include <malloc.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "tests/soak/Soak.hpp"

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
// NOLINTNEXTLINE(bugprone-reserved-identifier): the sanitizer gives the name
extern "C" std::size_t __sanitizer_get_current_allocated_bytes();
// The unwinding of a cancelled thread leaves the sanitizer's marks on the stack. They are no fault
// of the call that the sanitizer itself makes to find the end of the stack and to remove the marks.
// NOLINTNEXTLINE(bugprone-reserved-identifier): the sanitizer gives the name
extern "C" [[gnu::visibility("default")]] const char* __asan_default_suppressions();
const char* __asan_default_suppressions() { return "interceptor_name:sigaltstack"; }
#endif

namespace soak {

namespace {

long entries(const char* folder) {
    return std::distance(std::filesystem::directory_iterator(folder), {});
}

long liveBytes() {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    return static_cast<long>(__sanitizer_get_current_allocated_bytes());
#else
    const struct mallinfo2 info = mallinfo2();
    return static_cast<long>(info.uordblks) + static_cast<long>(info.hblkhd);
#endif
}

}  // namespace

Usage usage() {
    long total = 0, resident = 0;
    std::ifstream("/proc/self/statm") >> total >> resident;
    return {entries("/proc/self/task"), entries("/proc/self/fd") - 1, liveBytes(),
            resident * sysconf(_SC_PAGESIZE)};
}

}  // namespace soak
