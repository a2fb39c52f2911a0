#include "QBLCore/ObjectFactory/QBLObjectFactory.hpp"

#include "QBLCore/ObjectFactory/QBLObjectFactoryItem.hpp"
#include "bench/support/Bench.hpp"

#ifdef BENCH_HAVE_POCO
#include <Poco/ObjectPool.h>
#endif

namespace {

/// Creates and releases an item. The factory always reuses a free item.
class Ours {
public:
    Ours() { m_factory.registerClass(s_id, &Item::make); }
    int createAndRelease() {
        auto* item = static_cast<Item*>(m_factory.createObject(s_id));
        const int uses = ++item->uses;
        item->release();
        return uses;
    }

private:
    class Item : public QBLObjectFactoryItem {
    public:
        explicit Item(QBLObjectFactory* factory) : QBLObjectFactoryItem(factory) {}
        char* getClassId() override { return s_id; }
        static QBLObjectFactoryItem* make(QBLObjectFactory* factory) { return new Item(factory); }

        int uses = 0;
    };

    static char s_id[];
    QBLObjectFactory m_factory;
};

char Ours::s_id[] = "Item";

#ifdef BENCH_HAVE_POCO
class Peer {
public:
    int createAndRelease() {
        Item* item = m_pool.borrowObject();
        const int uses = ++item->uses;
        m_pool.returnObject(item);
        return uses;
    }

private:
    struct Item {
        virtual ~Item() = default;
        int uses = 0;
    };

    Poco::ObjectPool<Item> m_pool{16, 16};
};

const OutputCheck check("QBLObjectFactory", [] {
    Ours ours;
    Peer peer;
    ours.createAndRelease();
    peer.createAndRelease();
    return ours.createAndRelease() == 2 && peer.createAndRelease() == 2;
});
#endif

template <class Side>
void createRelease(benchmark::State& state) {
    Side side;
    for (auto _ : state) benchmark::DoNotOptimize(side.createAndRelease());
}

BENCHMARK_TEMPLATE(createRelease, Ours)->Name("BM_QBLObjectFactory_createRelease");
#ifdef BENCH_HAVE_POCO
BENCHMARK_TEMPLATE(createRelease, Peer)->Name("BM_PocoObjectPool_borrowReturn");
#endif

}  // namespace
