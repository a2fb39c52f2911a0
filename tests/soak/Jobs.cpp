// The jobs: locks, threads, cancellations, pools, the custodian, the factory, strings, converters,
// messages, errors, files and plug-ins.
#include <pthread.h>

#include <atomic>
#include <thread>

#include "examples/plugin/Faults.hpp"
#include "tests/soak/Soak.hpp"
#include "tests/support/BmfFile.hpp"

namespace soak {
namespace {

constexpr int kPermits = 4;
const char* const kEncodings[] = {"UTF-8",       "UTF-16LE", "Shift_JIS", "EUC-JP",
                                  "ISO-2022-JP", "GB18030",  "UTF-7",     "UTF-32BE"};
const char kText[] = "Text \u65E5\u672C\u8A9E, \u3053\u3093\u306B\u3061\u306F";
struct Language {
    const char *locale, *suffix, *pattern, *shown;
};
const Language kLanguages[] = {
    {"en", "_en", "{0} of {1,number} files", "x of 12,345 files"},
    {"de", "_de", "{0} von {1,number} Dateien", "x von 12.345 Dateien"},
    {"fr", "_fr", "{0} sur {1,number} fichiers", "x sur 12\u202F345 fichiers"},
    {"ja", "_ja", "{1,number} \u500B\u4E2D {0}", "12,345 \u500B\u4E2D x"},
};

/// Writes a file that other threads may be reading, so that they see all of it or the old one.
void put(const std::string& path, const std::string& bytes) {
    QBLFmReplaceFile file;
    need(file.open(path.c_str()) && file.write(bytes.data(), bytes.size()) && file.commit(),
         "a file cannot be replaced");
}
void putTexts(const Language& language) {
    put(directory() + "/texts" + language.suffix + ".bmf", bmfBytes({{1, language.pattern}}));
}

template <class Lock>
struct Guarded {
    Lock lock;
    long a = 0, b = 0;  // equal whenever nobody holds the lock for writing

    /// Changes the two numbers, which no other holder may see unequal.
    void change(Random& random) {
        const unsigned way = random.below(3);
        if (way == 0) lock.lock();
        if (way == 1 && lock.tryLock() == 0) return;
        if (way == 2 && !lock.boundedLock(random.below(3))) return;
        need(a == b, "a lock admits two threads");
        ++a;
        if (random.oneOf(4)) std::this_thread::yield();
        ++b;
        lock.unlock();
    }
};

char g_shared[] = "shared";

class Item : public QBLObjectFactoryItem {
public:
    explicit Item(QBLObjectFactory* factory) : QBLObjectFactoryItem(factory) {}
    char* getClassId() override { return g_shared; }
    static QBLObjectFactoryItem* make(QBLObjectFactory* factory) { return new Item(factory); }
    std::atomic<int> users{0};
};

struct Shared {
    I18NString text{std::string(kText)};
    std::string catalogue = directory() + "/texts";
    QBLThreadMutex pluginLock;
    Guarded<QBLThreadMutex> mutex;
    Guarded<QBLThreadRecursiveMutex> recursiveMutex;
    Guarded<QBLThreadCriticalSection> section;
    Guarded<QBLThreadRecursiveCriticalSection> recursiveSection;
    Guarded<QBLThreadRWLock> rw;
    QBLThreadSemaphore permits{kPermits};
    std::atomic<int> inside{0};
    QBLThreadMutex waitLock;
    QBLThreadConditionVariable changed;
    long turns = 0;  // guarded by waitLock
    QBLThreadAutoResetEvent one{0};
    QBLThreadManualResetEvent all{0};
    QBLObjectFactory factory;
    QBLThreadPoolQueued pool{3, 5};

    Shared() {
        factory.registerClass(g_shared, &Item::make);
        for (const Language& language : kLanguages) putTexts(language);
    }
    ~Shared() {
        need(mutex.a == mutex.b && rw.a == rw.b && inside == 0, "a round ends inside a lock");
        factory.unregisterClass(g_shared);
    }
};
Shared* g_pAll;

void locks(Random& random) {
    for (int i = 0; i < 20; ++i) {
        g_pAll->mutex.change(random);
        g_pAll->recursiveMutex.change(random);
        g_pAll->section.change(random);
        g_pAll->recursiveSection.change(random);
    }
}

void readers(Random& random) {
    auto& rw = g_pAll->rw;
    for (int i = 0; i < 20; ++i) {
        if (random.oneOf(8)) rw.change(random);
        if (random.oneOf(2))
            rw.lock.readLock();
        else if (!rw.lock.boundedReadLock(random.below(2)))
            continue;
        need(rw.a == rw.b, "a reader sees a writer's work");
        rw.lock.unlock();
    }
}

void signals(Random& random) {
    if (g_pAll->permits.boundedWait(random.below(3))) {
        need(++g_pAll->inside <= kPermits, "a semaphore admits too many");
        --g_pAll->inside;
        g_pAll->permits.post();
    }
    g_pAll->waitLock.lock();
    const long before = g_pAll->turns;
    if (random.oneOf(2)) {
        ++g_pAll->turns;
        random.oneOf(2) ? g_pAll->changed.signal() : g_pAll->changed.broadcast();
    } else {
        static_cast<void>(g_pAll->changed.timedWait(g_pAll->waitLock, 1UL + random.below(2)));
    }
    need(g_pAll->turns >= before, "the lock of a condition does not exclude");
    g_pAll->waitLock.unlock();
    g_pAll->one.signal();
    static_cast<void>(g_pAll->one.timedWait(random.below(2)));
    g_pAll->all.signal();
    static_cast<void>(g_pAll->all.timedWait(random.below(2)));
}

void threads(Random& random) {
    std::atomic<int> done{0};
    QBLThreadSemaphore never(0);
    QBLCallableThread worker([&done] { ++done; });
    worker.start();
    // A thread that waits in the library until it is cancelled.
    std::thread waiting([&never, which = random.below(3)] {
        QBLThreadManualResetEvent event(0);
        QBLThreadMutex lock;
        QBLThreadConditionVariable condition;
        if (which == 0) never.wait();
        if (which == 1) event.wait();
        const QBLThreadGuard guard(lock);
        for (;;) condition.wait(lock);
    });
    pthread_cancel(waiting.native_handle());
    waiting.join();
    worker.join();
    need(done == 1, "a thread has not run");
}

template <class Pool, class... Arguments>
void useAndDestroy(Random& random, Arguments... arguments) {
    Pool pool(arguments...);
    std::atomic<unsigned> done{0};
    const unsigned count = random.below(20);
    {
        QBLTaskGroup group(pool);
        for (unsigned i = 0; i < count; ++i) group.run([&done] { ++done; });
        group.run([] { QBL_THROW(QBLIllegalStateError(17, "as agreed")); });
        try {
            group.wait();
            need(false, "a group loses an error");
        } catch (const QBLIllegalStateError& error) {
            need(error.getErrorCode() == 17, "a group changes an error");
        }
    }
    need(done == count, "a group loses a task");
    if (random.oneOf(2))
        need(qblSubmitFor(pool, QBLWaitForever, [] { return 7; }).get() == 7,
             "a future has another result");
    if (random.oneOf(3)) pool.setStopWork(1);
}

void pools(Random& random) {
    const unsigned kind = random.below(3), count = 1 + random.below(3), rest = random.below(4);
    if (kind == 0) useAndDestroy<QBLThreadPoolFixed>(random, count);
    if (kind == 1) useAndDestroy<QBLThreadPoolQueued>(random, count, rest);
    if (kind == 2) useAndDestroy<QBLThreadPoolVariable>(random, rest % 2, count, random.below(3));
}

void sharedPool(Random& random) {
    std::atomic<unsigned> done{0};
    const unsigned count = random.below(30);
    QBLTaskGroup group(g_pAll->pool);
    for (unsigned i = 0; i < count; ++i) group.run([&done] { ++done; });
    // Its worker gets another thread.
    static_cast<void>(qblSubmitFor(g_pAll->pool, 50, [] { pthread_exit(nullptr); }));
    group.wait();
    need(done == count, "the shared pool loses a task");
}

class Chore : public QBLCustodianTask {
public:
    int doIt(int /*terminating*/) override {
        need(registered, "the custodian calls a task that has left");
        return 0;
    }
    std::atomic<bool> registered{true};
};

void custodian(Random& random) {
    Chore chore;
    need(QBLCustodian::registerTask(&chore), "the custodian refuses a task");
    if (random.oneOf(2)) std::this_thread::yield();
    QBLCustodian::deRegisterTask(&chore);
    chore.registered = false;
}

void factory(Random& random) {
    QBLObjectFactory& factory = g_pAll->factory;
    Item* items[4] = {};
    for (Item*& item : items) {
        item = static_cast<Item*>(factory.createObject(g_shared));
        need(item != nullptr && ++item->users == 1, "an item has two owners");
    }
    if (random.oneOf(8)) factory.clearLists();
    for (Item* item : items) {
        --item->users;
        item->release();
    }
    char id[] = "own";
    factory.registerClass(id, &Item::make);
    factory.unregisterClass(id);
}

std::string numbered(Random& random) { return "text " + std::to_string(random.below(500)); }

void strings(Random& random) {
    const char* const encoding = random.of(kEncodings);
    int length = 0;
    const char* const bytes = g_pAll->text.c_str(encoding, &length);
    I18NString copy;
    const I18NConverter converter(encoding);
    converter.toUnicode(copy, bytes, length - converter.sizeofLegacyNull());
    need(copy == g_pAll->text, "a shared string changes");
    copy = g_pAll->text;
    copy.append(kText);
    need(copy.length() == 2 * g_pAll->text.length(), "a copy changes");
}

void pooledStrings(Random& random) {
    const std::string text = numbered(random);
    const I18NPooledString one(text.c_str());
    I18NPooledString other(numbered(random).c_str());
    if (random.oneOf(10)) I18NPooledString::purge();
    other = one;
    need(other == one && one.getString().toUtf8() == text, "a pooled text changes");
    need(&one.getString() == &I18NPooledString(text.c_str()).getString(),
         "a pool has a text twice");
}

void messages(Random& random) {
    const auto& language = random.of(kLanguages);
    if (random.oneOf(10)) putTexts(language);
    QBLMessage message(g_pAll->catalogue.c_str(), 1);
    message << "x" << 12345;
    I18NString text;
    message.format(language.locale, nullptr, text);
    need(text.toUtf8() == language.shown, "a message has another text");
}

void files(Random& random) {
    std::string path, folder;
    need(QBLFmDir::createTempDir(directory().c_str(), "d", folder, nullptr) &&
             QBLFmDir::createTempFile(folder.c_str(), "f", path, ".x"),
         "no temporary file");
    const std::string text(random.below(10000), 'x');
    put(path, text);
    {
        QBLFmFile file;
        need(file.open(path.c_str(), QBLFmFile::existing, 0), "a file does not open");
        QBLFileLockRW lock(file);
        need(lock.boundedLock(1000), "a file is locked");
        std::string read(text.size() + 1, '\0');
        need(file.read(&read[0], read.size()) == static_cast<long>(text.size()), "a file is short");
        lock.unlock();
        need(random.oneOf(2) || file.close(), "a file does not close");
    }
    int entries = 0;
    for (const QBLFmEntry& entry : QBLFmEntries(folder)) entries += entry.getErrorNumber() == 0;
    need(entries == 1, "a folder has other entries");
    need(QBLFmDir::removeDir(folder.c_str()), "a folder stays");
}

void plugIns(Random& /*random*/) {
    const QBLPlugin plugin(PLUGIN_FILE);
    const QBLThreadGuard guard(g_pAll->pluginLock);  // for the data of the plug-in
    plugin.entry<void()>("faultsInitialize")();
    try {
        plugin.entry<void(PluginFault)>("faultsThrow")(kQBLRuntimeError);
        need(false, "an error of a plug-in is lost");
    } catch (const QBLRuntimeError&) {
    }
}

}  // namespace

const std::vector<Job> kJobs{
    {"threads", true, threads},
    {"pools", true, pools},
    {"custodian", true, custodian},
    {"pooled strings", true, pooledStrings},
    {"files", true, files},
    {"locks", false, locks},
    {"readers", false, readers},
    {"signals", false, signals},
    {"shared pool", false, sharedPool},
    {"factory", false, factory},
    {"strings", false, strings},
    {"messages", false, messages},
    {"plug-ins", false, plugIns},
};

std::shared_ptr<void> share() {
    const auto all = std::make_shared<Shared>();
    g_pAll = all.get();
    return all;
}

}  // namespace soak
