#include "QBLCore/Utility/QBLSquisher.hpp"

#include <unistd.h>
#include <zlib.h>

#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <memory>
#include <string>
#include <type_traits>
#include <vector>

#include "bench/support/Bench.hpp"
#include "bench/support/Texts.hpp"

namespace {

struct Ours {
    explicit Ours(const std::string& text)
        : m_text(text), m_out(QBLsqu_squished_size(static_cast<unsigned>(text.size()))) {}
    int run() { return QBLsqu_squish(m_text.c_str(), m_out.data()); }

private:
    const std::string m_text;
    std::vector<char> m_out;
};

/// Only compresses the text. Unlike our side, adds no length, no checksum and no Base64.
struct Zlib {
    explicit Zlib(const std::string& text)
        : m_text(text), m_out(compressBound(static_cast<uLong>(text.size()))) {}
    int run() {
        auto size = static_cast<uLongf>(m_out.size());
        return compress2(m_out.data(), &size, reinterpret_cast<const Bytef*>(m_text.data()),
                         static_cast<uLong>(m_text.size()), 9);
    }

private:
    const std::string m_text;
    std::vector<Bytef> m_out;
};

double processorSeconds() {
    timespec now = {};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

/// Returns the seconds per call in this process.
template <class Side>
double secondsOf(std::size_t size) {
    Side side(proseOf(Script::ASCII, size));
    const int calls = size < 1000 ? 2000 : 1;
    const double start = processorSeconds();
    for (int i = 0; i < calls; ++i) side.run();
    return (processorSeconds() - start) / calls;
}

// For a short text, compress2 spends most of its time on memory. A process that has run for a while
// reuses its free memory. A new process gets the memory from the kernel and returns it in every
// call. So both sides are measured in a new process that does nothing else. The program starts
// itself for this. If the environment variable is set, the initializer below measures, prints the
// result and exits before main() runs. It must run before the initializers of the other benchmarks:
// once they have freed a large block, the C library no longer returns memory to the kernel.
const char kFresh[] = "QBL_BENCH_SQUISHER";

struct FreshProcess {
    FreshProcess() {
        const char* const what = std::getenv(kFresh);
        if (what == nullptr) return;
        const auto size = static_cast<std::size_t>(std::strtoul(what + 1, nullptr, 10));
        std::printf("%.12f\n", *what == 'o' ? secondsOf<Ours>(size) : secondsOf<Zlib>(size));
        std::fflush(stdout);
        _exit(0);
    }
};
[[gnu::init_priority(101)]] const FreshProcess s_freshProcess;

template <class Side>
void fresh(benchmark::State& state) {
    const std::string command =
        std::string(kFresh) + '=' + (std::is_same_v<Side, Ours> ? 'o' : 'z') +
        std::to_string(state.range(0)) + " exec /proc/" + std::to_string(getpid()) + "/exe";
    for (auto _ : state) {
        double seconds = 0;
        std::FILE* const child = popen(command.c_str(), "r");
        if (child == nullptr || std::fscanf(child, "%lf", &seconds) != 1)
            state.SkipWithError("no new process");
        if (child != nullptr) pclose(child);
        state.SetIterationTime(seconds);
    }
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

BENCHMARK_TEMPLATE(fresh, Ours)
    ->Name("BM_QBLSquisher_squish")
    ->Arg(200)
    ->Arg(1 << 20)
    ->Iterations(5)
    ->UseManualTime();
BENCHMARK_TEMPLATE(fresh, Zlib)
    ->Name("BM_Zlib_compress2")
    ->Arg(200)
    ->Arg(1 << 20)
    ->Iterations(5)
    ->UseManualTime();
BENCHMARK(unsquish)->Name("BM_QBLSquisher_unSquish")->Arg(200)->Arg(1 << 20);

}  // namespace
