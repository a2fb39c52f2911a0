#include <unicode/normalizer2.h>
#include <unicode/unistr.h>
#include <unicode/ustring.h>

#include <cstdlib>
#include <cstring>
#include <memory>

#include "bench/support/Bench.hpp"
#include "bench/support/Texts.hpp"
#include "i18n/cpp/i18n_string.hpp"

namespace {

// To decode, our side constructs a string, which includes normalisation. To encode, it allocates a
// block for the bytes. The yardstick only writes into an existing buffer. For short texts, a second
// yardstick also makes a string.

void ourDecoding(benchmark::State& state, Script script) {
    const std::string text = proseOf(script, static_cast<std::size_t>(state.range(0)));
    const int length = static_cast<int>(text.size());
    for (auto _ : state) {
        const I18NString string(text.data(), nullptr, length);
        benchmark::DoNotOptimize(&string);
        benchmark::ClobberMemory();
    }
}

int32_t decode(const std::string& text, UChar* out) {
    UErrorCode status = U_ZERO_ERROR;
    const auto length = static_cast<int32_t>(text.size());
    int32_t units = 0;
    u_strFromUTF8(out, length, &units, text.data(), length, &status);
    return U_SUCCESS(status) ? units : -1;
}

void itsDecoding(benchmark::State& state, Script script) {
    const std::string text = proseOf(script, static_cast<std::size_t>(state.range(0)));
    const auto out = std::make_unique<UChar[]>(text.size());
    for (auto _ : state) {
        benchmark::DoNotOptimize(decode(text, out.get()));
        benchmark::ClobberMemory();
    }
}

void itsNormalizedString(benchmark::State& state, Script script) {
    const std::string text = proseOf(script, static_cast<std::size_t>(state.range(0)));
    UErrorCode status = U_ZERO_ERROR;
    const icu::Normalizer2& form = *icu::Normalizer2::getNFCInstance(status);
    for (auto _ : state) {
        const icu::UnicodeString string = icu::UnicodeString::fromUTF8(text);
        benchmark::DoNotOptimize(form.isNormalized(string, status));
        benchmark::ClobberMemory();
    }
}

/// Measures only the cost of memory: allocates a block of the same size and fills it. For 512 KiB
/// and more, the 32-bit C library maps the block again in each call, and the kernel clears its
/// pages.
void blockAndCopy(benchmark::State& state) {
    const std::string text = proseOf(Script::ASCII, static_cast<std::size_t>(state.range(0)));
    for (auto _ : state) {
        char* const block = static_cast<char*>(std::malloc(text.size() + 1));
        std::memcpy(block, text.data(), text.size());
        benchmark::DoNotOptimize(block);
        benchmark::ClobberMemory();
        std::free(block);
    }
}
BENCHMARK(blockAndCopy)->Name("BM_Malloc_memcpy")->Arg(1 << 20);

void ourEncoding(benchmark::State& state, Script script) {
    I18NString string(proseOf(script, static_cast<std::size_t>(state.range(0))).c_str());
    string.getUnicodeString();  // makes the string store UTF-16 instead of ASCII
    for (auto _ : state) {
        char* bytes = nullptr;
        string.toBytes(&bytes);
        benchmark::DoNotOptimize(bytes);
        benchmark::ClobberMemory();
        I18NString::freeBuffer(&bytes);
    }
}

int32_t encode(const std::u16string& units, char* out, std::size_t room) {
    UErrorCode status = U_ZERO_ERROR;
    int32_t bytes = 0;
    u_strToUTF8(out, static_cast<int32_t>(room), &bytes, units.data(),
                static_cast<int32_t>(units.size()), &status);
    return U_SUCCESS(status) ? bytes : -1;
}

void itsEncoding(benchmark::State& state, Script script) {
    const std::u16string units = toUtf16(proseOf(script, static_cast<std::size_t>(state.range(0))));
    const std::size_t room = units.size() * 3 + 1;
    const auto out = std::make_unique<char[]>(room);
    for (auto _ : state) {
        benchmark::DoNotOptimize(encode(units, out.get(), room));
        benchmark::ClobberMemory();
    }
}

const struct {
    const char* name;
    Script script;
} kTexts[] = {{"ASCII", Script::ASCII}, {"Latin", Script::Latin}, {"Cyrillic", Script::Cyrillic},
              {"CJK", Script::CJK},     {"Emoji", Script::Emoji}, {"HTML", Script::HTML}};

const OutputCheck check("I18NString and UTF-8", [] {
    for (const auto& text : kTexts) {
        const std::string utf8 = proseOf(text.script, 5000);
        std::u16string units(utf8.size(), u'\0');
        units.resize(static_cast<std::size_t>(decode(utf8, &units[0])));
        std::string back(units.size() * 3, '\0');
        back.resize(static_cast<std::size_t>(encode(units, &back[0], back.size())));
        I18NString string(utf8.c_str());
        if (string.toUtf16() != units) return false;
        string.getUnicodeString();
        if (string.toUtf8() != back) return false;
    }
    return true;
});

const bool registered = [] {
    const auto add = [](const char* name, auto body, Script script) {
        return benchmark::RegisterBenchmark(name, body, script);
    };
    for (const auto& text : kTexts) {
        const std::string name = text.name;
        add(("BM_I18NString_from" + name).c_str(), ourDecoding, text.script)->Arg(64);
        add(("BM_IcuStringFromUTF8_" + name).c_str(), itsNormalizedString, text.script)->Arg(64);
        for (const long size : {1 << 10, 1 << 16, 1 << 20}) {
            add(("BM_I18NString_from" + name).c_str(), ourDecoding, text.script)->Arg(size);
            add(("BM_IcuFromUTF8_" + name).c_str(), itsDecoding, text.script)->Arg(size);
            add(("BM_I18NString_to" + name).c_str(), ourEncoding, text.script)->Arg(size);
            add(("BM_IcuToUTF8_" + name).c_str(), itsEncoding, text.script)->Arg(size);
        }
    }
    return true;
}();

}  // namespace
