// This function has its own source file, so that no caller is compiled against this definition
// instead of the program's.
#include <cstdarg>
#include <cstdio>

#include "TavThread/TavTrace.h"

#if !defined(__clang__)
// The compiler infers that the target does not throw, and warns that the alias does not declare it.
#pragma GCC diagnostic ignored "-Wmissing-attributes"
#endif

extern "C" void tavThreadTraceOutput(void*, unsigned long, const char* format, ...) {
    char line[1024];
    va_list args;
    va_start(args, format);
    std::vsnprintf(line, sizeof line, format, args);
    va_end(args);
}

extern "C" __attribute__((visibility("hidden"), alias("tavThreadTraceOutput"))) void
tavThreadTraceOutputBuiltIn(void*, unsigned long, const char*, ...);
