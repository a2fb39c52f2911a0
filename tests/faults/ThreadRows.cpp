#include <atomic>
#include <memory>
#include <string>

#include "QBLCore/Frame/QBLCore.h"
#include "QBLCore/Frame/QBLList.hpp"
#include "QBLCore/ObjectFactory/QBLObjectFactory.hpp"
#include "QBLCore/ObjectFactory/QBLObjectFactoryItem.hpp"
#include "QBLCore/QBLCustodian/QBLCustodian.hpp"
#include "QBLCore/ThreadPools/QBLExecute.hpp"
#include "QBLCore/ThreadPools/QBLSubmit.hpp"
#include "QBLCore/ThreadPools/QBLTaskGroup.hpp"
#include "QBLCore/ThreadPools/QBLThreadPoolFixed.hpp"
#include "QBLCore/ThreadPools/QBLThreadPoolQueued.hpp"
#include "QBLCore/ThreadPools/QBLThreadPoolVariable.hpp"
#include "QBLCore/Threads/QBLCallableThread.hpp"
#include "QBLCore/Threads/QBLThread.hpp"
#include "QBLCore/Threads/QBLThreadAutoResetEvent.hpp"
#include "QBLCore/Threads/QBLThreadConditionVariable.hpp"
#include "QBLCore/Threads/QBLThreadCriticalSection.hpp"
#include "QBLCore/Threads/QBLThreadGuard.hpp"
#include "QBLCore/Threads/QBLThreadKey.hpp"
#include "QBLCore/Threads/QBLThreadManualResetEvent.hpp"
#include "QBLCore/Threads/QBLThreadMutex.hpp"
#include "QBLCore/Threads/QBLThreadRWLock.hpp"
#include "QBLCore/Threads/QBLThreadRecursiveCriticalSection.hpp"
#include "QBLCore/Threads/QBLThreadRecursiveMutex.hpp"
#include "QBLCore/Threads/QBLThreadSemaphore.hpp"
#include "QBLCore/Types/QBLByteBuffer.hpp"
#include "QBLCore/Types/QBLVariant.hpp"
#include "QBLCore/Utility/QBLBase64.hpp"
#include "QBLCore/Utility/QBLMiniLogger.hpp"
#include "QBLCore/Utility/QBLSquisher.hpp"
#include "QBLCore/Utility/QBLUtStrTok.hpp"
#include "QBLCore/Utility/QBLUtSystemInfo.hpp"
#include "tests/faults/Rows.hpp"

namespace {

using faults::calmly;
using faults::changed;
using faults::kBadAlloc;
using faults::kNothing;
using faults::kOther;
using faults::kOutOfMemory;
using faults::kRefuses;
using faults::kThreadResource;
using faults::need;

constexpr unsigned kThread = kOutOfMemory | kThreadResource;

void start() {
    static const bool kStarted = calmly([] { return qblCoreInitialize() == 0; });
    if (!kStarted) throw faults::Broken{"not started"};
}

/// Makes a lock, and locks and unlocks it in each way that it has.
template <class Lock>
std::string locked() {
    start();  // a lock that records its holder needs it
    Lock lock(1);
    lock.lock();
    lock.unlock();
    need(lock.tryLock() != 0);
    lock.unlock();
    need(lock.boundedLock(1));
    lock.unlock();
    return std::string();
}

template <class Pool, class Make>
void addPool(const char* name, Make make) {
    const std::string prefix(name);
    faults::rows().push_back({prefix + ".make", kThread | kBadAlloc, [make] {
                                  start();
                                  make();
                                  return std::string();
                              }});
    faults::rows().push_back({prefix + ".group", kThread, [make] {
                                  start();
                                  const std::unique_ptr<Pool> pool = calmly(make);
                                  std::atomic<int> count{0};
                                  QBLTaskGroup group(*pool);
                                  for (int i = 0; i < 4; ++i) group.run([&count] { ++count; });
                                  group.wait();
                                  return calmly([&] { return std::to_string(count); });
                              }});
    faults::rows().push_back({prefix + ".submit", kThread | kBadAlloc, [make] {
                                  start();
                                  const std::unique_ptr<Pool> pool = calmly(make);
                                  auto future = qblSubmit(*pool, [] { return 7; });
                                  const int result = future.get();
                                  return calmly([=] { return std::to_string(result); });
                              }});
}

const bool kPools = [] {
    addPool<QBLThreadPoolFixed>("QBLThreadPoolFixed",
                                [] { return std::make_unique<QBLThreadPoolFixed>(2); });
    addPool<QBLThreadPoolQueued>("QBLThreadPoolQueued",
                                 [] { return std::make_unique<QBLThreadPoolQueued>(2, 8, 1); });
    addPool<QBLThreadPoolVariable>(
        "QBLThreadPoolVariable", [] { return std::make_unique<QBLThreadPoolVariable>(1, 3, 100); });
    return true;
}();

std::string print(const QBLByteBuffer& buffer) { return std::string(buffer.data(), buffer.size()); }

std::string changedBuffer(void (*change)(QBLByteBuffer&)) {
    QBLByteBuffer buffer = calmly([] {
        QBLByteBuffer made(8, 8);
        made << "before";
        return made;
    });
    return changed(buffer, print, change);
}

char g_id[] = "class";

class Item : public QBLObjectFactoryItem {
public:
    explicit Item(QBLObjectFactory* factory) : QBLObjectFactoryItem(factory) {}
    char* getClassId() override { return g_id; }
    static QBLObjectFactoryItem* make(QBLObjectFactory* factory) { return new Item(factory); }
};

class CountTask : public QBLCustodianTask {
public:
    int doIt(int /*terminating*/) override { return 0; }
};

const faults::Rows kRows{
    {"QBLThreadMutex", kThread, locked<QBLThreadMutex>},
    {"QBLThreadRecursiveMutex", kThread, locked<QBLThreadRecursiveMutex>},
    {"QBLThreadCriticalSection", kThread, locked<QBLThreadCriticalSection>},
    {"QBLThreadRecursiveCriticalSection", kThread, locked<QBLThreadRecursiveCriticalSection>},
    {"QBLThreadRWLock", kThread,
     [] {
         QBLThreadRWLock lock;
         lock.lock();
         lock.unlock();
         lock.readLock();
         lock.unlock();
         need(lock.tryLock() != 0);
         lock.unlock();
         need(lock.boundedReadLock(1));
         const bool excluded = !lock.boundedLock(1);  // the wait for a reader ends
         lock.unlock();
         need(excluded);
         return std::string();
     }},
    {"QBLThreadEvents", kThread,
     [] {
         QBLThreadAutoResetEvent one(0);
         QBLThreadManualResetEvent all(0);
         QBLThreadSemaphore semaphore(0);
         one.signal();
         all.signal();
         semaphore.post();
         one.wait();
         all.wait();
         semaphore.wait();
         return std::string();
     }},
    {"QBLThreadConditionVariable", kThread,
     [] {
         QBLThreadCriticalSection lock(0);
         QBLThreadConditionVariable condition;
         const QBLThreadGuard guard(lock);
         condition.signal();
         condition.broadcast();
         static_cast<void>(condition.timedWait(lock, 1UL));
         return std::string();
     }},
    {"QBLThreadKey", kThread,
     [] {
         static int s_value = 0;
         QBLThreadKey key;
         key.setValue(&s_value);
         need(key.getValue() == &s_value);
         return std::string();
     }},
    {"QBLCallableThread", kThread | kBadAlloc,
     [] {
         start();
         int result = 0;
         QBLCallableThread thread([&result] { result = 7; });
         thread.start();
         thread.join();
         return calmly([&] { return std::to_string(result); });
     }},
    {"QBLList", kOutOfMemory | kBadAlloc,
     [] {
         QBLList<int> list = calmly([] { return QBLList<int>{3, 1, 2}; });
         const auto show = [](const QBLList<int>& l) {
             std::string all;
             for (const int value : l) all += std::to_string(value);
             if (all.size() != l.size()) throw faults::Broken{"size"};
             return all;
         };
         changed(list, show, [](QBLList<int>& l) { l.push_back(4); });
         changed(list, show, [](QBLList<int>& l) { l.push_front(0); });
         changed(list, show, [](QBLList<int>& l) { l.insert(++l.begin(), 9); });
         return changed(list, show, [](QBLList<int>& l) { l.emplace_back(5); });
     }},
    {"QBLByteBuffer.append", kOutOfMemory | kOther,
     [] { return changedBuffer([](QBLByteBuffer& b) { b << "text that needs more room"; }); }},
    {"QBLByteBuffer.number", kOutOfMemory | kOther,
     [] { return changedBuffer([](QBLByteBuffer& b) { b << 1234567890L; }); }},
    {"QBLByteBuffer.printf", kOutOfMemory | kOther,
     [] { return changedBuffer([](QBLByteBuffer& b) { b.printf("%s %d", "formatted", 7); }); }},
    {"QBLByteBuffer.assign", kOutOfMemory | kOther,
     [] {
         static const QBLByteBuffer kTheOther = [] {
             QBLByteBuffer made;
             made << "another text, which is longer than the block";
             return made;
         }();
         return changedBuffer([](QBLByteBuffer& b) { b = kTheOther; });
     }},
    {"QBLVariant", kRefuses,
     [] {
         QBLVariant text, copy;
         need(text.setValue("a text in a variant", 0));
         copy = text;
         const QBLVariant other(text);
         need(copy.getVarType() == QBLVariant::QBLVariantString &&
              other.getVarType() == QBLVariant::QBLVariantString);
         need(copy == text && other == text);
         return std::string();
     }},
    {"qblBase64", kBadAlloc | kOutOfMemory,
     [] {
         const std::string coded = qblBase64Encode("a text with some length", 23),
                           url = qblBase64URLEncode("a text with some length", 23);
         const auto text = qblBase64Decode(coded), back = qblBase64URLDecode(url);
         return calmly([&] { return coded + text.value() + url + back.value(); });
     }},
    {"QBLSquisher", kRefuses,
     [] {
         const std::unique_ptr<char[]> token(QBLSquisher::squish("a text to squish, to squish"));
         need(token != nullptr);
         const std::unique_ptr<char[]> text(QBLSquisher::unSquish(token.get()));
         need(text != nullptr);
         return calmly([&] { return std::string(text.get()); });
     }},
    {"QBLUtStrTok", kBadAlloc | kOutOfMemory,
     [] {
         QBLUtStrTok tokens("some tokens that are-longer-than-a-short-text; and more");
         std::string token, all;
         while (tokens.nextToken(token)) calmly([&] { all += token; });
         return all;
     }},
    {"QBLMiniLogger", kBadAlloc | kOutOfMemory | kNothing,
     [] {
         QBLMiniLogger logger;
         logger.init("/dev/null");
         logger.log("caption", "text");
         logger.logTrace("caption", "trace");
         return std::string();
     }},
    {"QBLObjectFactory", kOutOfMemory | kBadAlloc,
     [] {
         QBLObjectFactory factory;
         factory.registerClass(g_id, &Item::make);
         factory.createObject(g_id)->release();
         QBLObjectFactoryItem* const item = factory.createObject(g_id);
         factory.releaseObject(item);
         factory.unregisterClass(g_id);
         return std::string();
     },
     kThreadResource},
    {"QBLCustodian", kRefuses | kThread,
     [] {
         start();
         CountTask task;
         const bool registered = QBLCustodian::registerTask(&task);
         if (registered) QBLCustodian::deRegisterTask(&task);
         need(registered);
         return std::string();
     }},
    {"QBLUtSystemInfo", kOutOfMemory | kBadAlloc,
     [] {
         const std::string stamp = QBLUtSystemInfo::getTimeStamp(0);
         return calmly([&] { return std::to_string(stamp.size()); });
     }},
};

}  // namespace
