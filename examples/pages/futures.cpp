// Returns results and errors of work through futures, and stops a group.
#include <cstdio>
#include <string>

#include "QBLCore/Exceptions/QBLIllegalArgumentError.hpp"
#include "QBLCore/Exceptions/QBLThrow.hpp"
#include "QBLCore/Exceptions/QBLWhat.hpp"
#include "QBLCore/Frame/QBLCore.h"
#include "QBLCore/ThreadPools/QBLStoppableGroup.hpp"
#include "QBLCore/ThreadPools/QBLSubmit.hpp"
#include "QBLCore/ThreadPools/QBLThreadPoolFixed.hpp"
#include "QBLCore/ThreadPools/QBLThreadPoolQueued.hpp"
#include "QBLCore/Threads/QBLCallableThread.hpp"
#include "QBLCore/Threads/QBLThreadManualResetEvent.hpp"

namespace {

int digit(const std::string& text) {
    if (text.size() != 1) QBL_THROW(QBLIllegalArgumentError{1, "not one digit"});
    return text[0] - '0';
}

void print(const char* name, std::future<int> result) try {
    std::printf("%s: %d\n", name, result.get());
} catch (const QBLIllegalArgumentError& e) {
    std::printf("%s: error %ld, %s\n", name, e.getErrorCode(), qblWhat(e).c_str());
} catch (...) {
    std::printf("%s: %s\n", name, qblWhat().c_str());
}

}  // namespace

int main() {
    qblCoreInitialize();
    {
        QBLThreadPoolQueued pool(2, 8);
        print("one", qblSubmit(pool, digit, "7"));
        print("two", qblSubmit(pool, digit, "77"));

        QBLThreadManualResetEvent gate;
        QBLThreadPoolFixed single(1);
        std::future<int> busy = qblSubmit(single, [&gate] { return gate.wait(), 1; });
        print("refused", qblSubmit(single, digit, "8"));
        gate.signal();
        print("busy", std::move(busy));
        print("waits", qblSubmitFor(single, QBLWaitForever, digit, "9"));

        QBLStoppableGroup group(pool);
        group.run([](const QBLStopToken& token) {
            while (!token.stop_requested()) QBLThread::yield();
        });
        QBLCallableThread stopper([&group] { group.request_stop(); });
        stopper.start();
        group.wait();
        std::printf("stopped: %d\n", group.stop_requested());
    }
    return qblCoreTerminate();
}
