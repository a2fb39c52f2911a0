#include "QBLCore/ThreadPools/QBLSentinelQueue.hpp"

#include "bench/support/Bench.hpp"

#ifdef BENCH_HAVE_POCO
#include <Poco/Notification.h>
#include <Poco/NotificationQueue.h>
#endif

namespace {

// One thread puts a pointer into the queue and takes it out again. The thread never waits.
struct Item {
    int value = 7;
};

class Ours {
public:
    bool pass(int& out) {
        Item* item = &m_item;
        if (!m_queue.put(item, 0) || !m_queue.get(item, 0)) return false;
        out = item->value;
        return true;
    }

private:
    Item m_item;
    QBLSentinelQueue<Item*> m_queue;
};

#ifdef BENCH_HAVE_POCO
class Peer {
public:
    bool pass(int& out) {
        m_queue.enqueueNotification(m_item);
        const Poco::AutoPtr<Poco::Notification> got(m_queue.dequeueNotification());
        if (got.isNull()) return false;
        out = static_cast<const PeerItem*>(got.get())->value;
        return true;
    }

private:
    struct PeerItem : Poco::Notification, Item {};
    Poco::AutoPtr<PeerItem> m_item{new PeerItem};
    Poco::NotificationQueue m_queue;
};

const OutputCheck check("QBLSentinelQueue", [] {
    Ours ours;
    Peer peer;
    int a = 0, b = 0;
    return ours.pass(a) && peer.pass(b) && a == 7 && b == 7;
});
#endif

template <class Queue>
void putGet(benchmark::State& state) {
    Queue queue;
    int out = 0;
    for (auto _ : state) {
        if (!queue.pass(out)) state.SkipWithError("an item was lost");
        benchmark::DoNotOptimize(out);
    }
}

BENCHMARK_TEMPLATE(putGet, Ours)->Name("BM_QBLSentinelQueue_putGet");
#ifdef BENCH_HAVE_POCO
BENCHMARK_TEMPLATE(putGet, Peer)->Name("BM_PocoNotificationQueue_putGet");
#endif

}  // namespace
