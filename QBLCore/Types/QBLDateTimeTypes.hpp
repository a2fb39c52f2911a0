#ifndef QBLCORE_TYPES_QBLDATETIMETYPES_HPP
#define QBLCORE_TYPES_QBLDATETIMETYPES_HPP

#include <cstdint>

#include "QBLCore/Frame/QBLLanguage.hpp"

// Dates, times and intervals as databases store them, in the Gregorian calendar. Fractions are in
// nanoseconds. An interval is negative if its field `negative` is not 0. QBLTypeCast converts these
// types from and to text.
//
// Threads: any number of threads may read an object; changes are not synchronised.

struct QBLDate2 {
    std::int16_t year;
    std::int8_t month;
    std::int8_t day;
};

struct QBLTime2 {
    std::int8_t hour;
    std::int8_t minute;
    std::int8_t second;
    std::int32_t fraction;
};

struct QBLTimestamp2 {
    std::int16_t year;
    std::int8_t month;
    std::int8_t day;
    std::int8_t hour;
    std::int8_t minute;
    std::int8_t second;
    std::int32_t fraction;
};

/// A local time and its time zone. `displacement` is the difference from UTC, written as the
/// decimal number +-HHMM, from -1259 to 1300: 530 is +05:30, -30 is -00:30.
struct QBLTimestampTZ {
    std::int16_t year;
    std::int8_t month;
    std::int8_t day;
    std::int8_t hour;
    std::int8_t minute;
    std::int8_t second;
    std::int32_t fraction;
    std::int16_t displacement;
};

/// A local time and its time zone; `displacement` as in QBLTimestampTZ.
struct QBLTimeTZ {
    std::int8_t hour;
    std::int8_t minute;
    std::int8_t second;
    std::int32_t fraction;
    std::int16_t displacement;
};

/// A day-time interval; QBLTypeCast stores 1 or 0 in `negative`.
struct QBLInterval2 {
    std::int32_t negative;
    std::int32_t days;
    std::int32_t hours;
    std::int32_t minutes;
    std::int32_t seconds;
    std::int32_t fraction;
};

/// A year-month interval; QBLTypeCast stores 1 or 0 in `negative`.
struct QBLIntervalYM {
    std::int32_t negative;
    std::int32_t years;
    std::int32_t months;
};

#endif
