#ifndef QBLCORE_BASE_QBLIMMORTAL_HPP
#define QBLCORE_BASE_QBLIMMORTAL_HPP

#include <new>

/// Returns the only T of the process. The first call creates the object. The object is never
/// destroyed: when the process ends, threads may still run, and the last destructors of the program
/// may call the library.
template <class T>
T& qblImmortal() {
    alignas(T) static unsigned char s_place[sizeof(T)];
    static T& s_one = *new (s_place) T;
    return s_one;
}

#endif
