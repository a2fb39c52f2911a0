#include <future>
#include <thread>

#include "QBLCore/Frame/QBLCore.h"
#include "bench/support/Bench.hpp"

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;

    if (qblCoreInitialize() != 0) return 1;
    // The C library's locks skip atomic instructions while the process has a single thread. A
    // server has several threads, so a second thread stays parked during all measurements.
    std::promise<void> done;
    std::thread parked([wait = done.get_future()] { wait.wait(); });
    const bool same = OutputCheck::runAll();
    if (same) benchmark::RunSpecifiedBenchmarks();
    done.set_value();
    parked.join();
    benchmark::Shutdown();
    qblCoreTerminate();
    return same ? 0 : 1;
}
