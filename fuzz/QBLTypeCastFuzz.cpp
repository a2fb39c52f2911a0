// Parses the input as the type that its first byte selects. If the text is valid, writes the value
// and reads it again; the value must not change. If the text is malformed, the value must be all
// zeros and the status must give the reason. Also uses the bytes as the raw fields of a value; the
// text of this value must fit into its buffer.
#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

#include "QBLCore/Types/QBLTypeCast.hpp"
#include "QBLCore/Types/c/QBLDataTypesConversion_c.h"

namespace {

using Cast = QBLTypeCast;
constexpr std::size_t kRoom = 64;

void require(bool holds) {
    if (!holds) std::abort();
}

template <class Value>
bool sameDate(const Value& a, const Value& b) {
    return a.year == b.year && a.month == b.month && a.day == b.day;
}
template <class Value>
bool sameTime(const Value& a, const Value& b) {
    return a.hour == b.hour && a.minute == b.minute && a.second == b.second &&
           a.fraction == b.fraction;
}
bool same(const QBLDate2& a, const QBLDate2& b) { return sameDate(a, b); }
bool same(const QBLTime2& a, const QBLTime2& b) { return sameTime(a, b); }
bool same(const QBLTimeTZ& a, const QBLTimeTZ& b) {
    return sameTime(a, b) && a.displacement == b.displacement;
}
bool same(const QBLTimestamp2& a, const QBLTimestamp2& b) {
    return sameTime(a, b) && sameDate(a, b);
}
bool same(const QBLTimestampTZ& a, const QBLTimestampTZ& b) {
    return sameTime(a, b) && sameDate(a, b) && a.displacement == b.displacement;
}
bool same(const QBLInterval2& a, const QBLInterval2& b) {
    return a.negative == b.negative && a.days == b.days && a.hours == b.hours &&
           a.minutes == b.minutes && a.seconds == b.seconds && a.fraction == b.fraction;
}
bool same(const QBLIntervalYM& a, const QBLIntervalYM& b) {
    return a.negative == b.negative && a.years == b.years && a.months == b.months;
}

template <class Value>
using Read = long (*)(Value*, const char*);
template <class Value>
using Write = long (*)(char*, const Value*);

template <class Value>
void check(const std::string& text, Read<Value> read, Write<Value> write) {
    Value value, again;
    char out[kRoom];
    std::memset(static_cast<void*>(&value), 0x55, sizeof value);
    const long status = read(&value, text.c_str());
    if (status == Cast::ok) {
        require(write(out, &value) == Cast::ok && read(&again, out) == Cast::ok);
        require(same(value, again));
    } else {
        require(status == Cast::badForm || status == Cast::badCharacter ||
                status == Cast::outOfRange);
        require(same(value, Value()));
    }
    std::memcpy(static_cast<void*>(&value), text.data(), std::min(text.size(), sizeof value));
    require(write(out, &value) == Cast::ok && std::strlen(out) < kRoom);
}

/// Requires that a valid text gives the same value as strtod(). Also writes the value with nine
/// digits; reading and writing this text again must not change it.
void checkDouble(const std::string& text) {
    double value, again;
    char out[kRoom], outAgain[kRoom];
    if (Cast::string2double(&value, text.c_str()) != Cast::ok) return require(value == 0);
    Cast::number2string(out, &value);
    require(Cast::string2double(&again, out) == Cast::ok);
    Cast::number2string(outAgain, &again);
    require(std::strcmp(out, outAgain) == 0);
    char* end = nullptr;
    const double exact = std::strtod(text.c_str(), &end);
    require(*end == '\0' &&
            (std::isnan(exact) || (exact == value && std::signbit(exact) == std::signbit(value))));
}

void checkIntegers(const std::string& text) {
    int value = 0, digits = 0;
    long long wide = 0;
    char out[kRoom];
    const long status = Cast::string2int32(&value, text.c_str());
    const long wideStatus = Cast::string2int64(&wide, text.c_str());
    require(status == wideStatus || wideStatus == Cast::ok || status == Cast::outOfRange);
    if (status == Cast::ok)
        require(wide == value && asciiToInt32(text.c_str(), &digits) == 1 && digits == value &&
                int32ToAscii(out, value) > 0 && std::atoi(out) == value);
    else
        require(value == 0);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) return 0;
    const std::string text(reinterpret_cast<const char*>(data + 1), size - 1);
    switch (data[0] % 10) {
        case 0:
            check<QBLDate2>(text, &Cast::string2date, &Cast::date2string);
            break;
        case 1:
            check<QBLTime2>(text, &Cast::string2time, &Cast::time2string);
            break;
        case 2:
            check<QBLTimeTZ>(text, &Cast::string2timeTZ, &Cast::timeTZ2string);
            break;
        case 3:
            check<QBLTimestamp2>(text, &Cast::string2timestamp, &Cast::timestamp2string);
            break;
        case 4:
            check<QBLTimestampTZ>(text, &Cast::string2timestampTZ, &Cast::timestampTZ2string);
            break;
        case 5:
            check<QBLInterval2>(text, &Cast::string2DTinterval, &Cast::dtInterval2string);
            break;
        case 6:
            check<QBLInterval2>(text, &Cast::string2DTinterval, &Cast::dtInterval2stringAsTime);
            break;
        case 7:
            check<QBLIntervalYM>(text, &Cast::string2YMinterval, &Cast::ymInterval2string);
            break;
        case 8:
            checkDouble(text);
            break;
        default:
            checkIntegers(text);
    }
    return 0;
}
