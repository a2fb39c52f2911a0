#include "QBLCore/FileManagement/QBLFmLines.hpp"

#include <cstring>
#include <fstream>
#include <string>
#include <string_view>
#include <vector>

#include "QBLCore/FileManagement/QBLFmFile.hpp"
#include "bench/support/Bench.hpp"
#include "bench/support/TempDir.hpp"
#include "bench/support/Texts.hpp"
#include "i18n/cpp/i18n_converter.hpp"
#include "i18n/cpp/i18n_text_stream.hpp"

// Reads the lines of a file of 1 MiB. The yardstick is the loop that a program would write: it
// reads blocks, converts them to UTF-8 with a text stream, and splits the result at LF and CR LF.

namespace {

struct Sample {
    const char* encoding;
    Script script;
};
const Sample kSamples[] = {{"UTF-8", Script::Latin}, {"Shift_JIS", Script::CJK}};

const std::string& fileOf(const Sample& sample) {
    static const TempDir kDir;
    static const std::vector<std::string> kPaths = [] {
        std::vector<std::string> paths;
        for (const Sample& each : kSamples) {
            const I18NConverter utf8("UTF-8");
            I18NConverter other(each.encoding);
            other.setBuiltInUnconvertibleOutputSequenceCallback(I18N_ESCAPE);
            I18NTextStream stream(&utf8, &other);
            const std::string text = proseOf(each.script, 1 << 20);
            stream.put(text.data(), text.size());
            std::string bytes(stream.getBytes(), stream.getByteCount());
            stream.finish();
            bytes.append(stream.getBytes(), stream.getByteCount());
            paths.push_back(kDir.path(each.encoding));
            std::ofstream(paths.back(), std::ios::binary) << bytes;
        }
        return paths;
    }();
    return kPaths[static_cast<std::size_t>(&sample - kSamples)];
}

struct Sum {
    std::size_t lines = 0, bytes = 0;

    void add(std::string_view line) {
        ++lines;
        bytes += line.size();
    }
    bool operator==(const Sum& other) const { return lines == other.lines && bytes == other.bytes; }
};

Sum byLines(const Sample& sample) {
    Sum sum;
    for (const std::string_view line : QBLFmLines(fileOf(sample), sample.encoding)) sum.add(line);
    return sum;
}

Sum byHand(const Sample& sample) {
    Sum sum;
    QBLFmFile file;
    if (!file.open(fileOf(sample).c_str(), QBLFmFile::existing, 1)) return sum;
    const I18NConverter utf8("UTF-8"), other(sample.encoding);
    I18NTextStream stream(&other, &utf8);
    std::vector<char> block(1 << 16);
    std::string rest;
    const auto split = [&] {
        const char* at = stream.getBytes();
        const char* const end = at + stream.getByteCount();
        while (const void* const found =
                   std::memchr(at, '\n', static_cast<std::size_t>(end - at))) {
            const char* const feed = static_cast<const char*>(found);
            std::string_view line(at, static_cast<std::size_t>(feed - at));
            if (!rest.empty()) line = rest.append(line);
            if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
            sum.add(line);
            rest.clear();
            at = feed + 1;
        }
        rest.append(at, end);
    };
    for (long size; (size = file.read(block.data(), block.size())) > 0;) {
        stream.put(block.data(), static_cast<std::size_t>(size));
        split();
    }
    stream.finish();
    split();
    if (!rest.empty()) sum.add(rest);
    return sum;
}

template <Sum (*kRead)(const Sample&)>
void readLines(benchmark::State& state) {
    const Sample& sample = kSamples[state.range(0)];
    for (auto _ : state) benchmark::DoNotOptimize(kRead(sample));
}

const OutputCheck check("QBLFmLines", [] {
    for (const Sample& sample : kSamples)
        if (!(byLines(sample) == byHand(sample)) || byLines(sample).lines < 1000) return false;
    return true;
});

BENCHMARK_TEMPLATE(readLines, byLines)->Name("BM_QBLFmLines")->Arg(0)->Arg(1);
BENCHMARK_TEMPLATE(readLines, byHand)->Name("BM_LinesByHand")->Arg(0)->Arg(1);

}  // namespace
