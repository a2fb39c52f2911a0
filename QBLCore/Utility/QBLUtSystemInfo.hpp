#ifndef QBLCORE_UTILITY_QBLUTSYSTEMINFO_HPP
#define QBLCORE_UTILITY_QBLUTSYSTEMINFO_HPP

#include <string>

#include "QBLCore/Frame/QBLExport.h"

/// What there is to know about the process and its machine.
///
/// Threads: any thread.
struct QBL_API QBLUtSystemInfo {
    static unsigned long getProcessId();
    /// The present local time as "2006-03-09 10:05:00", in the same form in every locale.
    /// @param withMillis  non-zero adds the milliseconds, as ".123"
    static std::string getTimeStamp(int withMillis);
};

#endif
