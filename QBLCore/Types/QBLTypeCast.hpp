#ifndef QBLCORE_TYPES_QBLTYPECAST_HPP
#define QBLCORE_TYPES_QBLTYPECAST_HPP

#include "QBLCore/Frame/QBLExport.h"
#include "QBLCore/Types/QBLDateTimeTypes.hpp"

class I18NString;

/// Converts between text and the values of databases, whatever the process's locales are. The
/// context, which those who call by a table of conversions hand over, is not looked at; without one
/// there is an overload for each.
///
/// Each returns one of
/// - ok
/// - badForm: the text has another form, or there is none; a pointer is null
/// - badCharacter: the text has a character that no text of the kind has, wherever it stands
/// - outOfRange: the form is right and a field is not
/// The first that applies in the order badCharacter, badForm, outOfRange, unless the operation says
/// otherwise. What reads text stores a value of zeros unless it returns ok.
///
/// Texts of times and intervals, of which the parts in brackets may be missing; a letter stands for
/// a digit, "D+" for at least one. Single spaces are where they are shown. White space around a
/// text is ignored, but for dates and real numbers.
///
///     date             YYYY-MM-DD                     2006-03-09
///     time             HH:MM[:SS[.F+]]                10:05:00.5; up to nine digits of a fraction
///     time stamp       date time, or dateTtime        2006-03-09 10:05
///     time zone        [ ]+HHMM[TZ] or [ ]+HH:MM[TZ]  +0530TZ, -08:00; behind a time or time stamp
///     day-time         [-]D+ time, or [-]H+:MM...     -2 03:00, or -51:00 for the same
///     year-month       [-](Y+ M+)                     (1 6)
///
/// Hours go to 23, minutes and seconds to 59, months of an interval to 11, zones from -12:59 to
/// +13:00, whole days and years of an interval to 2147483647. A date that is not in the calendar of
/// the years 1 to 9999 is in bad form.
///
/// What is written has at most 64 bytes with its terminating zero, whatever is in the fields of a
/// value: a field out of its range is written as it is. The text must not overlap the value. A
/// date, time or interval that was read is written in a form that is read as the same value; a
/// fraction has all nine digits then, and seconds are left out where they and the fraction are 0.
/// Where a value is null an empty text is written.
///
/// Threads: any thread may call any operation at any time.
///
///     QBLTimestamp2 when;
///     if (QBLTypeCast::string2timestamp(&when, "2006-03-09 10:05") == QBLTypeCast::ok) use(when);
class QBL_API QBLTypeCast {
public:
    /// @name Status
    /// @{

    static constexpr long ok = 0;
    static constexpr long outOfRange = 8;
    static constexpr long badCharacter = 32;
    static constexpr long badForm = 528;
    /// @}

    /// @name Numbers and text
    /// @{

    /// What strtod(3) reads: white space before it, hexadecimal numbers, "nan". All of the text has
    /// to be read; badForm if not. An empty text is 0.0. Infinity, also by its name, is outOfRange.
    /// errno may become ERANGE, as by strtod.
    static long string2double(const void* context, double* value, const char* text);
    /// As by "%.9g" of printf(3).
    static long number2string(const void* context, char* text, const double* value);
    /// [+-] and digits. Integers of 64 bits are long long on every machine.
    static long string2int32(const void* context, int* value, const char* text);
    static long string2int64(const void* context, long long* value, const char* text);
    /// Up to nine digits, and nothing else: badCharacter for an empty text, outOfRange for a longer
    /// one whatever it has. The value is 0 unless the status is ok.
    /// @return the status
    static long ascii2unsignedInteger(const void* context, const I18NString& text,
                                      unsigned long& value, long& status);
    /// @}

    /// @name From text to dates, times and intervals
    /// @{

    /// badForm for whatever is not a date.
    static long string2date(const void* context, QBLDate2* value, const char* text);
    static long string2time(const void* context, QBLTime2* value, const char* text);
    static long string2timeTZ(const void* context, QBLTimeTZ* value, const char* text);
    static long string2timestamp(const void* context, QBLTimestamp2* value, const char* text);
    static long string2timestampTZ(const void* context, QBLTimestampTZ* value, const char* text);
    /// Hours without days become days and the hours of a day.
    static long string2DTinterval(const void* context, QBLInterval2* value, const char* text);
    static long string2YMinterval(const void* context, QBLIntervalYM* value, const char* text);
    /// @}

    /// @name From dates, times and intervals to text
    /// @{

    /// 2006-03-09
    static long date2string(const void* context, char* text, const QBLDate2* value);
    /// 10:05
    static long time2string(const void* context, char* text, const QBLTime2* value);
    /// 10:05 +0530TZ
    static long timeTZ2string(const void* context, char* text, const QBLTimeTZ* value);
    /// 2006-03-09 10:05:00.000000005
    static long timestamp2string(const void* context, char* text, const QBLTimestamp2* value);
    /// 2006-03-09 10:05:07 -0800TZ
    static long timestampTZ2string(const void* context, char* text, const QBLTimestampTZ* value);
    /// -2 03:00
    static long dtInterval2string(const void* context, char* text, const QBLInterval2* value);
    /// -51:00
    static long dtInterval2stringAsTime(const void* context, char* text, const QBLInterval2* value);
    /// -(1 6). Nothing but the sign where both years and months are below 0, which reads as
    /// badForm.
    static long ymInterval2string(const void* context, char* text, const QBLIntervalYM* value);
    /// @}

    /// @name From dates to time stamps and back
    /// @{

    /// A date is at midnight. A displacement is 0 where there was none, and is dropped, with the
    /// local time as it was, where there is none. Fields are copied as they are.
    static long date2timestamp(const void* context, QBLTimestamp2* to, const QBLDate2* from);
    static long timestamp2date(const void* context, QBLDate2* to, const QBLTimestamp2* from);
    static long timestampTZ2timestamp(const void* context, QBLTimestamp2* to,
                                      const QBLTimestampTZ* from);
    static long timestamp2timestampTZ(const void* context, QBLTimestampTZ* to,
                                      const QBLTimestamp2* from);
    static long date2timestampTZ(const void* context, QBLTimestampTZ* to, const QBLDate2* from);
    static long timestampTZ2date(const void* context, QBLDate2* to, const QBLTimestampTZ* from);
    /// @}

    /// @name From counts to intervals
    /// @{

    /// A count of units, carried over into greater ones: 90 minutes are 1 hour and 30 minutes.
    /// @param unit  DAY, HOUR, MINUTE or SECOND in any case, or their plurals with an S; any other
    ///     is badForm
    /// @return outOfRange for more than 2147483647 days
    static long int2DTinterval(const void* context, QBLInterval2* value, const long* count,
                               const char* unit);
    /// The same with YEAR or MONTH, or their plurals.
    static long int2YMinterval(const void* context, QBLIntervalYM* value, const long* count,
                               const char* unit);
    /// @}

    /// @name Parts of a text
    /// @{

    /// Reads a date of exactly ten characters, without white space around it.
    /// @param leap  whether the year is a leap year
    /// @return false if it is not in the calendar of the years 1 to 9999; all are 0 then
    static bool dateString2Integers(const char* text, int& year, int& month, int& day, bool& leap);
    /// Reads a time, without white space around it.
    /// @param fraction  in nanoseconds
    /// @return ok, badForm or outOfRange; all are 0 unless it is ok
    static long timeString2Integers(const char* text, int& hour, int& minute, int& second,
                                    int& fraction);
    /// Reads a displacement of exactly six characters, "+05:30".
    /// @param displacement  as in QBLTimestampTZ; 0 unless it can be read
    static bool tzStringToTZDisplacement(const char* text, int& displacement);
    /// @}

    /// @name Without a context
    /// @{

    // The same without a context.
#define QBL_TYPE_CAST(operation, To, From) \
    static long operation(To to, From from) { return operation(nullptr, to, from); }
    QBL_TYPE_CAST(string2double, double*, const char*)
    QBL_TYPE_CAST(number2string, char*, const double*)
    QBL_TYPE_CAST(string2int32, int*, const char*)
    QBL_TYPE_CAST(string2int64, long long*, const char*)
    QBL_TYPE_CAST(string2date, QBLDate2*, const char*)
    QBL_TYPE_CAST(string2time, QBLTime2*, const char*)
    QBL_TYPE_CAST(string2timeTZ, QBLTimeTZ*, const char*)
    QBL_TYPE_CAST(string2timestamp, QBLTimestamp2*, const char*)
    QBL_TYPE_CAST(string2timestampTZ, QBLTimestampTZ*, const char*)
    QBL_TYPE_CAST(string2DTinterval, QBLInterval2*, const char*)
    QBL_TYPE_CAST(string2YMinterval, QBLIntervalYM*, const char*)
    QBL_TYPE_CAST(date2string, char*, const QBLDate2*)
    QBL_TYPE_CAST(time2string, char*, const QBLTime2*)
    QBL_TYPE_CAST(timeTZ2string, char*, const QBLTimeTZ*)
    QBL_TYPE_CAST(timestamp2string, char*, const QBLTimestamp2*)
    QBL_TYPE_CAST(timestampTZ2string, char*, const QBLTimestampTZ*)
    QBL_TYPE_CAST(dtInterval2string, char*, const QBLInterval2*)
    QBL_TYPE_CAST(dtInterval2stringAsTime, char*, const QBLInterval2*)
    QBL_TYPE_CAST(ymInterval2string, char*, const QBLIntervalYM*)
    QBL_TYPE_CAST(date2timestamp, QBLTimestamp2*, const QBLDate2*)
    QBL_TYPE_CAST(timestamp2date, QBLDate2*, const QBLTimestamp2*)
    QBL_TYPE_CAST(timestampTZ2timestamp, QBLTimestamp2*, const QBLTimestampTZ*)
    QBL_TYPE_CAST(timestamp2timestampTZ, QBLTimestampTZ*, const QBLTimestamp2*)
    QBL_TYPE_CAST(date2timestampTZ, QBLTimestampTZ*, const QBLDate2*)
    QBL_TYPE_CAST(timestampTZ2date, QBLDate2*, const QBLTimestampTZ*)
#undef QBL_TYPE_CAST
    static long ascii2unsignedInteger(const I18NString& text, unsigned long& value, long& status) {
        return ascii2unsignedInteger(nullptr, text, value, status);
    }
    static long int2DTinterval(QBLInterval2* value, const long* count, const char* unit) {
        return int2DTinterval(nullptr, value, count, unit);
    }
    static long int2YMinterval(QBLIntervalYM* value, const long* count, const char* unit) {
        return int2YMinterval(nullptr, value, count, unit);
    }
    /// @}
};

#endif
