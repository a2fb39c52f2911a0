// Ends each callback of the library by an exception and by pthread_exit, and checks what comes of
// it, that the operation works afterwards, and that nothing is lost.
#include <gtest/gtest.h>
#include <pthread.h>

#include <memory>

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

const struct {
    const char* name;
    void (*run)();
    const char *thrown, *exited;  // the results; "passed" and "ended" mean that it leaves run()
} kTable[] = {
    {"QBLList.push_back",
     [] {
         const Value value(7);
         changeList([&](QBLList<Value>& list) { list.push_back(value); });
     },
     "passed", "ended"},
    {"QBLList.insert",
     [] {
         const Value value(7);
         changeList([&](QBLList<Value>& list) { list.insert(++list.begin(), value); });
     },
     "passed", "ended"},
    {"QBLList.assign",
     [] {
         const Value values[] = {Value(7), Value(8)};
         changeList([&](QBLList<Value>& list) { list.assign(values, values + 2); });
     },
     "passed", "ended"},
    {"QBLObjectFactory.creator", [] { createItem(true); }, "passed", "ended"},
    {"QBLObjectFactory.cleanObject", [] { createItem(false); }, "passed", "ended"},
    {"I18NStringAllocator",
     [] {
         const I18NConverter converter("UTF-8");
         std::unique_ptr<char, decltype(&std::free)> owner(nullptr, &std::free);
         char* bytes = nullptr;
         int size = 0;
         converter.fromUnicode(&bytes, &size, u"text", &allocate);
         owner.reset(bytes);
     },
     "QBLUnknownError", "ended"},
    {"I18NTextStreamListener",
     [] {
         const I18NConverter ascii("US-ASCII"), utf8("UTF-8");
         Listener listener;
         I18NTextStream stream(&utf8, &ascii, I18N_MARK_KEEP, &listener);
         stream.put("a\u65E5", 4);
         stream.finish();
     },
     "passed", "ended"},
    {"QBLPluginLibraryLoader.initialize",
     [] {
         QBLPluginLibraryLoader::initialize(nullptr, &end);
         QBLPluginLibraryLoader::terminate(nullptr, &end);
     },
     "passed", "ended"},
    {"QBLThread.atExit",
     [] {
         QBLCallableThread thread([] { QBLThread::atExit(&end, 1); });
         thread.start();
         thread.join();
     },
     "done", "done"},
    {"QBLTaskGroup",
     [] {
         QBLThreadPoolQueued pool(2, 8);
         QBLTaskGroup group(pool);
         for (int i = 0; i < 3; ++i) group.run(&end);
         group.wait();
     },
     "QBLUnknownError", "done"},
    {"qblSubmit.callable",
     [] {
         QBLThreadPoolQueued pool(1, 8);
         const auto task = [value = Value(7)] { return value.text.size(); };
         qblSubmit(pool, task).get();
     },
     "QBLUnknownError", "ended"},
    {"qblSubmit.result",
     [] {
         QBLThreadPoolQueued pool(1, 8);
         qblSubmit(pool, [value = std::make_shared<Value>(7)] { return *value; }).get();
     },
     "passed", "QBLThreadResourceError"},
    {"QBLTaskGroup.callable",
     [] {
         QBLThreadPoolQueued pool(1, 8);
         QBLTaskGroup group(pool);
         const auto task = [value = Value(7)] { static_cast<void>(value); };
         group.run(task);
         group.wait();
     },
     "QBLUnknownError", "ended"},
    {"I18NUserOutputCallback",
     [] {
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
     },
     "I18NRuntimeError", "ended"},
};

struct Job {
    void (*run)();
    std::string result = "ended";

    static void* start(void* given) {
        Job& job = *static_cast<Job*>(given);
        try {
            job.run();
            job.result = "done";
        } catch (const UserError&) {
            job.result = "passed";
        } catch (const fault::Broken& broken) {
            job.result = broken.what;
        } catch (const QBLThrowable& error) {
            job.result = error.getThrowableName();
        }
        return nullptr;
    }
};

std::string resultOf(void (*run)(), void (*how)()) {
    g_end = how;
    Job job{run};
    pthread_t thread;
    if (pthread_create(&thread, nullptr, &Job::start, &job) != 0) return "no thread";
    pthread_join(thread, nullptr);
    g_end = nullptr;
    return job.result;
}

}  // namespace

TEST(Callbacks, EndByExceptionOrThreadExit) {
    ASSERT_EQ(0, qblCoreInitialize());
    for (const auto& row : kTable)
        for (void (*const how)() : {&throwError, &exitThread}) {
            const bool throws = how == &throwError;
            SCOPED_TRACE(testing::Message() << row.name << (throws ? " throws" : " exits"));
            long live[4] = {};
            for (long& blocks : live) {
                EXPECT_EQ(throws ? row.thrown : row.exited, resultOf(row.run, how));
                EXPECT_EQ("done", resultOf(row.run, nullptr));
                blocks = fault::liveBlocks();
                if (HasFailure()) return;
            }
            EXPECT_FALSE(live[0] < live[1] && live[1] < live[2] && live[2] < live[3])
                << "lost blocks: " << live[3] - live[0] << " in three runs";
        }
    EXPECT_EQ(0, qblCoreTerminate());
}
