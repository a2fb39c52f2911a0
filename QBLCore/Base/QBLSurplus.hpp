#ifndef QBLCORE_BASE_QBLSURPLUS_HPP
#define QBLCORE_BASE_QBLSURPLUS_HPP

#include <cstddef>
#include <cstdlib>
#include <new>

/// Returns true if the caller may try to get more memory than it needs. A program's new-handler may
/// end the process, so it must be called only for memory that is needed. If there is a new-handler,
/// this function first asks malloc(3) for the memory. Another thread can take the memory before
/// operator new does. The handler is then called, but it would soon be called anyway.
inline bool qblMayTakeSurplus(std::size_t size) {
    if (std::get_new_handler() == nullptr) return true;
    void* volatile probe = std::malloc(size);  // volatile, so that the pair is not optimised away
    std::free(probe);
    return probe != nullptr;
}

#endif
