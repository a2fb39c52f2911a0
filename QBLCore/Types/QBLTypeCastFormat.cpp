#include "QBLCore/Types/QBLTypeCast.hpp"
#include "QBLCore/Types/internal/QBLFieldWriter.hpp"

namespace {

template <class Value>
bool nothingToWrite(char* text, const Value* value) {
    if (text != nullptr && value == nullptr) *text = '\0';
    return text == nullptr || value == nullptr;
}

template <class Value>
void writeDate(QBLFieldWriter& out, const Value& value) {
    out.number(value.year, 4).put('-').number(value.month, 2).put('-').number(value.day, 2);
}

template <class Value>
void writeTime(QBLFieldWriter& out, const Value& value) {
    out.time(value.hour, value.minute, value.second, value.fraction);
}

void writeZone(QBLFieldWriter& out, int displacement) {
    out.put(' ').put(displacement < 0 ? '-' : '+');
    out.number(displacement < 0 ? -displacement : displacement, 4).put('T').put('Z');
}

}  // namespace

QBLFieldWriter& QBLFieldWriter::any(std::int64_t value, int width) {
    auto magnitude = static_cast<std::uint64_t>(value);
    if (value < 0) {
        put('-');
        magnitude = ~magnitude + 1;
        --width;
    }
    char digits[20];
    const auto count = static_cast<int>(qblWriteUnsigned(digits, magnitude) - digits);
    for (int i = count; i < width; ++i) put('0');
    std::memcpy(m_pNext, digits, static_cast<std::size_t>(count));
    m_pNext += count;
    return *this;
}

long QBLTypeCast::date2string(const void*, char* text, const QBLDate2* value) {
    if (nothingToWrite(text, value)) return badForm;
    QBLFieldWriter out(text);
    writeDate(out, *value);
    return ok;
}

long QBLTypeCast::time2string(const void*, char* text, const QBLTime2* value) {
    if (nothingToWrite(text, value)) return badForm;
    QBLFieldWriter out(text);
    writeTime(out, *value);
    return ok;
}

long QBLTypeCast::timeTZ2string(const void*, char* text, const QBLTimeTZ* value) {
    if (nothingToWrite(text, value)) return badForm;
    QBLFieldWriter out(text);
    writeTime(out, *value);
    writeZone(out, value->displacement);
    return ok;
}

long QBLTypeCast::timestamp2string(const void*, char* text, const QBLTimestamp2* value) {
    if (nothingToWrite(text, value)) return badForm;
    QBLFieldWriter out(text);
    writeDate(out, *value);
    out.put(' ');
    writeTime(out, *value);
    return ok;
}

long QBLTypeCast::timestampTZ2string(const void*, char* text, const QBLTimestampTZ* value) {
    if (nothingToWrite(text, value)) return badForm;
    QBLFieldWriter out(text);
    writeDate(out, *value);
    out.put(' ');
    writeTime(out, *value);
    writeZone(out, value->displacement);
    return ok;
}

long QBLTypeCast::dtInterval2string(const void*, char* text, const QBLInterval2* value) {
    if (nothingToWrite(text, value)) return badForm;
    QBLFieldWriter out(text);
    if (value->negative != 0) out.put('-');
    out.number(value->days, 1).put(' ');
    out.time(value->hours, value->minutes, value->seconds, value->fraction);
    return ok;
}

long QBLTypeCast::dtInterval2stringAsTime(const void*, char* text, const QBLInterval2* value) {
    if (nothingToWrite(text, value)) return badForm;
    QBLFieldWriter out(text);
    if (value->negative != 0) out.put('-');
    out.time(std::int64_t{value->days} * 24 + value->hours, value->minutes, value->seconds,
             value->fraction);
    return ok;
}

long QBLTypeCast::ymInterval2string(const void*, char* text, const QBLIntervalYM* value) {
    if (nothingToWrite(text, value)) return badForm;
    QBLFieldWriter out(text);
    if (value->negative != 0) out.put('-');
    if (value->years < 0 && value->months < 0) return ok;
    out.put('(').number(value->years, 1).put(' ').number(value->months, 1).put(')');
    return ok;
}
