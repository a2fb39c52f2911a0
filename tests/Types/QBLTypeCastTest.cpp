#include "QBLCore/Types/QBLTypeCast.hpp"

#include <climits>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <functional>
#include <limits>
#include <random>

#include "i18n/cpp/i18n_string.hpp"
#include "tests/Types/CommaLocale.hpp"
#include "tests/faults/Injector.hpp"
#include "tests/support/Workers.hpp"

namespace {

using Cast = QBLTypeCast;
constexpr std::size_t kRoom = 64;

/// Reads a text and writes the value. Returns the written text, or the status if reading failed.
using Again = std::function<std::string(const char*)>;

template <class Value, class Written = Value>
Again again(long (*read)(Value*, const char*), long (*write)(char*, const Written*)) {
    return [read, write](const char* text) {
        char zeros[kRoom], out[kRoom];
        Value none{}, value;
        std::memset(static_cast<void*>(&value), 0x55, sizeof value);
        const long status = read(&value, text);
        EXPECT_EQ(0, write(zeros, &none));
        EXPECT_EQ(0, write(out, &value));
        if (status == 0) return std::string(out);
        EXPECT_STREQ(zeros, out) << "value after the failed read of '" << text << "'";
        return std::to_string(status);
    };
}

template <class Integer>
long writeInteger(char* text, const Integer* value) {
    return std::strcpy(text, std::to_string(*value).c_str()), 0;
}

const Again kDate = again<QBLDate2>(&Cast::string2date, &Cast::date2string);
const Again kTime = again<QBLTime2>(&Cast::string2time, &Cast::time2string);
const Again kTimeTZ = again<QBLTimeTZ>(&Cast::string2timeTZ, &Cast::timeTZ2string);
const Again kStamp = again<QBLTimestamp2>(&Cast::string2timestamp, &Cast::timestamp2string);
const Again kStampTZ = again<QBLTimestampTZ>(&Cast::string2timestampTZ, &Cast::timestampTZ2string);
const Again kDayTime = again<QBLInterval2>(&Cast::string2DTinterval, &Cast::dtInterval2string);
const Again kHours = again<QBLInterval2>(&Cast::string2DTinterval, &Cast::dtInterval2stringAsTime);
const Again kYearMonth = again<QBLIntervalYM>(&Cast::string2YMinterval, &Cast::ymInterval2string);
const Again kDouble = again<double>(&Cast::string2double, &Cast::number2string);
const Again kInt = again<int>(&Cast::string2int32, &writeInteger<int>);
const Again kInt64 = again<long long>(&Cast::string2int64, &writeInteger<long long>);

/// Calls a body with both sides of each "text=expected" in a table. Without "=", the expected text
/// is the text itself.
template <class Body>
void forEach(const char* table, Body body) {
    std::istringstream rows(table);
    for (std::string row; std::getline(rows, row, '|');) {
        SCOPED_TRACE(row);
        body(row.substr(0, row.find('=')), row.substr(row.find('=') + 1));
    }
}

void readTable() {
    const struct {
        const Again& again;
        const char* texts;
    } table[] = {
        {kDate,
         "2006-03-09|2000-02-29|2004-02-29|9999-12-31|1900-02-29=528|2001-02-29=528|"
         "2006-07-31|2006-07-32=528|2006-01-32=528|2006-12-31|2006-12-32=528|2006-02-30=528|"
         "2006-06-31=528|2006-09-31=528|2006-11-31=528|0001-01-01|0000-01-01=528|2006-3-09=528|"
         "2006-00-09=528|2006-13-09=528|2006-04-31=528|"
         "2006-03-00=528|2006-03-+9=528|2006/03/09=528| 2006-03-09=528|2006-03-091=528|=528"},
        {kTime,
         "10:05|00:00:00.000000001| \t10:05:00 \n=10:05|23:59:59.5=23:59:59.500000000|"
         "10:05:00.=528|10:05:00.1234567890=528|1:05=528|10:05:=528|10 05=528|=528|24:00=8|"
         "10:60=8|10:05:60=8|-1:05=32|99:99x=32"},
        {kTimeTZ,
         "10:05 +0530TZ|10:05-08:00=10:05 -0800TZ|10:05:01.5 -00:30TZ=10:05:01.500000000 -0030TZ|"
         "10:05 +1300=10:05 +1300TZ|10:05 -1259=10:05 -1259TZ|10:05 +1301=8|10:05 -1300=8|"
         "10:05 +0060=8|10:05 +05:=528|10:05 +05=528|10:05=528|10:05  +0530=528|10:05 "
         "+0530T=528|10:05 0530TZ=528|"
         "10:05 +0530UTC=32"},
        {kStamp,
         "2006-03-09 10:05:00=2006-03-09 10:05|"
         "2006-03-09T10:05:00.000000005=2006-03-09 10:05:00.000000005|2006-02-29 25:00=528|"
         "2006-03-09\t10:05=528|2006-03-09=528|2006-03-09 25:00=8|2006-ab-09 10:05=32|"
         "2006-03-09 10:05\xFF=32"},
        {kStampTZ,
         "2006-03-09 10:05:07-0800=2006-03-09 10:05:07 -0800TZ|2006-03-09 10:05:07=528|"
         "2006-03-09 10:05:07 +1400=8"},
        {kDayTime,
         "0 00:00|-2 03:00|2147483647 23:59:59|-51:00=-2 03:00|51539607552:00=8|"
         "2147483648 00:00=8|99999999999999999999999 00:00=8|2 24:00=8|-=528|- 1 00:00=528|5=528|"
         "+1 00:00=32"},
        {kHours, "-2 03:00:00.25=-51:00:00.250000000|51539607551:59"},
        {kYearMonth,
         "(1 6)| -(2147483647 11) =-(2147483647 11)|(1 12)=8|(2147483648 0)=8|-=528|(-1 6)=528|"
         "(1 6=528|(1,6)=32"},
        {kDouble,
         "1.5|nan|1.5x=528|1.5 =528|1,5=528|1e=528|infinit=528| =528| \n-0x1.8p1=-3|+.5e-3=0.0005|"
         "1e999=8|-inf=8|1e-999=0|=0"},
        {kInt, " +12 =12|-2147483648|2147483647|2147483648=8|-2147483649=8|12abc=32|1 2=528|=528"},
        {kInt64, "-9223372036854775808|9223372036854775808=8|99999999999999999999x=32|--1=528"}};
    for (const auto& row : table)
        forEach(row.texts, [&row](const std::string& text, const std::string& expected) {
            EXPECT_EQ(expected, row.again(text.c_str()));
        });
}

/// Sets fields to random values: valid ones, or any value of the field's type.
struct Fields {
    explicit Fields(bool valid) : m_bValid(valid) {}
    template <class Field>
    void set(Field& field, int from, int to) {
        using Limits = std::numeric_limits<Field>;
        const auto bits = static_cast<unsigned>(m_random());
        if (m_bValid) {
            field = static_cast<Field>(from + static_cast<int>(bits % (unsigned(to - from) + 1)));
        } else {
            const Field ends[] = {Limits::min(), Limits::max(), 0, -5};
            field = bits % 8 < 4 ? ends[bits % 8] : static_cast<Field>(bits >> 3);
        }
    }

    template <class Hour, class Field>
    void time(Hour& hour, Field& minute, Field& second, int& fraction) {
        set(hour, 0, 23);
        set(minute, 0, 59);
        set(second, 0, 59);
        set(fraction, 0, 999999999);
        if (m_random() % 4 == 0) fraction = 0;
        if (m_random() % 4 == 0) second = 0;
    }

private:
    bool m_bValid;
    std::mt19937 m_random{7};
};

std::string timeText(const std::string& before, long long hour, int minute, int second,
                     int fraction) {
    char text[100];
    int at = std::snprintf(text, sizeof text, "%s%02lld:%02d", before.c_str(), hour, minute);
    if (second != 0 || fraction != 0) at += std::snprintf(text + at, 20, ":%02d", second);
    if (fraction > 0) std::snprintf(text + at, 20, ".%09d", fraction);
    return text;
}

template <class Value>
void expectText(const std::string& expected, long (*write)(char*, const Value*), const Value& value,
                const Again* again) {
    char text[200];
    EXPECT_EQ(0, write(text, &value));
    EXPECT_EQ(expected, text);
    EXPECT_LT(std::strlen(text), kRoom);
    EXPECT_TRUE(again == nullptr || expected == (*again)(text)) << text;
}

void writeRandom(bool valid) {
    Fields fields(valid);
    const auto reader = [valid](const Again& again) { return valid ? &again : nullptr; };
    for (int i = 0; i < 5000; ++i) {
        QBLTimestampTZ s{};
        fields.set(s.year, 1, 9999);
        fields.set(s.month, 1, 12);
        fields.set(s.day, 1, 28);
        fields.time(s.hour, s.minute, s.second, s.fraction);
        fields.set(s.displacement, 0, 59);
        if (valid && i % 2 != 0) s.displacement = static_cast<std::int16_t>(-1200 - s.displacement);
        char date[40], zone[20];
        std::snprintf(date, sizeof date, "%04d-%02d-%02d ", s.year, s.month, s.day);
        std::snprintf(zone, sizeof zone, " %c%04dTZ", s.displacement < 0 ? '-' : '+',
                      std::abs(s.displacement));
        expectText<QBLTimestampTZ>(timeText(date, s.hour, s.minute, s.second, s.fraction) + zone,
                                   &Cast::timestampTZ2string, s, reader(kStampTZ));

        QBLInterval2 dt{};
        fields.set(dt.negative, 0, 1);
        fields.set(dt.days, 0, INT_MAX - 1);
        fields.time(dt.hours, dt.minutes, dt.seconds, dt.fraction);
        const std::string sign = dt.negative != 0 ? "-" : "";
        const auto intervalText = [&dt](const std::string& before, long long hours) {
            return timeText(before, hours, dt.minutes, dt.seconds, dt.fraction);
        };
        expectText<QBLInterval2>(intervalText(sign + std::to_string(dt.days) + " ", dt.hours),
                                 &Cast::dtInterval2string, dt, reader(kDayTime));
        expectText<QBLInterval2>(intervalText(sign, dt.days * 24LL + dt.hours),
                                 &Cast::dtInterval2stringAsTime, dt, reader(kHours));
        QBLIntervalYM ym{};
        fields.set(ym.negative, 0, 1);
        fields.set(ym.years, 0, INT_MAX - 1);
        fields.set(ym.months, 0, 11);
        std::string expected = ym.negative != 0 ? "-" : "";
        if (ym.years >= 0 || ym.months >= 0)
            expected += "(" + std::to_string(ym.years) + " " + std::to_string(ym.months) + ")";
        expectText<QBLIntervalYM>(expected, &Cast::ymInterval2string, ym, reader(kYearMonth));
    }
}

void writeNumbers(int count) {
    std::mt19937_64 random(3);
    for (int i = 0; i < count; ++i) {
        const unsigned long long bits = random();
        double value;
        std::memcpy(&value, &bits, sizeof value);
        if (i % 2 != 0) value = static_cast<double>(bits % 100000000000ULL) / std::pow(10, i % 14);
        char text[kRoom], expected[kRoom];
        EXPECT_EQ(0, Cast::number2string(text, &value));
        std::snprintf(expected, sizeof expected, "%.9g", value);
        if (char* comma = std::strchr(expected, ',')) *comma = '.';
        EXPECT_STREQ(expected, text);
    }
}

}  // namespace

TEST(QBLTypeCastTest, ReadsValidTextsAndReportsErrors) { readTable(); }

TEST(QBLTypeCastTest, WrittenValuesReadBackUnchanged) { writeRandom(true); }

TEST(QBLTypeCastTest, TextsOfInvalidFieldsFitTheBuffer) { writeRandom(false); }

TEST(QBLTypeCastTest, FormatsNumbersLikePrintf) { writeNumbers(kSanitizer ? 20000 : 200000); }

TEST(QBLTypeCastTest, IgnoresALocaleWithADecimalComma) {
    inCommaLocale([] {
        readTable();
        writeRandom(true);
        writeNumbers(5000);
    });
}

TEST(QBLTypeCastTest, ParsesDisplacementsAndDigitsStrictly) {
    forEach(
        "+05:30=530|-08:00=-800|-12:59=-1259|+13:00=1300|-00:30=-30|+13:01=x|-13:00=x|"
        "+05:60=x|+05:=x|+05=x|+=x|05:30=x|+0530=x|05:300=x|+05:3x=x|+05:300=x|=x",
        [](const std::string& text, const std::string& expected) {
            int zone = 7;
            const bool valid = Cast::tzStringToTZDisplacement(text.c_str(), zone);
            EXPECT_EQ(expected, valid ? std::to_string(zone) : "x");
            EXPECT_TRUE(valid || zone == 0);
        });
    forEach(
        "=32 0|0=0 0|999999999=0 999999999|1234567890=8 0|abcdefghij=8 0|abcdefghi=32 0|12a=32 0|"
        " 1=32 0|+1=32 0|\xD9\xA1=32 0",
        [](const std::string& text, const std::string& expected) {
            unsigned long value = 7;
            long status = 7;
            const I18NString digits(text.c_str());
            EXPECT_EQ(Cast::ascii2unsignedInteger(digits, value, status), status);
            EXPECT_EQ(expected, std::to_string(status) + " " + std::to_string(value));
        });
    int year, month, day, hour, minute, second, fraction;
    bool leap = false;
    EXPECT_TRUE(Cast::dateString2Integers("2000-02-29", year, month, day, leap) && leap);
    EXPECT_FALSE(Cast::dateString2Integers("2000-02-30", year, month, day, leap));
    EXPECT_TRUE(year == 0 && month == 0 && day == 0 && !leap);
    EXPECT_EQ(0, Cast::timeString2Integers("01:02:03.4", hour, minute, second, fraction));
    EXPECT_TRUE(hour == 1 && minute == 2 && second == 3 && fraction == 400000000);
    EXPECT_EQ(8, Cast::timeString2Integers("01:62", hour, minute, second, fraction));
    EXPECT_TRUE(hour == 0 && minute == 0 && second == 0 && fraction == 0);
}

TEST(QBLTypeCastTest, ConvertsCountsToLargerUnits) {
    forEach(
        "90 minutes=0 01:30|-3 Day=-3 00:00|90061 SECOND=1 01:01:01|-25 HOURS=-1 01:00|"
        "2147483647 days=2147483647 00:00|18 month=(1 6)|-2 YEARS=-(2 0)|1 weeks=528|"
        "1 HOURSS=528|1 MONT=528|1=528|-2147483648 Months=-(178956970 8)|"
        "-2147483648 SECOND=-24855 03:14:08|-2147483648 YEAR=8|-2147483648 DAY=8",
        [](const std::string& text, const std::string& expected) {
            QBLInterval2 dt;
            QBLIntervalYM ym;
            char out[kRoom], *unit = nullptr;
            const long count = std::strtol(text.c_str(), &unit, 10);
            if (*unit == ' ') ++unit;
            long status = Cast::int2DTinterval(&dt, &count, unit);
            EXPECT_EQ(0, Cast::dtInterval2string(out, &dt));
            if (status == Cast::badForm) {
                EXPECT_STREQ("0 00:00", out);
                status = Cast::int2YMinterval(&ym, &count, unit);
                EXPECT_EQ(0, Cast::ymInterval2string(out, &ym));
            }
            EXPECT_EQ(expected, status == 0 ? std::string(out) : std::to_string(status));
        });
    const long lowest = LONG_MIN;
    QBLInterval2 dt;
    QBLIntervalYM ym;
    EXPECT_EQ(8, Cast::int2DTinterval(&dt, &lowest, "days"));
    EXPECT_EQ(8, Cast::int2YMinterval(&ym, &lowest, "year"));
}

TEST(QBLTypeCastTest, CopiesCommonFields) {
    const QBLTimestampTZ from = {2006, 3, 9, 10, 5, 7, 5, -800};
    QBLTimestampTZ to;
    QBLTimestamp2 stamp;
    QBLDate2 date, other;
    char text[kRoom];
    EXPECT_EQ(0, Cast::timestampTZ2timestamp(&stamp, &from));
    EXPECT_EQ(0, Cast::timestamp2timestampTZ(&to, &stamp) + Cast::timestampTZ2string(text, &to));
    EXPECT_STREQ("2006-03-09 10:05:07.000000005 +0000TZ", text);
    EXPECT_EQ(0, Cast::timestamp2date(&date, &stamp) + Cast::timestampTZ2date(&other, &from));
    EXPECT_EQ(0, Cast::date2timestampTZ(&to, &date) + Cast::timestampTZ2string(text, &to));
    EXPECT_STREQ("2006-03-09 00:00 +0000TZ", text);
    EXPECT_EQ(0, Cast::date2timestamp(&stamp, &other) + Cast::timestamp2string(text, &stamp));
    EXPECT_STREQ("2006-03-09 00:00", text);
}

TEST(QBLTypeCastTest, AcceptsNullAndAllocatesNothing) {
    const I18NString digits("123");
    const auto all = [&digits] {
        char text[kRoom] = "x";
        unsigned long value;
        long status;
        QBLTimestampTZ stamp;
        double number = 0.1;
        EXPECT_EQ(528, Cast::string2timestampTZ(&stamp, nullptr));
        EXPECT_EQ(528, Cast::date2timestampTZ(&stamp, nullptr));
        EXPECT_EQ(0, stamp.year);
        EXPECT_EQ(528, Cast::string2double(&number, nullptr));
        EXPECT_EQ(528, Cast::string2DTinterval(nullptr, "1 00:00"));
        EXPECT_EQ(528, Cast::number2string(nullptr, &number));
        EXPECT_EQ(528, Cast::timestampTZ2string(text, nullptr));
        EXPECT_STREQ("", text);
        EXPECT_EQ(0, Cast::string2timestampTZ(&stamp, "2006-03-09 10:05 +0100"));
        EXPECT_EQ(0, Cast::timestampTZ2string(text, &stamp));
        EXPECT_EQ(0, Cast::string2double(&number, "0x1.123456789p3"));
        EXPECT_EQ(0, Cast::number2string(text, &number));
        EXPECT_EQ(0, Cast::ascii2unsignedInteger(digits, value, status));
    };
    EXPECT_EQ(0, fault::eachAllocation(all));
}
