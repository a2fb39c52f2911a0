#include <limits>

#include "QBLCore/Types/QBLTypeCast.hpp"
#include "QBLCore/Types/internal/QBLFieldReader.hpp"

namespace {

constexpr std::uint64_t kMost = std::numeric_limits<std::int32_t>::max();

struct DayTimeFields {
    std::uint64_t days = 0;
    QBLTimeFields time;

    /// Takes D+ HH:MM..., or H+:MM...
    bool take(QBLFieldReader& text) {
        std::uint64_t first = 0;
        if (!text.takeNumber(first, kMost * 24 + 23)) return false;
        if (text.take(' ')) {
            days = first;
            return time.take(text);
        }
        days = first / 24;
        time.hour = static_cast<int>(first % 24);
        return text.take(':') && time.takeRest(text);
    }
};

/// Returns the absolute value, even of LONG_MIN.
unsigned long magnitude(long count) {
    const auto bits = static_cast<unsigned long>(count);
    return count < 0 ? ~bits + 1 : bits;
}

/// Returns true if the text is the unit, in upper or lower case, with or without an S at its end.
/// @param unit  the unit in capitals
bool isUnit(const char* text, const char* unit) {
    for (; *unit != '\0'; ++unit, ++text)
        if (*text != *unit && *text != (*unit | 0x20)) return false;
    return *text == '\0' || ((*text == 's' || *text == 'S') && text[1] == '\0');
}

}  // namespace

long QBLTypeCast::string2DTinterval(const void*, QBLInterval2* value, const char* string) {
    if (value == nullptr) return badForm;
    *value = QBLInterval2();
    QBLFieldReader text(string);
    text.skipBlanks();
    const bool negative = text.take('-');
    DayTimeFields fields;
    if (!fields.take(text) || !text.onlyBlanksLeft()) return text.fault("-:.");
    const QBLTimeFields& time = fields.time;
    if (fields.days > kMost || !time.valid()) return outOfRange;
    *value = {negative,    static_cast<std::int32_t>(fields.days),
              time.hour,   time.minute,
              time.second, time.fraction};
    return ok;
}

long QBLTypeCast::string2YMinterval(const void*, QBLIntervalYM* value, const char* string) {
    if (value == nullptr) return badForm;
    *value = QBLIntervalYM();
    QBLFieldReader text(string);
    text.skipBlanks();
    const bool negative = text.take('-');
    std::uint64_t years = 0, months = 0;
    if (!text.take('(') || !text.takeNumber(years, kMost) || !text.take(' ') ||
        !text.takeNumber(months, kMost) || !text.take(')') || !text.onlyBlanksLeft())
        return text.fault("-()");
    if (years > kMost || months > 11) return outOfRange;
    *value = {negative, static_cast<std::int32_t>(years), static_cast<std::int32_t>(months)};
    return ok;
}

long QBLTypeCast::int2DTinterval(const void*, QBLInterval2* value, const long* count,
                                 const char* unit) {
    if (value == nullptr) return badForm;
    *value = QBLInterval2();
    if (count == nullptr || unit == nullptr) return badForm;
    // In each row, `next` units equal one unit of the next row.
    struct {
        const char* unit;
        unsigned next;
        unsigned long count;
    } places[] = {{"SECOND", 60, 0}, {"MINUTE", 60, 0}, {"HOUR", 24, 0}, {"DAY", 0, 0}};
    unsigned given = 0;
    while (given < 4 && !isUnit(unit, places[given].unit)) ++given;
    if (given == 4) return badForm;
    places[given].count = magnitude(*count);
    for (unsigned i = given; i < 3; ++i) {
        places[i + 1].count = places[i].count / places[i].next;
        places[i].count %= places[i].next;
    }
    if (places[3].count > kMost) return outOfRange;
    *value = {*count < 0,
              static_cast<std::int32_t>(places[3].count),
              static_cast<std::int32_t>(places[2].count),
              static_cast<std::int32_t>(places[1].count),
              static_cast<std::int32_t>(places[0].count),
              0};
    return ok;
}

long QBLTypeCast::int2YMinterval(const void*, QBLIntervalYM* value, const long* count,
                                 const char* unit) {
    if (value == nullptr) return badForm;
    *value = QBLIntervalYM();
    if (count == nullptr || unit == nullptr) return badForm;
    const bool inMonths = isUnit(unit, "MONTH");
    if (!inMonths && !isUnit(unit, "YEAR")) return badForm;
    const unsigned long all = magnitude(*count), years = inMonths ? all / 12 : all;
    if (years > kMost) return outOfRange;
    *value = {*count < 0, static_cast<std::int32_t>(years),
              static_cast<std::int32_t>(inMonths ? all % 12 : 0)};
    return ok;
}
