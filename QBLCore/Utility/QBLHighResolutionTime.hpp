#ifndef QBLCORE_UTILITY_QBLHIGHRESOLUTIONTIME_HPP
#define QBLCORE_UTILITY_QBLHIGHRESOLUTIONTIME_HPP

#include <cstdint>

#include "QBLCore/Frame/QBLExport.h"

/// Time for measuring durations. The library's start and stop call initialize() and
/// terminate().
///
/// Threads: any thread may call any operation.
class QBL_API QBLHighResolutionTime {
public:
    /// Reads the process's time zone, which local time stamps are shown in, and tries the clock.
    /// @return false if the system has no monotonic clock.
    static bool initialize();
    static void terminate();

    /// Nanoseconds from a fixed but arbitrary moment; never runs backwards.
    static std::int64_t now();
};

#endif
