#ifndef QBLCORE_THREADS_QBLMILLISECONDS_HPP
#define QBLCORE_THREADS_QBLMILLISECONDS_HPP

#include "QBLCore/Threads/QBLTimeout.hpp"

/// A timeout in milliseconds, made from a duration or a time point of std::chrono. An operation
/// that takes this class takes both:
///
///     mutex.try_lock_for(std::chrono::microseconds(1500));  // 2 ms
///
/// The time is rounded up to whole milliseconds. A negative time and NaN become 0. A time of more
/// than 4294967294 ms, which is 49.7 days, becomes QBLWaitForever.
///
/// This header does not include `<chrono>`. It accepts any type with the members of a duration or
/// of a time point.
///
/// Threads: reading: any thread; changing: one thread.
class QBLMilliseconds {
public:
    /// @param time  a duration
    template <class Duration, class Period = typename Duration::period,
              class = decltype(static_cast<const Duration*>(nullptr)->count())>
    constexpr QBLMilliseconds(const Duration& time)
        : m_ulCount(roundUp(convert<Period>(time.count()))) {}
    /// The time that is left until a time point, by the time point's own clock.
    template <class TimePoint, class Clock = typename TimePoint::clock>
    QBLMilliseconds(const TimePoint& end) : m_ulCount(roundUp(sinceEpoch(end) - now<Clock>())) {}

    constexpr unsigned long count() const { return m_ulCount; }

private:
    // A long double holds each 64-bit count exactly. The divisor is as small as possible, so that
    // the quotient of a whole number of milliseconds is exact too.
    template <class Period, class Rep>
    static constexpr long double convert(const Rep& count) {
        constexpr bool kFine = Period::den % 1000 == 0;
        constexpr long double kFactor = kFine ? 1 : 1000;
        constexpr long double kDivisor = kFine ? Period::den / 1000 : Period::den;
        return static_cast<long double>(count) * (kFactor * Period::num) / kDivisor;
    }
    template <class TimePoint>
    static long double sinceEpoch(const TimePoint& time) {
        return convert<typename TimePoint::period>(time.time_since_epoch().count());
    }
    template <class Clock>
    static long double now() {
        return sinceEpoch(Clock::now());
    }
    static constexpr unsigned long roundUp(long double ms) {
        if (!(ms > 0)) return 0;
        if (ms > 4294967294.0L) return QBLWaitForever;
        const unsigned long whole = static_cast<unsigned long>(ms);
        return static_cast<long double>(whole) < ms ? whole + 1 : whole;
    }

    unsigned long m_ulCount;
};

/// Calls attempt(QBLMilliseconds) with the time that is left, until it returns true or its clock
/// has reached the time point. Calls it at least once. So the end is right even if someone has set
/// the clock back during an attempt.
/// @return the result of the last attempt
template <class TimePoint, class Attempt, class = typename TimePoint::clock>
bool qblAttemptUntil(const TimePoint& end, Attempt attempt) {
    for (;;) {
        const QBLMilliseconds left(end);
        if (attempt(left)) return true;
        if (left.count() == 0) return false;
    }
}

#endif
