#ifndef QBLCORE_TYPES_QBLTYPECAST_HPP
#define QBLCORE_TYPES_QBLTYPECAST_HPP

#include "QBLCore/Frame/QBLExport.h"
#include "QBLCore/Types/QBLDateTimeTypes.hpp"

class I18NString;

/// Converts between text and database values, independent of the process's locales. The operations
/// ignore the argument `context`. Each operation with a context has an overload without it.
///
/// Each conversion returns one of these codes:
/// - ok
/// - badForm: the text is empty or does not have the expected form, or a pointer is null
/// - badCharacter: the text contains a character that the expected form has at no position
/// - outOfRange: the form is correct, but a field is out of its range
/// If several codes apply, the operation returns badCharacter rather than badForm, and badForm
/// rather than outOfRange. The comment of an operation says so if the operation differs from this
/// rule. An operation that reads text stores a value of zeros unless it returns ok.
///
/// The table shows the forms of dates, times and intervals. The parts in brackets are optional.
/// Each letter Y M D H S F stands for one digit, and "D+" for one or more digits. A space stands
/// for exactly one space. White space around the text is ignored, except for dates and real
/// numbers.
///
///     date             YYYY-MM-DD                     2006-03-09
///     time             HH:MM[:SS[.F+]]                10:05:00.5; up to nine digits of a fraction
///     time stamp       date time, or dateTtime        2006-03-09 10:05
///     time zone        [ ]+HHMM[TZ] or [ ]+HH:MM[TZ]  +0530TZ, -08:00; after a time or time stamp
///     day-time         [-]D+ time, or [-]H+:MM...     -2 03:00, or -51:00 for the same
///     year-month       [-](Y+ M+)                     (1 6)
///
/// Hours go up to 23 (except H+), minutes and seconds up to 59, time zones from -12:59 to +13:00.
/// In intervals, months go up to 11, years and whole days up to 2147483647. A date that does not
/// exist in the calendar of the years 1 to 9999 is badForm.
///
/// An operation that writes text writes at most 64 bytes for any value, including the terminating
/// NUL. It does not check the ranges of the fields. The text must not overlap the value. A date,
/// time or interval that was read from text is written in a form that reads as the same value. A
/// fraction is written with nine digits. Seconds are omitted if both the seconds and the fraction
/// are 0. If the value is null, the text is empty.
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

    /// Reads every number that strtod(3) reads, including hexadecimal numbers, "nan", and numbers
    /// after white space. Returns badForm if anything follows the number. Returns outOfRange for
    /// infinity, including the text "inf". Reads an empty text as 0.0. May set errno to ERANGE, as
    /// strtod() does.
    static long string2double(const void* context, double* value, const char* text);
    /// Writes the number as printf(3) does for "%.9g".
    static long number2string(const void* context, char* text, const double* value);
    /// Reads an optional sign and digits. A 64-bit integer is a long long on every machine.
    static long string2int32(const void* context, int* value, const char* text);
    static long string2int64(const void* context, long long* value, const char* text);
    /// Reads one to nine digits and nothing else. The status is outOfRange for a text of more than
    /// nine characters, even if some are not digits. It is badCharacter for an empty text. The
    /// value is 0 unless the status is ok.
    /// @return the status
    static long ascii2unsignedInteger(const void* context, const I18NString& text,
                                      unsigned long& value, long& status);
    /// @}

    /// @name From text to dates, times and intervals
    /// @{

    /// Returns badForm for every text that is not a date, never badCharacter or outOfRange.
    static long string2date(const void* context, QBLDate2* value, const char* text);
    static long string2time(const void* context, QBLTime2* value, const char* text);
    static long string2timeTZ(const void* context, QBLTimeTZ* value, const char* text);
    static long string2timestamp(const void* context, QBLTimestamp2* value, const char* text);
    static long string2timestampTZ(const void* context, QBLTimestampTZ* value, const char* text);
    /// Splits hours without days into days and hours: -51:00 becomes -2 03:00.
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
    /// -(1 6). If years and months are both negative, writes only the minus sign, or nothing if
    /// `negative` is 0. string2YMinterval() returns badForm for such a text.
    static long ymInterval2string(const void* context, char* text, const QBLIntervalYM* value);
    /// @}

    /// @name From dates to time stamps and back
    /// @{

    /// Copies the fields unchanged, and sets fields that the source does not have to 0: a date
    /// becomes midnight, and a time stamp without a zone gets displacement 0. A conversion that
    /// drops the zone keeps the local time.
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

    /// Converts a count of units and carries over to larger units: 90 minutes become 1 hour and 30
    /// minutes.
    /// @param unit  DAY, HOUR, MINUTE or SECOND, or the plural with an S, in upper or lower case;
    ///     any other text is badForm
    /// @return outOfRange for more than 2147483647 days
    static long int2DTinterval(const void* context, QBLInterval2* value, const long* count,
                               const char* unit);
    /// Does the same for the units YEAR and MONTH or their plurals.
    /// @return outOfRange for more than 2147483647 years
    static long int2YMinterval(const void* context, QBLIntervalYM* value, const long* count,
                               const char* unit);
    /// @}

    /// @name Parts of a text
    /// @{

    /// Reads a date of exactly ten characters, without white space around it.
    /// @param leap  true if the year is a leap year
    /// @return false, with all results 0 or false, if the text is not a date in the calendar of the
    ///     years 1 to 9999
    static bool dateString2Integers(const char* text, int& year, int& month, int& day, bool& leap);
    /// Reads a time, without white space around it.
    /// @param fraction  in nanoseconds
    /// @return ok, badForm or outOfRange; except for ok, all results are 0
    static long timeString2Integers(const char* text, int& hour, int& minute, int& second,
                                    int& fraction);
    /// Reads a time zone of exactly six characters, such as "+05:30".
    /// @param displacement  as in QBLTimestampTZ; 0 if the text is not a valid time zone
    /// @return true if the text is a valid time zone
    static bool tzStringToTZDisplacement(const char* text, int& displacement);
    /// @}

    /// @name Without a context
    /// @{

    // The same operations without a context.
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
