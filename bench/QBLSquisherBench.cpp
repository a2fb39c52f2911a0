#include "QBLCore/Utility/QBLSquisher.hpp"

#include <zlib.h>

#include <memory>
#include <string>
#include <vector>

#include "bench/support/Bench.hpp"
#include "bench/support/Texts.hpp"

namespace {

void squish(benchmark::State& state) {
    const std::string text = proseOf(Script::ASCII, static_cast<std::size_t>(state.range(0)));
    std::vector<char> out(QBLsqu_squished_size(static_cast<unsigned>(text.size())));
    for (auto _ : state) benchmark::DoNotOptimize(QBLsqu_squish(text.c_str(), out.data()));
}

int compressed(std::vector<Bytef>& out, const std::string& text) {
    uLongf size = static_cast<uLongf>(out.size());
    return compress2(out.data(), &size, reinterpret_cast<const Bytef*>(text.data()),
                     static_cast<uLong>(text.size()), 9);
}

/// Nothing but what it is compressed with: no length, no checksum, no Base64.
void compress(benchmark::State& state) {
    const std::string text = proseOf(Script::ASCII, static_cast<std::size_t>(state.range(0)));
    std::vector<Bytef> out(compressBound(static_cast<uLong>(text.size())));
    for (auto _ : state) benchmark::DoNotOptimize(compressed(out, text));
}

void unsquish(benchmark::State& state) {
    const std::string text = proseOf(Script::ASCII, static_cast<std::size_t>(state.range(0)));
    const std::unique_ptr<char[]> token(QBLSquisher::squish(text.c_str()));
    for (auto _ : state) {
        const std::unique_ptr<char[]> back(QBLSquisher::unSquish(token.get()));
        benchmark::DoNotOptimize(back.get());
    }
}

const OutputCheck check("QBLSquisher", [] {
    const std::string text = proseOf(Script::ASCII, 5000);
    const std::unique_ptr<char[]> token(QBLSquisher::squish(text.c_str()));
    const std::unique_ptr<char[]> back(QBLSquisher::unSquish(token.get()));
    return back && text == back.get();
});

BENCHMARK(squish)->Name("BM_QBLSquisher_squish")->Arg(200)->Arg(1 << 20);
BENCHMARK(compress)->Name("BM_Zlib_compress2")->Arg(200)->Arg(1 << 20);
BENCHMARK(unsquish)->Name("BM_QBLSquisher_unSquish")->Arg(200)->Arg(1 << 20);

}  // namespace
