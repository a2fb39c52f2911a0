#include "QBLCore/ObjectFactory/QBLObjectFactory.hpp"

#include "QBLCore/Exceptions/QBLIllegalStateError.hpp"
#include "QBLCore/ObjectFactory/QBLObjectFactoryItem.hpp"
#include "tests/support/ThrowChecks.hpp"
#include "tests/support/Workers.hpp"

namespace {

char g_id[] = "Item", g_sameText[] = "Item", g_other[] = "Other";
std::atomic<int> g_alive{0};

struct Item : QBLObjectFactoryItem {
    explicit Item(QBLObjectFactory* factory, char* id = g_id)
        : QBLObjectFactoryItem(factory), m_pId(id) {
        ++g_alive;
    }
    ~Item() override { --g_alive; }
    char* getClassId() override { return m_pId; }
    void cleanObject() override { ++cleaned; }
    static QBLObjectFactoryItem* make(QBLObjectFactory* factory) { return new Item(factory); }

    std::atomic<int> holders{0};
    int cleaned = 0;

private:
    char* m_pId;
};

QBLObjectFactoryItem* makeOther(QBLObjectFactory* factory) { return new Item(factory, g_other); }

QBLObjectFactoryItem* makeNone(QBLObjectFactory*) { return nullptr; }

QBLObjectFactoryItem* makeThroughOther(QBLObjectFactory* factory) {
    EXPECT_THROW(factory->unregisterClass(g_other), QBLThrowable)
        << "an item of this class is being created";
    return factory->createObject(g_id);
}

const char kInUse[] = "Unable to unregister the class .., some objects still in use.";
const char kNever[] = "This item type has never been registered.";

}  // namespace

TEST(QBLObjectFactoryTest, HandsOutTheItemReleasedLastAfterCleaningIt) {
    {
        QBLObjectFactory factory;
        factory.registerClass(g_id, &Item::make);
        auto* a = dynamic_cast<Item*>(factory.createObject(g_id));
        auto* b = dynamic_cast<Item*>(factory.createObject(g_id));
        a->release();
        b->release();
        b->release();
        factory.releaseObject(nullptr);
        EXPECT_EQ(b, factory.createObject(g_id));
        EXPECT_EQ(a, factory.createObject(g_id));
        EXPECT_EQ(1, a->cleaned);
        EXPECT_EQ(1, b->cleaned) << "the second release finds it free";
        QBLObjectFactoryItem* c = factory.createObject(g_id);
        EXPECT_TRUE(c != a && c != b) << "a second release does not add the item again";
        a->release();
        QBL_EXPECT_THROW(factory.unregisterClass(g_id), QBLIllegalStateError, kInUse);
        b->release();
        c->release();
        factory.unregisterClass(g_id);
        EXPECT_EQ(0, g_alive);
    }
    (new Item(nullptr))->release();
    EXPECT_EQ(0, g_alive);
}

TEST(QBLObjectFactoryTest, DistinguishesClassesByTheirPointers) {
    QBLObjectFactory factory, another;
    QBL_EXPECT_THROW(factory.createObject(g_id), QBLIllegalStateError,
                     "This classId hasn't been registered.");
    factory.registerClass(g_id, &Item::make);
    QBL_EXPECT_THROW(factory.registerClass(g_id, &Item::make), QBLIllegalStateError,
                     "This classId is already registered");
    factory.registerClass(g_sameText, &makeNone);
    EXPECT_EQ(nullptr, factory.createObject(g_sameText));
    factory.unregisterClass(g_sameText);
    QBL_EXPECT_THROW(factory.unregisterClass(g_sameText), QBLIllegalStateError,
                     "This classId hasn't been registered.");
    QBL_EXPECT_THROW(factory.registerClass(g_other, nullptr), QBLIllegalArgumentError,
                     "QBLObjectFactory::registerClass: there is no creator");

    Item unknown(&factory, g_sameText);
    QBL_EXPECT_THROW(unknown.release(), QBLIllegalStateError, kNever);
    another.registerClass(g_id, &Item::make);
    QBLObjectFactoryItem* item = factory.createObject(g_id);
    QBL_EXPECT_THROW(another.releaseObject(item), QBLIllegalStateError, kNever);
    item->release();
}

TEST(QBLObjectFactoryTest, AcceptsItemsFromAnyCreator) {
    {
        QBLObjectFactory factory;
        factory.registerClass(g_id, &Item::make);
        factory.registerClass(g_other, &makeThroughOther);
        QBLObjectFactoryItem* nested = factory.createObject(g_other);
        auto* own = new Item(nullptr);
        factory.releaseObject(own);
        EXPECT_EQ(own, factory.createObject(g_id));
        own->release();
        nested->release();
        factory.unregisterClass(g_other);
        factory.registerClass(g_other, &Item::make);
        QBLObjectFactoryItem* moved = factory.createObject(g_other);
        moved->release();
        factory.unregisterClass(g_other);
        EXPECT_EQ(moved, factory.createObject(g_id)) << "released to the class that the item names";
        moved->release();
        factory.unregisterClass(g_id);
        EXPECT_EQ(0, g_alive);
    }
    QBLObjectFactoryItem* survivor = nullptr;
    {
        QBLObjectFactory factory;
        factory.registerClass(g_id, &Item::make);
        survivor = factory.createObject(g_id);
        factory.createObject(g_id)->release();
    }
    EXPECT_EQ(1, g_alive);
    survivor->release();
    EXPECT_EQ(0, g_alive) << "an item whose factory is gone deletes itself";
}

TEST(QBLObjectFactoryTest, ServesThreadsThatRegisterCreateAndRelease) {
    QBLObjectFactory factory;
    std::atomic<int> shared{0}, uses{0};
    // The threads sometimes unregister a class. If createObject() fails for this reason, the thread
    // registers the class again.
    const auto use = [&](char* id, QBLObjectFactory::Creator make) {
        try {
            auto* item = static_cast<Item*>(factory.createObject(id));
            if (++item->holders != 1 || item->getClassId() != id) ++shared;
            --item->holders;
            item->release();
            if (++uses % 50 == 0) factory.unregisterClass(id);
        } catch (const QBLIllegalStateError&) {
            try {
                factory.registerClass(id, make);
            } catch (const QBLIllegalStateError&) {  // another thread was first
            }
        }
    };
    Workers(4, [&] {
        for (int i = 0; i < 2000; ++i) {
            use(g_id, &Item::make);
            use(g_other, &makeOther);
        }
    }).join();
    EXPECT_EQ(0, shared);
}
