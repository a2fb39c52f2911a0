#include "QBLCore/Exceptions/QBLError.hpp"

#include "QBLCore/Exceptions/QBLThrow.hpp"
#include "bench/support/Bench.hpp"

#ifdef BENCH_HAVE_BOOST
#include <boost/throw_exception.hpp>
#include <stdexcept>
#endif

namespace {

// Both sides throw in the innermost of three functions and rethrow in the middle one.
const char kText[] = "BenchJob::start: the job is not ready";

struct Ours {
    [[gnu::noinline]] static void raise(int code) { QBL_THROW(QBLError(code, kText)); }
    [[gnu::noinline]] static void passOn(int code) {
        try {
            raise(code);
        } catch (QBLThrowable& e) {
            QBL_RETHROW(e);
        }
    }
    [[gnu::noinline]] static long handle(int code) {
        try {
            passOn(code);
        } catch (QBLThrowable& e) {
            return e.getErrorCode();
        }
        return -1;
    }
};

#ifdef BENCH_HAVE_BOOST
class PeerError : public std::runtime_error {
public:
    PeerError(int code, const char* text) : std::runtime_error(text), m_iCode(code) {}
    int m_iCode;
};

struct Peer {
    [[gnu::noinline]] static void raise(int code) { BOOST_THROW_EXCEPTION(PeerError(code, kText)); }
    [[gnu::noinline]] static void passOn(int code) {
        try {
            raise(code);
        } catch (PeerError& e) {
            benchmark::DoNotOptimize(e.m_iCode);
            throw;
        }
    }
    [[gnu::noinline]] static long handle(int code) {
        try {
            passOn(code);
        } catch (PeerError& e) {
            return e.m_iCode;
        }
        return -1;
    }
};

const OutputCheck check("QBLError", [] { return Ours::handle(5) == 5 && Peer::handle(5) == 5; });
#endif

template <class Side>
void throwRethrowCatch(benchmark::State& state) {
    for (auto _ : state) benchmark::DoNotOptimize(Side::handle(5));
}

BENCHMARK_TEMPLATE(throwRethrowCatch, Ours)->Name("BM_QBLError_throwRethrowCatch");
#ifdef BENCH_HAVE_BOOST
BENCHMARK_TEMPLATE(throwRethrowCatch, Peer)->Name("BM_BoostThrowException_throwRethrowCatch");
#endif

}  // namespace
