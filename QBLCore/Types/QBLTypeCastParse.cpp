#include "QBLCore/Types/QBLTypeCast.hpp"
#include "QBLCore/Types/internal/QBLFieldReader.hpp"

namespace {

struct DateFields {
    int year = 0, month = 0, day = 0;

    bool isLeapYear() const { return (year % 4 == 0 && year % 100 != 0) || year % 400 == 0; }

    bool valid() const {
        static constexpr unsigned char kDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
        if (year < 1 || month < 1 || month > 12 || day < 1) return false;
        return day <= kDays[month - 1] + (month == 2 && isLeapYear() ? 1 : 0);
    }

    /// Takes YYYY-MM-DD. Also returns false for a date that is not in the calendar.
    bool take(QBLFieldReader& text) {
        int century = 0;
        if (!text.takePair(century) || !text.takePair(year) || !text.take('-') ||
            !text.takePair(month) || !text.take('-') || !text.takePair(day))
            return false;
        year += century * 100;
        return valid();
    }
};

struct ZoneFields {
    int displacement = 0, minutes = 0;

    /// Takes +HHMM or +HH:MM; `withColon` requires the colon.
    bool takeDigits(QBLFieldReader& text, bool withColon) {
        const bool negative = text.take('-');
        if (!negative && !text.take('+')) return false;
        int hours = 0;
        if (!text.takePair(hours) || (!text.take(':') && withColon) || !text.takePair(minutes))
            return false;
        displacement = hours * 100 + minutes;
        if (negative) displacement = -displacement;
        return true;
    }
    bool take(QBLFieldReader& text) {
        text.take(' ');
        return takeDigits(text, false) && (!text.take('T') || text.take('Z'));
    }
    bool valid() const { return minutes < 60 && displacement >= -1259 && displacement <= 1300; }
};

template <class Value>
void storeDate(Value& to, const DateFields& date) {
    to.year = static_cast<std::int16_t>(date.year);
    to.month = static_cast<std::int8_t>(date.month);
    to.day = static_cast<std::int8_t>(date.day);
}

template <class Value>
void storeTime(Value& to, const QBLTimeFields& time) {
    to.hour = static_cast<std::int8_t>(time.hour);
    to.minute = static_cast<std::int8_t>(time.minute);
    to.second = static_cast<std::int8_t>(time.second);
    to.fraction = time.fraction;
}

/// Reads a time, with a date before it (kDate) and a zone after it (kZone).
/// @param characters  the characters that the form may contain besides digits and white space
template <bool kDate, bool kZone, class Value>
long readTime(Value* value, const char* string, const char* characters) {
    if (value == nullptr) return QBLTypeCast::badForm;
    *value = Value();
    QBLFieldReader text(string);
    text.skipBlanks();
    DateFields date;
    QBLTimeFields time;
    ZoneFields zone;
    if (kDate && (!date.take(text) || (!text.take(' ') && !text.take('T'))))
        return text.fault(characters);
    if (!time.take(text) || (kZone && !zone.take(text)) || !text.onlyBlanksLeft())
        return text.fault(characters);
    if (!time.valid() || !zone.valid()) return QBLTypeCast::outOfRange;
    if constexpr (kDate) storeDate(*value, date);
    storeTime(*value, time);
    if constexpr (kZone) value->displacement = static_cast<std::int16_t>(zone.displacement);
    return QBLTypeCast::ok;
}

}  // namespace

bool QBLTimeFields::takeRest(QBLFieldReader& text) {
    if (!text.takePair(minute)) return false;
    if (!text.take(':')) return true;
    return text.takePair(second) && (!text.take('.') || text.takeNanoseconds(fraction));
}

bool QBLTypeCast::dateString2Integers(const char* text, int& year, int& month, int& day,
                                      bool& leap) {
    QBLFieldReader reader(text);
    DateFields date;
    const bool valid = date.take(reader) && reader.atEnd();
    if (!valid) date = DateFields();
    year = date.year;
    month = date.month;
    day = date.day;
    leap = valid && date.isLeapYear();
    return valid;
}

long QBLTypeCast::timeString2Integers(const char* text, int& hour, int& minute, int& second,
                                      int& fraction) {
    QBLFieldReader reader(text);
    QBLTimeFields time;
    const bool read = time.take(reader) && reader.atEnd();
    const bool valid = read && time.valid();
    if (!valid) time = QBLTimeFields();
    hour = time.hour;
    minute = time.minute;
    second = time.second;
    fraction = time.fraction;
    return valid ? ok : read ? outOfRange : badForm;
}

bool QBLTypeCast::tzStringToTZDisplacement(const char* text, int& displacement) {
    QBLFieldReader reader(text);
    ZoneFields zone;
    const bool valid = zone.takeDigits(reader, true) && reader.atEnd() && zone.valid();
    displacement = valid ? zone.displacement : 0;
    return valid;
}

long QBLTypeCast::string2date(const void*, QBLDate2* value, const char* text) {
    if (value == nullptr) return badForm;
    *value = QBLDate2();
    QBLFieldReader reader(text);
    DateFields date;
    if (!date.take(reader) || !reader.atEnd()) return badForm;
    storeDate(*value, date);
    return ok;
}

long QBLTypeCast::string2time(const void*, QBLTime2* value, const char* text) {
    return readTime<false, false>(value, text, ":.");
}

long QBLTypeCast::string2timeTZ(const void*, QBLTimeTZ* value, const char* text) {
    return readTime<false, true>(value, text, ":.+-TZ");
}

long QBLTypeCast::string2timestamp(const void*, QBLTimestamp2* value, const char* text) {
    return readTime<true, false>(value, text, ":.-T");
}

long QBLTypeCast::string2timestampTZ(const void*, QBLTimestampTZ* value, const char* text) {
    return readTime<true, true>(value, text, ":.+-TZ");
}
