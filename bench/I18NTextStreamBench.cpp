#include "i18n/cpp/i18n_text_stream.hpp"

#include <unicode/ucnv.h>

#include <cstdint>
#include <cstdlib>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

#include "bench/support/Bench.hpp"
#include "bench/support/Texts.hpp"
#include "i18n/cpp/i18n_converter.hpp"

// Converts texts of 64 KiB between an encoding and UTF-8: plain ASCII, and HTML with half of its
// bytes in short runs of ASCII. The yardstick converts the whole text to UTF-16 and then to bytes.
// It keeps its converters and buffers, but a new stream is made for each text.

namespace {

struct Close {
    void operator()(UConverter* converter) const { ucnv_close(converter); }
};
using IcuConverter = std::unique_ptr<UConverter, Close>;

IcuConverter open(const char* encoding) {
    UErrorCode status = U_ZERO_ERROR;
    IcuConverter icu(ucnv_open(encoding, &status));
    ucnv_setFromUCallBack(icu.get(), UCNV_FROM_U_CALLBACK_SKIP, nullptr, nullptr, nullptr, &status);
    if (U_FAILURE(status)) std::abort();
    return icu;
}

constexpr std::size_t kText = 1 << 16;

/// Returns the characters of a prose that are not ASCII, in an encoding that may lack some of them.
std::vector<std::string> foreignIn(const char* encoding, Script script) {
    const IcuConverter icu = open(encoding);
    std::vector<std::string> foreign;
    for (const char16_t unit : toUtf16(proseOf(script, kText))) {
        char bytes[8];
        UErrorCode status = U_ZERO_ERROR;
        const int size = ucnv_fromUChars(icu.get(), bytes, sizeof bytes, &unit, 1, &status);
        if (unit >= 0x80 && size > 0) foreign.emplace_back(bytes, static_cast<std::size_t>(size));
    }
    return foreign;
}

/// @param run  maximum number of characters between two pieces of ASCII
std::string htmlIn(const char* encoding, Script script, std::size_t run) {
    static const char* const kPieces[] = {"<p>",
                                          "</p>\n",
                                          "<li class=\"entry\">",
                                          "</li>\n",
                                          "<td>",
                                          "</td>",
                                          " the ",
                                          " server ",
                                          "&nbsp;",
                                          "</a>",
                                          "<a href=\"/?id=4711\">",
                                          "<br />\n",
                                          ", ",
                                          ". ",
                                          " "};
    const std::vector<std::string> foreign = foreignIn(encoding, script);
    std::string text;
    std::size_t next = 0, ascii = 0;
    for (std::uint32_t random = 1; text.size() < kText - 64;) {
        random = random * 1664525U + 1013904223U;
        const std::string piece = kPieces[(random >> 16) % std::size(kPieces)];
        text += piece;
        ascii += piece.size();
        for (std::size_t i = 0; i < run && text.size() < 2 * ascii; ++i)
            text += foreign[next++ % foreign.size()];
    }
    text.resize(kText, '.');
    return text;
}

/// A text in one encoding, the encoding to convert it to, and buffers of the yardstick.
struct Text {
    Text(const std::string& source, const char* fromName, const char* toName)
        : from(fromName),
          to(toName),
          bytes(source),
          units(2 * kText, u'\0'),
          out(6 * kText, '\0') {}

    std::string toByIcu(UConverter* decoder, UConverter* encoder) {
        const std::size_t size = convert(decoder, encoder);
        return out.substr(0, size);
    }
    std::size_t convert(UConverter* decoder, UConverter* encoder) {
        UErrorCode status = U_ZERO_ERROR;
        const char* in = bytes.data();
        UChar* pivot = &units[0];
        ucnv_toUnicode(decoder, &pivot, pivot + units.size(), &in, in + bytes.size(), nullptr, true,
                       &status);
        const UChar* text = units.data();
        char* at = &out[0];
        ucnv_fromUnicode(encoder, &at, at + out.size(), &text, pivot, nullptr, true, &status);
        if (U_FAILURE(status)) std::abort();
        return static_cast<std::size_t>(at - out.data());
    }

    const char *from, *to;
    std::string bytes;
    std::u16string units;
    std::string out;
};

std::string toUtf8(const std::string& bytes, const char* encoding) {
    Text text(bytes, encoding, "UTF-8");
    return text.toByIcu(open(encoding).get(), open("UTF-8").get());
}

void ours(benchmark::State& state, const Text& text) {
    const I18NConverter from(text.from), to(text.to);
    for (auto _ : state) {
        I18NTextStream stream(&from, &to);
        stream.put(text.bytes.data(), text.bytes.size());
        benchmark::DoNotOptimize(stream.getBytes());
        stream.finish();
    }
}

void its(benchmark::State& state, Text text) {
    const IcuConverter from = open(text.from), to = open(text.to);
    for (auto _ : state) {
        benchmark::DoNotOptimize(text.convert(from.get(), to.get()));
        benchmark::ClobberMemory();
    }
}

bool isSame(Text text) {
    const I18NConverter from(text.from), to(text.to);
    I18NTextStream stream(&from, &to);
    stream.put(text.bytes.data(), text.bytes.size());
    std::string bytes(stream.getBytes(), stream.getByteCount());
    stream.finish();
    bytes.append(stream.getBytes(), stream.getByteCount());
    return bytes == text.toByIcu(open(text.from).get(), open(text.to).get());
}

const OutputCheck check = [] {
    static std::vector<Text> texts;
    const auto add = [](const char* name, const std::string& bytes, const char* encoding) {
        const Text there(bytes, encoding, "UTF-8"),
            back(toUtf8(bytes, encoding), "UTF-8", encoding);
        const std::string to = std::string("To_") + name + "/" + encoding;
        const std::string backTo = std::string("From_") + name + "/" + encoding;
        benchmark::RegisterBenchmark(("BM_I18NTextStream" + to).c_str(), ours, there);
        benchmark::RegisterBenchmark(("BM_UcnvTwoSteps" + to).c_str(), its, there);
        benchmark::RegisterBenchmark(("BM_I18NTextStream" + backTo).c_str(), ours, back);
        benchmark::RegisterBenchmark(("BM_UcnvTwoSteps" + backTo).c_str(), its, back);
        texts.push_back(there);
        texts.push_back(back);
    };
    for (const char* const encoding : {"Shift_JIS", "EUC-JP", "GB18030", "windows-1252"}) {
        const bool isLatin = std::string(encoding) == "windows-1252";
        add("HTML", htmlIn(encoding, isLatin ? Script::Latin : Script::CJK, isLatin ? 6 : 12),
            encoding);
        add("ASCII", proseOf(Script::ASCII, kText), encoding);
    }
    return OutputCheck("I18NTextStream", [] {
        for (const Text& text : texts)
            if (!isSame(text)) return false;
        return true;
    });
}();

}  // namespace
