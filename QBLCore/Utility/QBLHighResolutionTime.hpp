#ifndef QBLCORE_UTILITY_QBLHIGHRESOLUTIONTIME_HPP
#define QBLCORE_UTILITY_QBLHIGHRESOLUTIONTIME_HPP

#include <cstdint>

#include "QBLCore/Frame/QBLExport.h"
#include "QBLCore/Frame/QBLLanguage.hpp"

/// A clock for measuring durations. The library calls initialize() when it starts and terminate()
/// when it stops.
///
/// Threads: any thread may call any operation.
class QBL_API QBLHighResolutionTime {
public:
    /// Reads the process's time zone, which local time stamps use, and checks the clock.
    /// @return false if the system has no monotonic clock.
    static bool initialize();
    static void terminate();

    /// Returns the nanoseconds since a fixed but arbitrary moment; never runs backwards.
    static std::int64_t now();
};

#endif
