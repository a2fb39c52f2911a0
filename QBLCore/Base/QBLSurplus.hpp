#ifndef QBLCORE_BASE_QBLSURPLUS_HPP
#define QBLCORE_BASE_QBLSURPLUS_HPP

#include <cstddef>
#include <cstdlib>
#include <new>

/// Whether to try for more memory than is needed. A program's new-handler may end the process, so
/// it must only be called for what is needed: where there is one, malloc(3) says first whether it
/// has that much. Another thread can take the memory before operator new does; then the handler is
/// called, as it soon would have been anyway.
inline bool qblMayTakeSurplus(std::size_t size) {
    if (std::get_new_handler() == nullptr) return true;
    void* volatile probe = std::malloc(size);  // volatile: else the pair is optimised away
    std::free(probe);
    return probe != nullptr;
}

#endif
