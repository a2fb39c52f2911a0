// A server that finishes its request and stops in order when SIGTERM or SIGINT arrives.
#include <unistd.h>

#include <atomic>
#include <cstdio>
#include <cstring>

#include "QBLCore/Frame/QBLCore.h"
#include "QBLCore/Threads/QBLSignalWaiter.hpp"
#include "QBLCore/Threads/QBLThread.hpp"

namespace {

class Server : public QBLThreadRunnable {
public:
    void stop() { m_bStop = true; }

    void run() override {
        for (int request = 1; !m_bStop; ++request) {
            if (request > 3) continue;  // this client sends three requests
            std::printf("request %d\n", request);
            if (request == 3) kill(getpid(), SIGTERM);  // as the command kill(1) does
        }
        std::printf("all requests are finished\n");
    }

private:
    std::atomic<bool> m_bStop{false};
};

}  // namespace

int main() {
    QBLSignalWaiter signals({SIGTERM, SIGINT});  // first: all threads inherit the blocked signals
    qblCoreInitialize();
    Server server;
    QBLThread thread(&server);
    thread.start();
    int signal = 0;
    while ((signal = signals.timedWait(1000)) == 0) {
        // Nothing arrived for a second: here a server writes its statistics.
    }
    std::printf("%s: stop\n", strsignal(signal));
    server.stop();
    thread.join();
    return qblCoreTerminate();
}
