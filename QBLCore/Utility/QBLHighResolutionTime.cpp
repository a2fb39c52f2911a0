#include "QBLCore/Utility/QBLHighResolutionTime.hpp"

#include <time.h>

bool QBLHighResolutionTime::initialize() {
    timespec now;
    if (clock_gettime(CLOCK_MONOTONIC, &now) != 0) return false;
    tzset();
    return true;
}

// There is nothing to release: the time zone belongs to the process.
void QBLHighResolutionTime::terminate() {}

std::int64_t QBLHighResolutionTime::now() {
    timespec now;
    clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<std::int64_t>(now.tv_sec) * 1000000000 + now.tv_nsec;
}
