// Shows that starts and stops are counted, and when the custodian calls a task.
#include <cstdio>

#include "QBLCore/Exceptions/QBLThrowable.hpp"
#include "QBLCore/Frame/QBLCore.h"
#include "QBLCore/QBLCustodian/QBLCustodian.hpp"
#include "QBLCore/Threads/QBLThreadGuard.hpp"
#include "QBLCore/Threads/QBLThreadManualResetEvent.hpp"
#include "QBLCore/Threads/QBLThreadMutex.hpp"

namespace {

class Housekeeping : public QBLCustodianTask {
public:
    int doIt(int terminating) override {
        if (terminating != 0) std::printf("last pass\n");
        m_called.signal();
        return 0;  // stay registered
    }
    void wait() { m_called.wait(); }

private:
    QBLThreadManualResetEvent m_called;
};

Housekeeping g_housekeeping;  // constructed before `g_late`, so destroyed after it

/// The destructor runs after main; it uses the library and stops it.
struct Late {
    QBLThreadMutex mutex;
    ~Late() {
        QBLThreadGuard guard(mutex);
        std::printf("second stop: %d\n", qblCoreTerminate());
        std::printf("third stop: %d\n", qblCoreTerminate());
    }
} g_late;

void tryThread() {
    QBLThread thread;
    try {
        thread.start();
        std::printf("a thread starts\n");
    } catch (QBLThrowable& error) {
        const char* const what = error.getMessage();  // null if there is no text
        std::printf("%s: %s\n", error.getThrowableName(), what != nullptr ? what : "no text");
    }
}

}  // namespace

int main() {
    tryThread();
    std::printf("registered: %d\n", QBLCustodian::registerTask(&g_housekeeping));
    std::printf("time between passes: %lu ms\n", QBLCustodian::setSchedule(10));
    std::printf("start: %d, and again: %d\n", qblCoreInitialize(), qblCoreInitialize());
    tryThread();
    std::printf("registered: %d\n", QBLCustodian::registerTask(&g_housekeeping));
    g_housekeeping.wait();
    std::printf("first stop: %d\n", qblCoreTerminate());
}
