#ifndef QBLCORE_FRAME_QBLLANGUAGE_HPP
#define QBLCORE_FRAME_QBLLANGUAGE_HPP

/// @file
/// Rejects settings of the compiler under which the C++ headers cannot work. Every C++ header
/// includes this one, directly or through another header, before its first declaration. The headers
/// for C do not include it.
///
/// Threads: contains no operations.

// Only real compilers must define __cpp_exceptions; code checkers do not.
#if __cplusplus < 201703L
#error "QBLCore requires C++17 or later: compile with -std=c++17"
#elif defined(__GNUC__) && !defined(__cpp_exceptions)
#error "QBLCore reports errors by exceptions: compile without -fno-exceptions"
#endif

#endif
