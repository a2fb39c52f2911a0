#ifndef QBLCORE_BASE_QBLIMMORTAL_HPP
#define QBLCORE_BASE_QBLIMMORTAL_HPP

#include <new>

/// The one T of the process, made by the first call and never destroyed: a thread may still be
/// alive, and a program call the library from its own last destructors, when the process ends.
template <class T>
T& qblImmortal() {
    alignas(T) static unsigned char s_place[sizeof(T)];
    static T& s_one = *new (s_place) T;
    return s_one;
}

#endif
