#ifndef QBLCORE_THREADS_QBLTIMEOUT_HPP
#define QBLCORE_THREADS_QBLTIMEOUT_HPP

/// The timeout that waits without limit; every other is milliseconds, and 0 does not wait.
/// All ones in 32 bits means the same, whatever the width of long.
constexpr unsigned long QBLWaitForever = ~0UL;

#endif
