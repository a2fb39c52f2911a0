#include "QBLCore/Utility/QBLUtCrc32.hpp"

#include <zlib.h>

#include <string>

#include "QBLCore/Utility/internal/QBLCrc32Kernels.hpp"
#include "bench/support/Bench.hpp"
#include "bench/support/Texts.hpp"

#ifdef BENCH_HAVE_DEFLATE
#include <libdeflate.h>
#endif

namespace {

struct Ours {
    static unsigned long crc(const unsigned char* data, unsigned length) {
        return QBLUtCrc32::crc32(0, data, length);
    }
};

/// The code for processors without carry-less multiplication.
struct Tables {
    static unsigned long crc(const unsigned char* data, unsigned length) {
        return ~qblCrc32Tables(0xFFFFFFFF, data, length);
    }
};

struct Zlib {
    static unsigned long crc(const unsigned char* data, unsigned length) {
        return crc32(0, data, length);
    }
};

#ifdef BENCH_HAVE_DEFLATE
struct Deflate {
    static unsigned long crc(const unsigned char* data, unsigned length) {
        return libdeflate_crc32(0, data, length);
    }
};
#endif

template <class Side>
unsigned long crcOf(const std::string& text) {
    return Side::crc(reinterpret_cast<const unsigned char*>(text.data()),
                     static_cast<unsigned>(text.size()));
}

template <class Side>
void crc(benchmark::State& state) {
    const std::string text = proseOf(Script::ASCII, static_cast<std::size_t>(state.range(0)));
    for (auto _ : state) benchmark::DoNotOptimize(crcOf<Side>(text));
    state.SetBytesProcessed(state.iterations() * state.range(0));
}

const OutputCheck check("QBLUtCrc32", [] {
    const std::string text = proseOf(Script::ASCII, 5000);
    const auto expected = static_cast<unsigned>(crcOf<Zlib>(text));
#ifdef BENCH_HAVE_DEFLATE
    if (crcOf<Deflate>(text) != expected) return false;
#endif
    return crcOf<Ours>(text) == expected && static_cast<unsigned>(crcOf<Tables>(text)) == expected;
});

BENCHMARK_TEMPLATE(crc, Ours)->Name("BM_QBLUtCrc32_crc32")->Arg(64)->Arg(1 << 20);
BENCHMARK_TEMPLATE(crc, Tables)->Name("BM_QBLUtCrc32Tables_crc32")->Arg(64)->Arg(1 << 20);
BENCHMARK_TEMPLATE(crc, Zlib)->Name("BM_Zlib_crc32")->Arg(64)->Arg(1 << 20);
#ifdef BENCH_HAVE_DEFLATE
BENCHMARK_TEMPLATE(crc, Deflate)->Name("BM_Libdeflate_crc32")->Arg(64)->Arg(1 << 20);
#endif

}  // namespace
