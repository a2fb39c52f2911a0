#include "QBLCore/Types/QBLTypeCast.hpp"

#include <cmath>
#include <limits>
#include <type_traits>

#include "QBLCore/Types/internal/QBLFieldReader.hpp"
#include "QBLCore/Types/internal/QBLRealText.hpp"
#include "i18n/cpp/i18n_string.hpp"

namespace {

template <class Int>
long readInteger(Int* value, const char* string) {
    using Unsigned = std::make_unsigned_t<Int>;
    if (value == nullptr) return QBLTypeCast::badForm;
    *value = 0;
    QBLFieldReader text(string);
    text.skipBlanks();
    const bool negative = text.take('-');
    if (!negative) text.take('+');
    const Unsigned most = static_cast<Unsigned>(std::numeric_limits<Int>::max()) + negative;
    std::uint64_t magnitude = 0;
    if (!text.takeNumber(magnitude, most) || !text.onlyBlanksLeft()) return text.fault("+-");
    if (magnitude > most) return QBLTypeCast::outOfRange;
    *value = static_cast<Int>(negative ? 0 - magnitude : magnitude);
    return QBLTypeCast::ok;
}

template <class To, class From>
void copyDate(To& to, const From& from) {
    to.year = from.year;
    to.month = from.month;
    to.day = from.day;
}

template <class To, class From>
void copyTime(To& to, const From& from) {
    to.hour = from.hour;
    to.minute = from.minute;
    to.second = from.second;
    to.fraction = from.fraction;
}

/// Copies the date, then calls `copy` for the other fields. Fields that `copy` does not set are 0.
template <class To, class From, class Copy>
long convert(To* to, const From* from, Copy copy) {
    if (to == nullptr) return QBLTypeCast::badForm;
    To out{};
    if (from != nullptr) {
        copyDate(out, *from);
        copy(out, *from);
    }
    *to = out;
    return from != nullptr ? QBLTypeCast::ok : QBLTypeCast::badForm;
}

constexpr auto kOnlyDate = [](auto&, const auto&) {};
constexpr auto kWithTime = [](auto& to, const auto& from) { copyTime(to, from); };

}  // namespace

long QBLTypeCast::string2double(const void*, double* value, const char* text) {
    if (value == nullptr) return badForm;
    *value = 0.0;
    if (text == nullptr) return badForm;
    double number = 0.0;
    const char* const rest = qblReadReal(text, number);
    if (rest == nullptr || *rest != '\0') {
        char* end = nullptr;
        number = qblStrtod(text, &end);
        if (*end != '\0') return badForm;
    }
    if (std::isinf(number)) return outOfRange;
    *value = number;
    return ok;
}

long QBLTypeCast::number2string(const void*, char* text, const double* value) {
    if (text == nullptr) return badForm;
    *(value != nullptr ? qblWriteReal(text, *value, 9) : text) = '\0';
    return value != nullptr ? ok : badForm;
}

long QBLTypeCast::string2int32(const void*, int* value, const char* text) {
    return readInteger(value, text);
}

long QBLTypeCast::string2int64(const void*, long long* value, const char* text) {
    return readInteger(value, text);
}

long QBLTypeCast::ascii2unsignedInteger(const void*, const I18NString& text, unsigned long& value,
                                        long& status) {
    constexpr int kLongest = 9;
    value = 0;
    status = badCharacter;
    const int length = text.length();
    if (length > kLongest) return status = outOfRange;
    unsigned long number = 0;
    for (int i = 0; i < length; ++i) {
        const wchar_t c = text.codePointAt(i);
        if (c < L'0' || c > L'9') return status;
        number = number * 10 + static_cast<unsigned long>(c - L'0');
    }
    if (length == 0) return status;
    value = number;
    return status = ok;
}

long QBLTypeCast::date2timestamp(const void*, QBLTimestamp2* to, const QBLDate2* from) {
    return convert(to, from, kOnlyDate);
}

long QBLTypeCast::timestamp2date(const void*, QBLDate2* to, const QBLTimestamp2* from) {
    return convert(to, from, kOnlyDate);
}

long QBLTypeCast::timestampTZ2timestamp(const void*, QBLTimestamp2* to,
                                        const QBLTimestampTZ* from) {
    return convert(to, from, kWithTime);
}

long QBLTypeCast::timestamp2timestampTZ(const void*, QBLTimestampTZ* to,
                                        const QBLTimestamp2* from) {
    return convert(to, from, kWithTime);
}

long QBLTypeCast::date2timestampTZ(const void*, QBLTimestampTZ* to, const QBLDate2* from) {
    return convert(to, from, kOnlyDate);
}

long QBLTypeCast::timestampTZ2date(const void*, QBLDate2* to, const QBLTimestampTZ* from) {
    return convert(to, from, kOnlyDate);
}
