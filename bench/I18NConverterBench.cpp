#include "i18n/cpp/i18n_converter.hpp"

#include <unicode/ucnv.h>

#include <cstdlib>
#include <memory>
#include <string>

#include "bench/support/Bench.hpp"
#include "bench/support/Texts.hpp"
#include "i18n/cpp/i18n_init.h"

namespace {

struct Close {
    void operator()(UConverter* converter) const { ucnv_close(converter); }
};
using IcuConverter = std::unique_ptr<UConverter, Close>;

IcuConverter open(const char* encoding) {
    UErrorCode status = U_ZERO_ERROR;
    return IcuConverter(ucnv_open(encoding, &status));
}

/// Initializes the layer. It then opens converters for UTF-8 by cloning a prepared converter.
class Started {
public:
    Started() { I18NInitialize(); }
    ~Started() { I18NTerminate(); }
    Started(const Started&) = delete;
    Started& operator=(const Started&) = delete;
};

void ourConstruct(benchmark::State& state, const char* encoding) {
    const Started started;
    for (auto _ : state) {
        const I18NConverter converter(encoding);
        benchmark::DoNotOptimize(&converter);
    }
}

void itsClone(benchmark::State& state, const char* encoding) {
    const IcuConverter original = open(encoding);
    for (auto _ : state) {
        UErrorCode status = U_ZERO_ERROR;
        benchmark::DoNotOptimize(IcuConverter(ucnv_clone(original.get(), &status)));
    }
}

/// ICU looks up the encoding's name in its tables, except for UTF-8.
void itsOpen(benchmark::State& state, const char* encoding) {
    for (auto _ : state) benchmark::DoNotOptimize(open(encoding));
}

// The benchmarks below convert whole texts between preallocated buffers. The encoded text has
// kBlock bytes.
constexpr std::size_t kBlock = 1 << 16;

struct Text {
    const char* encoding;
    Script script;
};
const Text kTexts[] = {{"windows-1252", Script::ASCII}, {"Shift_JIS", Script::CJK}};

/// A text in both forms, and room for the results. The text has only characters of the encoding.
struct Buffers {
    explicit Buffers(const Text& text) {
        const I18NConverter converter(text.encoding);
        units = toUtf16(proseOf(text.script, kBlock * 2));
        if (text.script == Script::ASCII)
            for (std::size_t i = 0; i < units.size(); i += 23) units[i] = u'\u00E4';
        I18NConverter only(converter);
        only.setUserDefinedUnconvertibleOutputSequenceCallback(
            [](wchar_t, const char*, char*, int* count, I18NErrorCodes*) { *count = 0; });
        char* block = nullptr;
        int size = 0;
        only.fromUnicode(&block, &size, units.data());
        bytes.assign(block, kBlock);
        std::free(block);
        outUnits.resize(kBlock + 1);
        outBytes.resize(kBlock * 2 + 1);
        units = decode(converter);
    }
    std::u16string decode(const I18NConverter& converter) {
        converter.toUnicode(&outUnits[0], static_cast<int>(outUnits.size() * 2), bytes.data(),
                            static_cast<int>(bytes.size()));
        return outUnits.c_str();
    }
    std::string bytes;
    std::u16string units;
    std::string outBytes;
    std::u16string outUnits;
};

void ourToUnicode(benchmark::State& state, Text text) {
    Buffers buffers(text);
    const I18NConverter converter(text.encoding);
    for (auto _ : state) {
        converter.toUnicode(&buffers.outUnits[0], static_cast<int>(buffers.outUnits.size() * 2),
                            buffers.bytes.data(), static_cast<int>(kBlock));
        benchmark::ClobberMemory();
    }
}

void decode(UConverter* converter, Buffers& buffers) {
    UErrorCode status = U_ZERO_ERROR;
    UChar* out = &buffers.outUnits[0];
    const char* in = buffers.bytes.data();
    ucnv_toUnicode(converter, &out, out + buffers.outUnits.size(), &in, in + kBlock, nullptr, true,
                   &status);
    *out = 0;
}

void itsToUnicode(benchmark::State& state, Text text) {
    Buffers buffers(text);
    const IcuConverter converter = open(text.encoding);
    for (auto _ : state) {
        decode(converter.get(), buffers);
        benchmark::ClobberMemory();
    }
}

void encode(const I18NConverter& converter, Buffers& buffers) {
    converter.fromUnicode(&buffers.outBytes[0], static_cast<int>(buffers.outBytes.size()),
                          buffers.units.c_str());
}

void ourFromUnicode(benchmark::State& state, Text text) {
    Buffers buffers(text);
    const I18NConverter converter(text.encoding);
    for (auto _ : state) {
        encode(converter, buffers);
        benchmark::ClobberMemory();
    }
}

void encode(UConverter* converter, Buffers& buffers) {
    UErrorCode status = U_ZERO_ERROR;
    char* out = &buffers.outBytes[0];
    const UChar* in = buffers.units.c_str();
    ucnv_fromUnicode(converter, &out, out + buffers.outBytes.size(), &in, in + buffers.units.size(),
                     nullptr, true, &status);
    *out = 0;
}

void itsFromUnicode(benchmark::State& state, Text text) {
    Buffers buffers(text);
    const IcuConverter converter = open(text.encoding);
    for (auto _ : state) {
        encode(converter.get(), buffers);
        benchmark::ClobberMemory();
    }
}

const OutputCheck check("I18NConverter", [] {
    for (const Text& text : kTexts) {
        Buffers ours(text), its(text);
        const I18NConverter converter(text.encoding);
        const IcuConverter peer = open(text.encoding);
        encode(converter, ours);
        encode(peer.get(), its);
        decode(peer.get(), its);
        // The results are compared with each other and not with the original: if the block's end
        // cuts off a character, decoding gives an error value, which encodes to other bytes.
        const bool same = ours.decode(converter) == its.outUnits.c_str() &&
                          ours.outBytes.c_str() == std::string(its.outBytes.c_str());
        if (!same || ours.units.size() < kBlock / 3) return false;
    }
    return true;
});

/// Converts into a block that the converter allocates. The encoding lacks every character of the
/// text.
void unconvertible(benchmark::State& state, I18NUnconvertiblePolicy policy) {
    const std::u16string text(1 << 16, u'\u4E00');
    I18NConverter converter("windows-1252");
    converter.setBuiltInUnconvertibleOutputSequenceCallback(policy);
    for (auto _ : state) {
        char* block = nullptr;
        int size = 0;
        converter.fromUnicode(&block, &size, text.c_str());
        benchmark::DoNotOptimize(block);
        std::free(block);
    }
}

BENCHMARK_CAPTURE(unconvertible, escape, I18N_ESCAPE)->Name("BM_I18NConverter_escape");
BENCHMARK_CAPTURE(unconvertible, substitute, I18N_SUBSTITUTE)->Name("BM_I18NConverter_substitute");

const bool registered = [] {
    const auto add = [](const char* name, const char* encoding, auto body, auto argument) {
        benchmark::RegisterBenchmark((std::string(name) + '/' + encoding).c_str(), body, argument);
    };
    for (const char* encoding : {"UTF-8", "UTF-16"}) {
        add("BM_I18NConverter_construct", encoding, ourConstruct, encoding);
        add("BM_Ucnv_clone", encoding, itsClone, encoding);
        add("BM_Ucnv_open", encoding, itsOpen, encoding);
    }
    for (const Text& text : kTexts) {
        add("BM_I18NConverter_toUnicode", text.encoding, ourToUnicode, text);
        add("BM_Ucnv_toUnicode", text.encoding, itsToUnicode, text);
        add("BM_I18NConverter_fromUnicode", text.encoding, ourFromUnicode, text);
        add("BM_Ucnv_fromUnicode", text.encoding, itsFromUnicode, text);
    }
    return true;
}();

}  // namespace
