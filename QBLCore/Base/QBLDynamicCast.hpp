#ifndef QBLCORE_BASE_QBLDYNAMICCAST_HPP
#define QBLCORE_BASE_QBLDYNAMICCAST_HPP

#include <cstring>
#include <type_traits>

/// dynamic_cast for objects whose class a program may define. Returns null if the class was
/// compiled with -fno-rtti: the virtual table of such a class has no type information, and
/// dynamic_cast would read through a null pointer.
///
/// Threads: any thread, as for reading the object.
template <class Target, class Source>
Target qblDynamicCast(Source* object) {
    static_assert(std::is_polymorphic_v<Source>);
    // The C++ ABI puts the pointer to the virtual table first, and the type information before the
    // first virtual function.
    const void* const* table = nullptr;
    std::memcpy(&table, static_cast<const void*>(object), sizeof table);
    return table[-1] != nullptr ? dynamic_cast<Target>(object) : nullptr;
}

#endif
