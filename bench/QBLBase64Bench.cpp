#include "QBLCore/Utility/QBLBase64.h"

#include <string>
#include <type_traits>
#include <vector>

#include "QBLCore/Utility/internal/QBLBase64Kernels.hpp"
#include "bench/support/Bench.hpp"

#ifdef BENCH_HAVE_OPENSSL
#include <openssl/evp.h>
#endif

namespace {

std::vector<unsigned char> dataOf(std::size_t size) {
    std::vector<unsigned char> data(size);
    unsigned state = 1;
    for (unsigned char& byte : data) {
        state = state * 1664525U + 1013904223U;
        byte = static_cast<unsigned char>(state >> 24);
    }
    return data;
}

struct Ours {
    static int encode(char* out, const std::vector<unsigned char>& data) {
        QBLBase64Encode(data.data(), static_cast<unsigned>(data.size()), out);
        return 0;
    }
    static int decode(unsigned char* out, const std::string& text) {
        unsigned length = 0;
        QBLBase64Decode(text.c_str(), out, &length);
        return static_cast<int>(length);
    }
};

/// The code that is used on processors with fewer instructions.
template <const QBLBase64Kernels& kKernels>
struct Level {
    static int encode(char* out, const std::vector<unsigned char>& data) {
        qblBase64Encode(kKernels, kQBLBase64Standard, data.data(), data.size(), out);
        return 0;
    }
    static int decode(unsigned char* out, const std::string& text) {
        std::size_t length = 0;
        qblBase64Decode(kKernels, kQBLBase64Standard, text.c_str(), out, length);
        return static_cast<int>(length);
    }
};
using Scalar = Level<kQBLBase64Scalar>;
using Avx2 = Level<kQBLBase64Avx2>;

template <class Side>
bool runs() {
    return !std::is_same_v<Side, Avx2> || __builtin_cpu_supports("avx2") != 0;
}

#ifdef BENCH_HAVE_OPENSSL
/// OpenSSL gets the length of the text; QBLBase64Decode searches for the terminating NUL.
struct OpenSsl {
    static int encode(char* out, const std::vector<unsigned char>& data) {
        return EVP_EncodeBlock(reinterpret_cast<unsigned char*>(out), data.data(),
                               static_cast<int>(data.size()));
    }
    static int decode(unsigned char* out, const std::string& text) {
        return EVP_DecodeBlock(out, reinterpret_cast<const unsigned char*>(text.data()),
                               static_cast<int>(text.size()));
    }
};
#endif

template <class Side>
std::string encoded(const std::vector<unsigned char>& data) {
    std::string text(QBLBase64EncodedSize(static_cast<unsigned>(data.size())), '\0');
    Side::encode(&text[0], data);
    return text.c_str();
}

template <class Side>
void encode(benchmark::State& state) {
    if (!runs<Side>()) return state.SkipWithError("this processor lacks AVX2");
    const auto data = dataOf(static_cast<std::size_t>(state.range(0)));
    std::string out = encoded<Ours>(data) + ' ';
    for (auto _ : state) {
        Side::encode(&out[0], data);
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(state.iterations() * state.range(0));
}

template <class Side>
void decode(benchmark::State& state) {
    if (!runs<Side>()) return state.SkipWithError("this processor lacks AVX2");
    const std::string text = encoded<Ours>(dataOf(static_cast<std::size_t>(state.range(0))));
    std::vector<unsigned char> out(text.size());
    for (auto _ : state) {
        benchmark::DoNotOptimize(Side::decode(out.data(), text));
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(state.iterations() * state.range(0));
}

template <class Side>
bool good() {
    const std::vector<unsigned char> data = dataOf(3000);
    const std::string text = encoded<Side>(data);
    std::vector<unsigned char> back(3000);
    return text == encoded<Scalar>(data) && Side::decode(back.data(), text) == 3000 && back == data;
}

const OutputCheck check("QBLBase64", [] {
#ifdef BENCH_HAVE_OPENSSL
    if (!good<OpenSsl>()) return false;
#endif
    return good<Ours>() && good<Scalar>() && (!runs<Avx2>() || good<Avx2>());
});

#define BENCH_SIDE(Side, name)       \
    BENCHMARK_TEMPLATE(encode, Side) \
        ->Name("BM_" name "_encode") \
        ->Arg(64)                    \
        ->Arg(1 << 10)               \
        ->Arg(1 << 20);              \
    BENCHMARK_TEMPLATE(decode, Side) \
        ->Name("BM_" name "_decode") \
        ->Arg(64)                    \
        ->Arg(1 << 10)               \
        ->Arg(1 << 20)

BENCH_SIDE(Ours, "QBLBase64");
BENCH_SIDE(Scalar, "QBLBase64Scalar");
BENCH_SIDE(Avx2, "QBLBase64Avx2");
#ifdef BENCH_HAVE_OPENSSL
BENCH_SIDE(OpenSsl, "OpenSsl");
#endif

}  // namespace
