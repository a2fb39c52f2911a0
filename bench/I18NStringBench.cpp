#include "i18n/cpp/i18n_string.hpp"

#include <unicode/unistr.h>

#include <string>

#include "bench/support/Bench.hpp"

#ifdef BENCH_HAVE_QT
#include <QString>
#endif

namespace {

// Names and sentences of 16 to 32 characters. Each round constructs one string from each text.
const char* const kShort[] = {
    "order-2006-03-09",         "the request is bad",          "Muster, Max Friedrich",
    "/var/lib/qbl/queue/00017", "Content-Type: text/plain; x", "it was delivered on 9 March 2006"};
const char kText[] = "customer: 4711, paid";
const char kPart[] = "4711";
const int kPartOffset = 10;

// The string classes to compare, each with its own names for the operations below.
struct Ours {
    using String = I18NString;
    static String make(const char* text) { return String(text); }
    static int find(const String& text, const String& part) { return text.find(part); }
    static std::size_t utf8Size(const String& text) { return std::strlen(text.c_str()); }
};

struct Std {
    using String = std::string;
    static String make(const char* text) { return text; }
    static int find(const String& text, const String& part) {
        return static_cast<int>(text.find(part));
    }
    static std::size_t utf8Size(const String& text) { return std::strlen(text.c_str()); }
};

struct Icu {
    using String = icu::UnicodeString;
    static String make(const char* text) { return String::fromUTF8(text); }
    static int find(const String& text, const String& part) { return text.indexOf(part); }
    static std::size_t utf8Size(const String& text) {
        std::string bytes;
        return text.toUTF8String(bytes).size();
    }
};

#ifdef BENCH_HAVE_QT
struct Qt {
    using String = QString;
    static String make(const char* text) { return QString::fromUtf8(text); }
    static int find(const String& text, const String& part) { return text.indexOf(part); }
    static std::size_t utf8Size(const String& text) {
        return static_cast<std::size_t>(text.toUtf8().size());
    }
};
#endif

template <class Side>
void construct(benchmark::State& state) {
    while (state.KeepRunningBatch(std::size(kShort)))
        for (const char* text : kShort) {
            const auto string = Side::make(text);
            benchmark::DoNotOptimize(&string);
            benchmark::ClobberMemory();
        }
}

template <class Side>
void copy(benchmark::State& state) {
    const auto string = Side::make(kShort[4]);
    for (auto _ : state) {
        const auto copied = string;  // NOLINT(performance-unnecessary-copy-initialization)
        benchmark::DoNotOptimize(&copied);
        benchmark::ClobberMemory();
    }
}

template <class Side>
void equal(benchmark::State& state) {
    const auto a = Side::make(kText), b = Side::make(kText);
    for (auto _ : state) {
        benchmark::ClobberMemory();
        benchmark::DoNotOptimize(a == b);
    }
}

/// Makes a string, copies it, compares both, finds a part, and gets the UTF-8 text.
template <class Side>
std::size_t everyday(const char* text, const typename Side::String& part) {
    const auto string = Side::make(text);
    const auto copied = string;  // NOLINT(performance-unnecessary-copy-initialization)
    if (!(copied == string)) return 0;
    return static_cast<std::size_t>(Side::find(copied, part)) * 100 + Side::utf8Size(copied);
}

template <class Side>
void mix(benchmark::State& state) {
    const auto part = Side::make(kPart);
    for (auto _ : state) {
        const char* text = kText;
        benchmark::DoNotOptimize(text);
        benchmark::DoNotOptimize(everyday<Side>(text, part));
    }
}

void cStr(benchmark::State& state) {
    const I18NString string(kText);
    const I18NString* at = &string;
    for (auto _ : state) {
        benchmark::DoNotOptimize(at);
        benchmark::DoNotOptimize(at->c_str(nullptr));
    }
}

template <class Side>
bool isRight() {
    return everyday<Side>(kText, Side::make(kPart)) == kPartOffset * 100 + sizeof kText - 1;
}

const OutputCheck check("I18NString", [] {
    bool right = isRight<Ours>() && isRight<Std>() && isRight<Icu>();
#ifdef BENCH_HAVE_QT
    right = right && isRight<Qt>();
#endif
    return right;
});

#define STRINGS(name, side)                                             \
    BENCHMARK_TEMPLATE(construct, side)->Name("BM_" name "_construct"); \
    BENCHMARK_TEMPLATE(copy, side)->Name("BM_" name "_copy");           \
    BENCHMARK_TEMPLATE(equal, side)->Name("BM_" name "_equal");         \
    BENCHMARK_TEMPLATE(mix, side)->Name("BM_" name "_mix")

STRINGS("I18NString", Ours);
STRINGS("StdString", Std);
STRINGS("IcuString", Icu);
#ifdef BENCH_HAVE_QT
STRINGS("QString", Qt);
#endif
BENCHMARK(cStr)->Name("BM_I18NString_cStr");

}  // namespace
