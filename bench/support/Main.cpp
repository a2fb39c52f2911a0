#include <future>
#include <thread>

#include "QBLCore/Frame/QBLCore.h"
#include "bench/support/Bench.hpp"

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;

    if (qblCoreInitialize() != 0) return 1;
    // The C library's locks leave out their atomic instructions while a process has one thread
    // only. No server has, so a second one stays parked for as long as anything is measured.
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
