#ifndef QBLCORE_THREADS_QBLTIMEOUT_HPP
#define QBLCORE_THREADS_QBLTIMEOUT_HPP

#include "QBLCore/Frame/QBLLanguage.hpp"

/// The timeout that waits without limit. Other timeouts are in milliseconds, and 0 does not wait.
/// The value 0xFFFFFFFF also waits without limit, even if long has 64 bits.
constexpr unsigned long QBLWaitForever = ~0UL;

#endif
