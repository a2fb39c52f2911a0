// Ends each callback of the library by an exception and by pthread_exit, and checks what comes of
// it, that the operation works afterwards, and that nothing is lost.
#include <gtest/gtest.h>
#include <pthread.h>

#include <memory>
#include <thread>

#include "tests/faults/Rows.hpp"
#include "tests/support/Library.hpp"

namespace {

struct UserError {};

/// What callbacks do; null does nothing.
void (*g_end)() = nullptr;
void end() {
    if (g_end != nullptr) g_end();
}
void throwError() { throw UserError(); }
void exitThread() { pthread_exit(nullptr); }

/// A value whose copy constructor is a callback.
struct Value {
    explicit Value(int i) : text(std::to_string(i) + " is longer than the room inside a string") {}
    Value(const Value& other) : text(other.text) { end(); }
    Value& operator=(const Value& other) = default;
    Value() = default;
    std::string text;
};

std::string print(const QBLList<Value>& list) {
    std::string all;
    for (const Value& value : list) all += value.text + ",";
    return all;
}

template <class Change>
void changeList(Change change) {
    QBLList<Value> list;
    for (int i = 0; i < 3; ++i) list.emplace_back(i);
    fault::changed(list, print, change);
}

char g_class[] = "class";
bool g_endsInCreator = false;

class Item : public QBLObjectFactoryItem {
public:
    explicit Item(QBLObjectFactory* factory) : QBLObjectFactoryItem(factory) {}
    char* getClassId() override { return g_class; }
    void cleanObject() override {
        if (!g_endsInCreator && cleans) end();
    }
    static QBLObjectFactoryItem* make(QBLObjectFactory* factory) {
        auto item = std::make_unique<Item>(factory);
        if (g_endsInCreator) end();
        return item.release();
    }
    bool cleans = true;
};

void createItem(bool endsInCreator) {
    g_endsInCreator = endsInCreator;
    QBLObjectFactory factory;
    factory.registerClass(g_class, &Item::make);
    const auto again = [](Item* item) {  // a failed release() may be repeated
        item->cleans = false;
        item->release();
    };
    const std::unique_ptr<Item, decltype(again)> item(
        static_cast<Item*>(factory.createObject(g_class)), again);
    item->release();
}

char* allocate(void* /*context*/, char* block, int size, int* error) {
    end();
    return I18N_STRINGBUFFER_ALLOCATOR_CALLBACK(nullptr, block, size, error);
}

struct Listener : I18NTextStreamListener {
    void unconvertible(const I18NUnconvertible& /*what*/) override { end(); }
};

std::string resultOf(void (*run)(), void (*how)()) {
    g_end = how;
    std::string result = "ended";
    std::thread([&] {
        try {
            run();
            result = "done";
        } catch (const UserError&) {
            result = "passed";
        } catch (const fault::Broken& broken) {
            result = broken.what;
        } catch (const QBLThrowable& error) {
            result = error.getThrowableName();
        }
    }).join();
    g_end = nullptr;
    return result;
}

/// Runs an operation whose callbacks end in each way, and afterwards in the usual way.
/// @param thrown,exited  the results; "passed" and "ended" mean that it leaves run()
void check(const char* name, const char* thrown, const char* exited, void (*run)()) {
    for (void (*const how)() : {&throwError, &exitThread}) {
        const bool throws = how == &throwError;
        SCOPED_TRACE(testing::Message() << name << (throws ? " throws" : " exits"));
        long live[4] = {};
        for (long& blocks : live) {
            EXPECT_EQ(throws ? thrown : exited, resultOf(run, how));
            EXPECT_EQ("done", resultOf(run, nullptr));
            blocks = fault::liveBlocks();
            if (testing::Test::HasFailure()) return;
        }
        EXPECT_FALSE(live[0] < live[1] && live[1] < live[2] && live[2] < live[3])
            << "lost blocks: " << live[3] - live[0] << " in three runs";
    }
}

}  // namespace

TEST(Callbacks, EndByExceptionOrThreadExit) {
    ASSERT_EQ(0, qblCoreInitialize());
    check("QBLList.push_back", "passed", "ended", [] {
        const Value value(7);
        changeList([&](QBLList<Value>& list) { list.push_back(value); });
    });
    check("QBLList.insert", "passed", "ended", [] {
        const Value value(7);
        changeList([&](QBLList<Value>& list) { list.insert(++list.begin(), value); });
    });
    check("QBLList.assign", "passed", "ended", [] {
        const Value values[] = {Value(7), Value(8)};
        changeList([&](QBLList<Value>& list) { list.assign(values, values + 2); });
    });
    check("QBLObjectFactory.creator", "passed", "ended", [] { createItem(true); });
    check("QBLObjectFactory.cleanObject", "passed", "ended", [] { createItem(false); });
    check("I18NStringAllocator", "QBLUnknownError", "ended", [] {
        const I18NConverter converter("UTF-8");
        std::unique_ptr<char, decltype(&std::free)> owner(nullptr, &std::free);
        char* bytes = nullptr;
        int size = 0;
        converter.fromUnicode(&bytes, &size, u"text", &allocate);
        owner.reset(bytes);
    });
    check("I18NTextStreamListener", "passed", "ended", [] {
        const I18NConverter ascii("US-ASCII"), utf8("UTF-8");
        Listener listener;
        I18NTextStream stream(&utf8, &ascii, I18N_MARK_KEEP, &listener);
        stream.put("a\u65E5", 4);
        stream.finish();
    });
    check("QBLPluginLibraryLoader.initialize", "passed", "ended", [] {
        QBLPluginLibraryLoader::initialize(nullptr, &end);
        QBLPluginLibraryLoader::terminate(nullptr, &end);
    });
    check("QBLThread.atExit", "done", "done", [] {
        QBLCallableThread thread([] { QBLThread::atExit(&end, 1); });
        thread.start();
        thread.join();
    });
    check("QBLTaskGroup", "QBLUnknownError", "done", [] {
        QBLThreadPoolQueued pool(2, 8);
        QBLTaskGroup group(pool);
        for (int i = 0; i < 3; ++i) group.run(&end);
        group.wait();
    });
    check("qblSubmit.callable", "QBLUnknownError", "ended", [] {
        QBLThreadPoolQueued pool(1, 8);
        const auto task = [value = Value(7)] { return value.text.size(); };
        qblSubmit(pool, task).get();
    });
    check("qblSubmit.result", "passed", "QBLThreadResourceError", [] {
        QBLThreadPoolQueued pool(1, 8);
        qblSubmit(pool, [value = std::make_shared<Value>(7)] { return *value; }).get();
    });
    check("QBLTaskGroup.callable", "QBLUnknownError", "ended", [] {
        QBLThreadPoolQueued pool(1, 8);
        QBLTaskGroup group(pool);
        const auto task = [value = Value(7)] { static_cast<void>(value); };
        group.run(task);
        group.wait();
    });
    check("I18NUserOutputCallback", "I18NRuntimeError", "ended", [] {
        I18NConverter ascii("US-ASCII");
        ascii.setUserDefinedUnconvertibleOutputSequenceCallback(
            [](wchar_t, const char*, char* bytes, int* count, I18NErrorCodes*) {
                end();
                bytes[0] = '?';
                *count = 1;
            });
        char bytes[8];
        ascii.fromUnicode(bytes, sizeof bytes, u"a\u65E5");
        if (std::string(bytes) != "a?") throw fault::Broken{bytes};
    });
    EXPECT_EQ(0, qblCoreTerminate());
}
