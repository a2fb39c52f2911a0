#ifndef QBLCORE_TYPES_QBLDATETIMETYPES_HPP
#define QBLCORE_TYPES_QBLDATETIMETYPES_HPP

#include <cstdint>

// Dates, times and intervals as databases have them, in the Gregorian calendar. Fractions are in
// nanoseconds. An interval is below zero if its field says so by any number but 0. QBLTypeCast
// reads and writes them as text.
//
// Threads: any thread may read one; changing one is not synchronised.

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

/// The displacement is the sign, the hours and the minutes as one decimal number, from -1259 to
/// 1300: 530 is +05:30, -30 is -00:30. The other fields are the local time.
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

/// The displacement is that of QBLTimestampTZ.
struct QBLTimeTZ {
    std::int8_t hour;
    std::int8_t minute;
    std::int8_t second;
    std::int32_t fraction;
    std::int16_t displacement;
};

/// A day-time interval; negative is 1 for one that goes back, and 0 for another.
struct QBLInterval2 {
    std::int32_t negative;
    std::int32_t days;
    std::int32_t hours;
    std::int32_t minutes;
    std::int32_t seconds;
    std::int32_t fraction;
};

/// A year-month interval; negative is 1 for one that goes back, and 0 for another.
struct QBLIntervalYM {
    std::int32_t negative;
    std::int32_t years;
    std::int32_t months;
};

#endif
