// Converts arbitrary bytes between any two encodings, with converters set up as in qblconv. The
// first bytes select encodings, policies, byte-order mark and block sizes. The output and the
// findings must not depend on how the input is split into blocks. If there is no finding, input and
// output must decode to the same text.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

#include "i18n/cpp/i18n_encoding_names.h"
#include "i18n/cpp/i18n_errors.hpp"
#include "i18n/cpp/i18n_text_stream.hpp"
#include "tools/qblconv/Encodings.hpp"

namespace {

constexpr std::size_t kChoices = 5;
constexpr int kPolicies[] = {I18N_STOP, I18N_ESCAPE, I18N_SUBSTITUTE, I18N_LOOKUP,
                             I18N_USER_DEFINED};

void require(bool holds) {
    if (!holds) std::abort();
}

std::unique_ptr<I18NConverter> openNumbered(std::size_t number, int input, int output) {
    const auto count = static_cast<std::size_t>(I18NCountEncodings());
    conv::Problem problem;
    auto converter =
        conv::openEncoding(I18NGetEncodingName(static_cast<int>(number % count), 0), problem);
    require(converter != nullptr);
    conv::setPolicies(*converter, input, output);
    return converter;
}

/// The result of a conversion: its output, and a text with its findings and how it ended.
struct Outcome : I18NTextStreamListener {
    struct Lacking {};

    explicit Outcome(bool stops) : m_bStops(stops) {}
    void unconvertible(const I18NUnconvertible& what) override {
        for (const std::int64_t number :
             {std::int64_t{what.isOutput}, std::int64_t{what.isCutOff},
              std::int64_t{what.isBestFit}, what.byteOffset,
              static_cast<std::int64_t>(what.codePoint), what.textOffset, what.line, what.column})
            told += std::to_string(number) + " ";
        told.append(what.bytes != nullptr ? what.bytes : "",
                    static_cast<std::size_t>(what.byteCount));
        told += '\n';
        if (what.isOutput && m_bStops && !what.isBestFit) throw Lacking();
    }
    void take(const I18NTextStream& stream) {
        if (stream.getByteCount() > 0) bytes.append(stream.getBytes(), stream.getByteCount());
        if (stream.getTextLength() > 0) text.append(stream.getText(), stream.getTextLength());
    }

    std::string bytes, told;
    std::u16string text;

private:
    const bool m_bStops;
};

struct Way {
    const I18NConverter* from;
    const I18NConverter* to;
    I18NByteOrderMark mark;
    bool stops;  // at characters that the output encoding lacks
};

/// @param sizes  sizes of the blocks, used in rotation
Outcome convert(const Way& way, const std::string& source, const std::vector<std::size_t>& sizes) {
    Outcome outcome(way.stops);
    I18NTextStream stream(way.from, way.to, way.mark, &outcome);
    try {
        std::size_t turn = 0;
        for (std::size_t at = 0; at < source.size(); at += sizes[turn++ % sizes.size()]) {
            const std::string piece = source.substr(at, sizes[turn % sizes.size()]);
            // A separate allocation, so that the address sanitizer detects reads past its end.
            const std::vector<char> block(piece.begin(), piece.end());
            stream.put(block.data(), block.size());
            outcome.take(stream);
        }
        stream.finish();
    } catch (const I18NRuntimeError& error) {
        require(error.getErrorCode() == I18N_CONVERSION);
        outcome.told += "refused";
    } catch (const Outcome::Lacking&) {
        outcome.told += "lacking";
    }
    outcome.take(stream);
    outcome.told += "\n" + std::string(stream.getInputEncoding()) + " " +
                    std::to_string(stream.getReplacedInput()) + " " +
                    std::to_string(stream.getReplacedOutput()) + " " +
                    std::to_string(stream.getBestFits()) + " " + std::to_string(stream.getLine()) +
                    ":" + std::to_string(stream.getColumn());
    return outcome;
}

/// Returns false for encodings in which ICU changes a few characters without reporting them.
bool isExact(const I18NConverter& converter) {
    for (const char* const inexact : {"ISCII", "LMBCS", "SCSU"})
        if (std::strstr(converter.getEncoding(), inexact) != nullptr) return false;
    return true;
}

void checkMeaning(const Way& way, const std::string& source, const std::string& output) {
    const std::vector<std::size_t> whole = {source.size() + output.size() + 1};
    const Outcome meant = convert({way.from, nullptr, way.mark, false}, source, whole);
    // A leading U+FEFF in the text becomes a byte-order mark in the output.
    if (!meant.text.empty() && meant.text.front() == 0xFEFF) return;
    const Outcome again = convert({way.to, nullptr, I18N_MARK_KEEP, false}, output, whole);
    require(again.text == meant.text);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < kChoices) return 0;
    const std::string source(reinterpret_cast<const char*>(data) + kChoices, size - kChoices);
    const bool fits = data[2] / 5 % 2 == 1;
    const int outputPolicy = fits ? I18N_STOP : kPolicies[data[2] / 10 % std::size(kPolicies)];
    const auto from = openNumbered(data[0], kPolicies[data[2] % std::size(kPolicies)], I18N_STOP);
    const auto to = openNumbered(data[1], I18N_STOP, outputPolicy);
    to->useFallback(fits);
    const Way way = {from.get(), to.get(), static_cast<I18NByteOrderMark>(data[3] % 4),
                     outputPolicy == I18N_STOP};
    const Outcome whole = convert(way, source, {source.size()});
    const Outcome cut = convert(way, source, {1U + data[4] % 16, 1U + data[4] / 16});
    require(whole.bytes == cut.bytes && whole.told == cut.told);
    const bool isClean = whole.told[0] == '\n';
    if (isClean && isExact(*from) && isExact(*to)) checkMeaning(way, source, whole.bytes);
    return 0;
}
