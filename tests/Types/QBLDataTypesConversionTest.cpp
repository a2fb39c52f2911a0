#include <cmath>
#include <cstring>
#include <limits>
#include <random>

#include "QBLCore/Types/c/QBLDataTypesConversion_c.h"
#include "tests/Types/CommaLocale.hpp"
#include "tests/support/ThrowChecks.hpp"
#include "tests/support/Workers.hpp"

namespace {

int read(const char* text, int& value) { return asciiToInt32(text, &value); }
int read(const char* text, long long& value) { return asciiToInt64(text, &value); }
int read(const char* text, float& value) { return asciiToFloat32(text, &value); }
int read(const char* text, double& value) { return asciiToFloat64(text, &value); }
int write(char* text, int value) { return int32ToAscii(text, value); }
int write(char* text, long long value) { return int64ToAscii(text, value); }
int write(char* text, float value) { return float32ToAscii(text, value); }
int write(char* text, double value) { return float64ToAscii(text, value); }

/// Reuses its streams, because constructing a stream takes longer than all the conversions.
struct Streams {
    Streams() {
        in.imbue(std::locale::classic());
        out.imbue(std::locale::classic());
    }

    template <class Value>
    bool readsSame(const std::string& text) {
        Value expected = 77, found = 77;
        in.clear();
        in.str(text);
        const bool good = !(in >> expected).fail();
        return read(text.c_str(), found) == (good ? 1 : 0) && expected == found &&
               std::signbit(expected) == std::signbit(found) && writesSame(expected);
    }

    template <class Value>
    bool writesSame(Value value) {
        out.str("");
        out << value;
        char text[24];
        const int length = write(text, value);
        return out.str() == text && length == static_cast<int>(std::strlen(text));
    }

    /// Reads a text as every type and writes the value. Expects the same results as from streams.
    void expectAlike(const std::string& text) {
        EXPECT_TRUE(readsSame<int>(text) && readsSame<long long>(text)) << "'" << text << "'";
        EXPECT_TRUE(readsSame<float>(text) && readsSame<double>(text)) << "'" << text << "'";
    }

    std::istringstream in;
    std::ostringstream out;
};

void compareEdges() {
    Streams streams;
    const std::string zeros(1200, '0');
    std::istringstream edges(
        "| \t\n|0|-0|+5|--5|- 5|+|12abc| \v\f\r\n 7|0x1F|1,234.5|1.234,5|007|.|-.|.5|5.|1.2.3|1e|"
        "1e+|1ex|1e5e|1E-2.5|.e1|inf|-nan|infinity|2147483647|2147483648|-2147483648|-2147483649|"
        "21474836470|9223372036854775807|9223372036854775808|-9223372036854775808|"
        "-9223372036854775809|99999999999999999999999|3.4028235e38|3.4028236e38|-1e39|1e308|"
        "1.8e308|-1e999x|1e-400|-1e-400|4.9e-324|2.4e-324|2.2250738585072011e-308|"
        "9007199254740993|902378e21|16777217|1e99999999999999999999|9|-9|10|99|100|999|1000|9999|"
        "10000|99999999|100000000|1000000000|4294967295|4294967296|999999999999|1000000000000|"
        "999999999999999999|0.1|1234565|1234575|12345.65|123456.5|999999.5|9999995|"
        "999999.4999999|0.0001|0.00009999995|0.5|2.5|1e15|1e22|1e23|5e-324|"
        "2.2250738585072014e-308|1.7976931348623157e308|123456789|1e100|1e-100|1e38|1.4e-45");
    for (std::string text; std::getline(edges, text, '|');) streams.expectAlike(text);
    // The first twenty digits are a multiple of 2^64.
    for (const std::string digits :
         {"18446744073709551616", "36893488147419103232", "9223372036854775808"})
        for (const std::string& text :
             {digits, "-" + digits, digits + "0", digits + ".5", "0.0" + digits, digits + "e5",
              digits.substr(0, 1) + "." + digits.substr(1)})
            streams.expectAlike(text);
    for (const std::string& text : {"1" + zeros + "e-1195", "." + zeros + "1e1205", zeros + "12",
                                    "0." + zeros + "1e1010", "1." + zeros + "1", "\xA0" + zeros})
        streams.expectAlike(text);
    const double inf = std::numeric_limits<double>::infinity(), nan = std::nan("");
    EXPECT_TRUE(streams.writesSame(inf) && streams.writesSame(-inf));
    EXPECT_TRUE(streams.writesSame(nan) && streams.writesSame(-nan));
}

void compareRandom(int count) {
    Streams streams;
    std::mt19937_64 random(1);
    for (int i = 0; i < count; ++i) {
        const unsigned long long bits = random();
        const auto whole = static_cast<long long>(bits >> random() % 64);
        double any;
        float single;
        std::memcpy(&any, &bits, sizeof any);
        std::memcpy(&single, &bits, sizeof single);
        const double plain = static_cast<double>(whole % 1000000000) / std::pow(10, i % 10);
        // A value exactly between two numbers of six digits, where rounding must be exact.
        const double tie = static_cast<double>(whole % 1000000 * 10 + 5) / (i % 2 != 0 ? 1 : 8);
        std::string text;
        switch (i % 5) {
            case 0:
                text = std::to_string(whole) + std::string(random() % 4, "0159"[i % 4]);
                break;
            case 1:
                text = std::to_string(whole) + "e" + std::to_string(static_cast<int>(i % 80) - 40);
                break;
            case 2:
                for (int n = static_cast<int>(bits % 12); n > 0; --n)
                    text += "0123456789+-.eExX \t,anif"[random() % 24];
                break;
            default:
                std::ostringstream exact;
                exact.imbue(std::locale::classic());
                exact.precision(i % 5 == 3 ? 17 : 9);
                exact << (i % 2 != 0 ? any : plain);
                text = exact.str();
        }
        streams.expectAlike(text);
        EXPECT_TRUE(streams.writesSame(static_cast<int>(whole)) && streams.writesSame(whole) &&
                    streams.writesSame(-whole) && streams.writesSame(any) &&
                    streams.writesSame(plain) && streams.writesSame(tie) &&
                    (std::isnan(single) || streams.writesSame(single)))
            << bits << " is written differently by a stream";
        if (testing::Test::HasFailure()) return;
    }
}

}  // namespace

TEST(QBLDataTypesConversionTest, AgreesWithStreams) {
    compareEdges();
    compareRandom(kSanitizer ? 20000 : 200000);
}

TEST(QBLDataTypesConversionTest, IgnoresALocaleWithADecimalComma) {
    inCommaLocale([] {
        compareEdges();
        compareRandom(5000);
    });
}

TEST(QBLDataTypesConversionTest, ThrowsForNull) {
    char text[4];
    int value = 0;
    QBL_EXPECT_THROW(asciiToInt32(nullptr, &value), QBLAssertError, "QBL_ASSERT(str != NULL);");
    QBL_EXPECT_THROW(asciiToFloat64(text, nullptr), QBLAssertError, "QBL_ASSERT(value != NULL);");
    QBL_EXPECT_THROW(float32ToAscii(nullptr, 1), QBLAssertError, "QBL_ASSERT(buf != NULL);");
}
