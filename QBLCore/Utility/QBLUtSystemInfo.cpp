#include "QBLCore/Utility/QBLUtSystemInfo.hpp"

#include <unistd.h>

#include <cstdio>
#include <ctime>

unsigned long QBLUtSystemInfo::getProcessId() { return static_cast<unsigned long>(getpid()); }

std::string QBLUtSystemInfo::getTimeStamp(int withMillis) {
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    std::tm local{};
    localtime_r(&now.tv_sec, &local);
    char text[64];
    std::size_t length = std::strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S", &local);
    if (withMillis != 0)
        length += static_cast<std::size_t>(std::snprintf(
            text + length, sizeof text - length, ".%03d", static_cast<int>(now.tv_nsec / 1000000)));
    return std::string(text, length);
}
