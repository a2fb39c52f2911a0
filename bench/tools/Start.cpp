// Measures the start of a program that is linked with a library and barely uses it. This file is
// compiled once for each library: with START_ICU, START_QT, START_QBLCORE, or none of them.
//
// Usage: start_LIBRARY NANOSECONDS. The argument is the time of the monotonic clock just before the
// start of the program. The program prints pairs of a name and a figure, which QBLStartUpBench.cpp
// reads.
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>

#ifdef START_ICU
#include <unicode/ucal.h>
#include <unicode/uchar.h>
#endif
#ifdef START_QT
#include <QtCore/qglobal.h>
#endif
#ifdef START_QBLCORE
#include "QBLCore/Frame/QBLCore.h"
#include "i18n/cpp/i18n_init.h"
#endif

namespace {

double now() {
    timespec time = {};
    clock_gettime(CLOCK_MONOTONIC, &time);
    return static_cast<double>(time.tv_sec) * 1e9 + static_cast<double>(time.tv_nsec);
}

/// Returns the memory that this process has written to and shares with no other process, in
/// kilobytes.
double dirtyKilobytes() {
    double kilobytes = 0;
    std::FILE* const file = std::fopen("/proc/self/smaps_rollup", "re");
    if (file == nullptr) return kilobytes;
    char line[256];
    while (std::fgets(line, sizeof line, file) != nullptr)
        if (std::strncmp(line, "Private_Dirty:", 14) == 0)
            kilobytes = std::strtod(line + 14, nullptr);
    std::fclose(file);
    return kilobytes;
}

/// Prints the microseconds that a call takes.
template <class Call>
[[maybe_unused]] void timed(const char* name, Call call) {
    const double start = now();
    call();
    std::printf("%s %f\n", name, (now() - start) / 1000);
}

/// Calls the library that the program is linked with, so that the linker keeps the library.
void use() {
#ifdef START_ICU
    if (u_charType('x') != U_LOWERCASE_LETTER || ucal_getNow() <= 0) std::exit(1);
#endif
#ifdef START_QT
    if (qVersion() == nullptr) std::exit(1);
#endif
#ifdef START_QBLCORE
    timed("initialize_us", [] {
        if (qblCoreInitialize() != 0) std::exit(1);
    });
    timed("i18n_us", I18NInitialize);
    timed("i18n_end_us", I18NTerminate);
    timed("terminate_us", [] {
        if (qblCoreTerminate() != 0) std::exit(1);
    });
#endif
}

}  // namespace

int main(int argc, char** argv) {
    const double inMain = now();
    if (argc != 2) return 2;
    std::printf("main_ns %f\n", inMain - std::strtod(argv[1], nullptr));
    std::printf("dirty_kB %f\n", dirtyKilobytes());
    use();
    std::printf("all_dirty_kB %f\n", dirtyKilobytes());
    return 0;
}
