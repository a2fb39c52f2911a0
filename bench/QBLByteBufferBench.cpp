#include "QBLCore/Types/QBLByteBuffer.hpp"

#include <string>
#include <vector>

#include "bench/support/Bench.hpp"
#ifdef BENCH_HAVE_FMT
#include <fmt/format.h>
#endif

namespace {

// Times are per appended value. The times of byteByByte are per byte.
const unsigned kCount = 1024;

/// Positive and negative integers of one to ten digits.
const std::vector<int>& integers() {
    static const std::vector<int> all = [] {
        std::vector<int> values;
        unsigned state = 1;
        for (unsigned i = 0; i < kCount; ++i) {
            state = state * 1664525U + 1013904223U;
            const int value = static_cast<int>((state >> 1) >> (i * 7 % 31));
            values.push_back(i % 4 == 0 ? -value : value);
        }
        return values;
    }();
    return all;
}

/// Strings of 0 to 15 bytes. Both sides get the lengths of the strings.
const std::vector<std::string>& strings() {
    static const std::vector<std::string> all = [] {
        std::vector<std::string> values;
        for (unsigned i = 0; i < kCount; ++i)
            values.emplace_back(i * 11 % 16, static_cast<char>('a' + i % 26));
        return values;
    }();
    return all;
}

class Ours {
public:
    Ours() : m_buffer(QBLByteBuffer::GROW_BY_HALF) {}
    void append(int value) { m_buffer << value; }
    void append(const std::string& value) {
        m_buffer.appendChars(value.data(), static_cast<unsigned>(value.size()));
    }
    void appendLiteral() { m_buffer << "key=" << ';'; }
    void clear() { m_buffer.reset(); }
    std::string text() const { return std::string(m_buffer.str(), m_buffer.pcount()); }

private:
    QBLByteBuffer m_buffer;
};

#ifdef BENCH_HAVE_FMT
class Fmt {
public:
    void append(int value) {
        const fmt::format_int digits(value);
        m_buffer.append(digits.data(), digits.data() + digits.size());
    }
    void append(const std::string& value) {
        m_buffer.append(value.data(), value.data() + value.size());
    }
    void appendLiteral() {
        m_buffer.append(fmt::string_view("key="));
        m_buffer.push_back(';');
    }
    void clear() { m_buffer.clear(); }
    std::string text() const { return fmt::to_string(m_buffer); }

private:
    fmt::memory_buffer m_buffer;
};
#endif

/// Appends to a buffer that already has the capacity after the first round.
template <class Buffer, class Value>
void appendTo(benchmark::State& state, const std::vector<Value>& values) {
    Buffer buffer;
    while (state.KeepRunningBatch(kCount)) {
        buffer.clear();
        for (const Value& value : values) buffer.append(value);
        benchmark::DoNotOptimize(buffer);
        benchmark::ClobberMemory();
    }
}

template <class Buffer>
void appendIntegers(benchmark::State& state) {
    appendTo<Buffer>(state, integers());
}

template <class Buffer>
void appendStrings(benchmark::State& state) {
    appendTo<Buffer>(state, strings());
}

/// Appends literals, integers and strings in turn.
template <class Buffer>
void appendAll(Buffer& buffer) {
    for (unsigned i = 0; i < kCount; ++i) {
        buffer.appendLiteral();
        buffer.append(integers()[i]);
        buffer.append(strings()[i]);
    }
}

template <class Buffer>
void growWithAll(benchmark::State& state) {
    while (state.KeepRunningBatch(4 * kCount)) {
        Buffer buffer;
        appendAll(buffer);
        benchmark::DoNotOptimize(buffer);
        benchmark::ClobberMemory();
    }
}

/// Grows by blocks of 8 bytes, the default block size.
void byteByByte(benchmark::State& state) {
    const benchmark::IterationCount size = state.range(0);
    while (state.KeepRunningBatch(size)) {
        QBLByteBuffer buffer(0, 8);
        for (auto i = size; i != 0; --i) buffer << 'x';
        benchmark::DoNotOptimize(buffer);
    }
}

#ifdef BENCH_HAVE_FMT
const OutputCheck check("QBLByteBuffer", [] {
    Ours ours;
    Fmt theirs;
    appendAll(ours);
    appendAll(theirs);
    return ours.text() == theirs.text();
});

BENCHMARK_TEMPLATE(appendIntegers, Fmt)->Name("BM_FmtMemoryBuffer_appendInt");
BENCHMARK_TEMPLATE(appendStrings, Fmt)->Name("BM_FmtMemoryBuffer_appendString");
BENCHMARK_TEMPLATE(growWithAll, Fmt)->Name("BM_FmtMemoryBuffer_grow");
#endif
BENCHMARK_TEMPLATE(appendIntegers, Ours)->Name("BM_QBLByteBuffer_appendInt");
BENCHMARK_TEMPLATE(appendStrings, Ours)->Name("BM_QBLByteBuffer_appendString");
BENCHMARK_TEMPLATE(growWithAll, Ours)->Name("BM_QBLByteBuffer_grow");
BENCHMARK(byteByByte)->Name("BM_QBLByteBuffer_byteByByte")->Arg(64 << 10)->Arg(1 << 20);

}  // namespace
