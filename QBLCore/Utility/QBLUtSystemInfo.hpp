#ifndef QBLCORE_UTILITY_QBLUTSYSTEMINFO_HPP
#define QBLCORE_UTILITY_QBLUTSYSTEMINFO_HPP

#include <string>

#include "QBLCore/Frame/QBLExport.h"
#include "QBLCore/Frame/QBLLanguage.hpp"

/// The id of the process, and the time.
///
/// Threads: any thread may call any operation.
struct QBL_API QBLUtSystemInfo {
    static unsigned long getProcessId();
    /// Returns the local time as "2006-03-09 10:05:00", in the same form in every locale.
    /// @param withMillis  if not 0, adds the milliseconds, such as ".123"
    static std::string getTimeStamp(int withMillis);
};

#endif
