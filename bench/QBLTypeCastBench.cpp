#include "QBLCore/Types/QBLTypeCast.hpp"

#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <iomanip>
#include <random>
#include <sstream>
#include <string>
#include <type_traits>
#include <vector>

#include "QBLCore/Types/c/QBLDataTypesConversion_c.h"
#include "bench/support/Bench.hpp"

namespace {

/// 1,024 numbers of all lengths, and their texts as std::ostringstream writes them.
template <class Value>
class Numbers {
public:
    static const Numbers& get() {
        static const Numbers& one = *new Numbers;
        return one;
    }
    static constexpr unsigned kMask = 1023;
    std::vector<Value> values;
    std::vector<std::string> texts, longTexts;  // precision 6 and 17

private:
    Numbers() {
        std::mt19937_64 random(1);
        for (unsigned i = 0; i <= kMask; ++i) {
            const auto bits = static_cast<long long>(random());
            Value value = 0;
            if constexpr (sizeof(Value) == sizeof(int))
                value = static_cast<int>(bits) >> i % 31;
            else if constexpr (std::is_integral_v<Value>)
                value = bits >> i % 63;
            else
                value = static_cast<double>(bits >> (20 + i % 40)) / std::pow(10, i % 9);
            values.push_back(value);
            std::ostringstream out;
            out << value;
            texts.push_back(out.str());
            out.str("");
            out << std::setprecision(17) << value;
            longTexts.push_back(out.str());
        }
    }
};

int ours(char* text, int value) { return int32ToAscii(text, value); }
int ours(char* text, long long value) { return int64ToAscii(text, value); }
int ours(char* text, double value) { return float64ToAscii(text, value); }
int ours(const char* text, int& value) { return asciiToInt32(text, &value); }
int ours(const char* text, long long& value) { return asciiToInt64(text, &value); }
int ours(const char* text, double& value) { return asciiToFloat64(text, &value); }

template <class Value>
char* standard(char* text, Value value) {
    if constexpr (std::is_integral_v<Value>)
        return std::to_chars(text, text + 32, value).ptr;
    else
        return std::to_chars(text, text + 32, value, std::chars_format::general, 6).ptr;
}

template <class Value>
void writeOurs(benchmark::State& state) {
    const auto& numbers = Numbers<Value>::get();
    char text[32];
    unsigned i = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(ours(text, numbers.values[i++ & numbers.kMask]));
        benchmark::DoNotOptimize(text);
    }
}

/// Null-terminates the text as our functions do.
template <class Value>
void writeStandard(benchmark::State& state) {
    const auto& numbers = Numbers<Value>::get();
    char text[33];
    unsigned i = 0;
    for (auto _ : state) {
        *standard(text, numbers.values[i++ & numbers.kMask]) = '\0';
        benchmark::DoNotOptimize(text);
    }
}

/// Uses a new stream for each conversion, like a program without the library.
template <class Value>
void writeStream(benchmark::State& state) {
    const auto& numbers = Numbers<Value>::get();
    char text[32];
    unsigned i = 0;
    for (auto _ : state) {
        std::ostringstream out;
        out << numbers.values[i++ & numbers.kMask];
        text[out.str().copy(text, sizeof text - 1)] = '\0';
        benchmark::DoNotOptimize(text);
    }
}

template <class Value>
void readOurs(benchmark::State& state) {
    const auto& numbers = Numbers<Value>::get();
    const auto& texts = state.range(0) == 17 ? numbers.longTexts : numbers.texts;
    unsigned i = 0;
    for (auto _ : state) {
        Value value = 0;
        benchmark::DoNotOptimize(ours(texts[i++ & numbers.kMask].c_str(), value));
        benchmark::DoNotOptimize(value);
    }
}

template <class Value>
void readStandard(benchmark::State& state) {
    const auto& numbers = Numbers<Value>::get();
    const auto& texts = state.range(0) == 17 ? numbers.longTexts : numbers.texts;
    unsigned i = 0;
    for (auto _ : state) {
        Value value = 0;
        const std::string& text = texts[i++ & numbers.kMask];
        std::from_chars(text.data(), text.data() + text.size(), value);
        benchmark::DoNotOptimize(value);
    }
}

template <class Value>
void readStream(benchmark::State& state) {
    const auto& numbers = Numbers<Value>::get();
    unsigned i = 0;
    for (auto _ : state) {
        Value value = 0;
        std::istringstream in(numbers.texts[i++ & numbers.kMask]);
        in >> value;
        benchmark::DoNotOptimize(value);
    }
}

const QBLTimestamp2 kStamps[] = {{2006, 3, 9, 10, 5, 0, 0},
                                 {1999, 12, 31, 23, 59, 59, 999999999},
                                 {2024, 2, 29, 0, 30, 1, 5000},
                                 {2010, 10, 10, 10, 10, 10, 0}};

void timestampText(char* text, const QBLTimestamp2& stamp) {
    if (stamp.fraction != 0)
        std::snprintf(text, 64, "%04d-%02d-%02d %02d:%02d:%02d.%09d", stamp.year, stamp.month,
                      stamp.day, stamp.hour, stamp.minute, stamp.second, stamp.fraction);
    else if (stamp.second != 0)
        std::snprintf(text, 64, "%04d-%02d-%02d %02d:%02d:%02d", stamp.year, stamp.month, stamp.day,
                      stamp.hour, stamp.minute, stamp.second);
    else
        std::snprintf(text, 64, "%04d-%02d-%02d %02d:%02d", stamp.year, stamp.month, stamp.day,
                      stamp.hour, stamp.minute);
}

int timestampFields(const char* text, int (&fields)[7]) {
    return std::sscanf(text, "%4d-%2d-%2d %2d:%2d:%2d.%9d", fields, fields + 1, fields + 2,
                       fields + 3, fields + 4, fields + 5, fields + 6);
}

void writeTimestamp(benchmark::State& state) {
    char text[64];
    unsigned i = 0;
    for (auto _ : state) {
        QBLTypeCast::timestamp2string(text, &kStamps[i++ & 3]);
        benchmark::DoNotOptimize(text);
    }
}

void printTimestamp(benchmark::State& state) {
    char text[64];
    unsigned i = 0;
    for (auto _ : state) {
        timestampText(text, kStamps[i++ & 3]);
        benchmark::DoNotOptimize(text);
    }
}

void readTimestamp(benchmark::State& state) {
    char texts[4][64];
    for (int n = 0; n < 4; ++n) timestampText(texts[n], kStamps[n]);
    unsigned i = 0;
    for (auto _ : state) {
        QBLTimestamp2 stamp;
        benchmark::DoNotOptimize(QBLTypeCast::string2timestamp(&stamp, texts[i++ & 3]));
        benchmark::DoNotOptimize(stamp);
    }
}

void scanTimestamp(benchmark::State& state) {
    char texts[4][64];
    for (int n = 0; n < 4; ++n) timestampText(texts[n], kStamps[n]);
    unsigned i = 0;
    for (auto _ : state) {
        int fields[7] = {};
        benchmark::DoNotOptimize(timestampFields(texts[i++ & 3], fields));
        benchmark::DoNotOptimize(fields);
    }
}

template <class Value>
bool sameNumbers() {
    const auto& numbers = Numbers<Value>::get();
    for (unsigned i = 0; i <= numbers.kMask; ++i) {
        char text[33], other[33];
        const std::string& expected = numbers.texts[i];
        ours(text, numbers.values[i]);
        *standard(other, numbers.values[i]) = '\0';
        Value value = 0, otherValue = 0, streamed = 0;
        std::istringstream(expected) >> streamed;
        std::from_chars(expected.data(), expected.data() + expected.size(), otherValue);
        if (expected != text || expected != other || ours(expected.c_str(), value) != 1 ||
            value != otherValue || value != streamed)
            return false;
    }
    return true;
}

const OutputCheck check("QBLTypeCast", [] {
    for (const QBLTimestamp2& stamp : kStamps) {
        char text[64], expected[64];
        QBLTimestamp2 read;
        int fields[7] = {};
        timestampText(expected, stamp);
        if (QBLTypeCast::timestamp2string(text, &stamp) != 0 || std::strcmp(text, expected) != 0 ||
            QBLTypeCast::string2timestamp(&read, text) != 0 || timestampFields(text, fields) < 5 ||
            fields[4] != read.minute || fields[6] != read.fraction ||
            read.fraction != stamp.fraction)
            return false;
    }
    return sameNumbers<int>() && sameNumbers<long long>() && sameNumbers<double>();
});

BENCHMARK_TEMPLATE(writeOurs, int)->Name("BM_Int32ToAscii");
BENCHMARK_TEMPLATE(writeStandard, int)->Name("BM_StdToChars/int32");
BENCHMARK_TEMPLATE(writeStream, int)->Name("BM_StdOstringstream/int32");
BENCHMARK_TEMPLATE(writeOurs, long long)->Name("BM_Int64ToAscii");
BENCHMARK_TEMPLATE(writeStandard, long long)->Name("BM_StdToChars/int64");
BENCHMARK_TEMPLATE(writeStream, long long)->Name("BM_StdOstringstream/int64");
BENCHMARK_TEMPLATE(writeOurs, double)->Name("BM_Float64ToAscii");
BENCHMARK_TEMPLATE(writeStandard, double)->Name("BM_StdToChars/float64");
BENCHMARK_TEMPLATE(writeStream, double)->Name("BM_StdOstringstream/float64");
BENCHMARK_TEMPLATE(readOurs, int)->Arg(6)->Name("BM_AsciiToInt32");
BENCHMARK_TEMPLATE(readStandard, int)->Arg(6)->Name("BM_StdFromChars/int32");
BENCHMARK_TEMPLATE(readStream, int)->Name("BM_StdIstringstream/int32");
BENCHMARK_TEMPLATE(readOurs, long long)->Arg(6)->Name("BM_AsciiToInt64");
BENCHMARK_TEMPLATE(readStandard, long long)->Arg(6)->Name("BM_StdFromChars/int64");
BENCHMARK_TEMPLATE(readStream, long long)->Name("BM_StdIstringstream/int64");
BENCHMARK_TEMPLATE(readOurs, double)->Arg(6)->Arg(17)->Name("BM_AsciiToFloat64");
BENCHMARK_TEMPLATE(readStandard, double)->Arg(6)->Arg(17)->Name("BM_StdFromChars/float64");
BENCHMARK_TEMPLATE(readStream, double)->Name("BM_StdIstringstream/float64");
BENCHMARK(writeTimestamp)->Name("BM_QBLTypeCast_timestamp2string");
BENCHMARK(printTimestamp)->Name("BM_Snprintf_timestamp");
BENCHMARK(readTimestamp)->Name("BM_QBLTypeCast_string2timestamp");
BENCHMARK(scanTimestamp)->Name("BM_Sscanf_timestamp");

}  // namespace
