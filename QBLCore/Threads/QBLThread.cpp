#include "QBLCore/Threads/QBLThread.hpp"

#include <time.h>

#include <cerrno>
#include <climits>
#include <memory>

#include "QBLCore/Base/QBLImmortal.hpp"
#include "QBLCore/Base/QBLNoCancel.hpp"
#include "QBLCore/Exceptions/QBLIllegalStateError.hpp"
#include "QBLCore/Exceptions/QBLOutOfMemoryError.hpp"
#include "QBLCore/Exceptions/QBLThreadResourceError.hpp"
#include "QBLCore/Threads/QBLThreadCriticalSection.hpp"
#include "QBLCore/Threads/QBLThreadGuard.hpp"
#include "QBLCore/Threads/QBLThreadKey.hpp"
#include "QBLCore/Threads/shared/QBLLayerResult.hpp"
#include "TavThread/TavThread.h"
#include "TavThread/shared/TavContain.hpp"
#include "TavThread/shared/TavThreadRecord.hpp"

namespace {

const char kStarted[] = "QBLThread::start: the thread was started before and not joined";
const char kNoMemory[] = "TavThread ran out of memory";
const char kStart[] = "TavThread interface or unknown error";
const char kThrew[] = "TavThread caught a hardware exception";
const char kJoin[] = "TavThread either detected deadlock or an unexpected error occurred";

/// The key that maps a thread to its QBLThread. The key is created once and never destroyed, so
/// that a thread that begins while the library stops still finds it. After a stop of the library,
/// atExit() refuses to work, but all other code still uses the key.
struct CurrentThread {
    QBLThreadCriticalSection lock{0};
    std::unique_ptr<QBLThreadKey> key;  // guarded by lock
    bool open = false;                  // guarded by lock

    void makeKey() QBL_REQUIRES(lock) {
        if (key == nullptr) key = std::make_unique<QBLThreadKey>();
    }
    void set(QBLThread* thread) {
        QBLThreadGuard guard(lock);
        makeKey();
        key->setValue(thread);
    }
    QBLThread* get() {
        QBLThreadGuard guard(lock);
        return key != nullptr ? static_cast<QBLThread*>(key->getValue()) : nullptr;
    }
    bool isOpen() {
        QBLThreadGuard guard(lock);
        return open;
    }
};

// Created when the library is loaded, so that no thread and no stop can fail to create it.
CurrentThread& g_current = qblImmortal<CurrentThread>();

}  // namespace

QBLThread::QBLThread(QBLThreadRunnable* runnable, unsigned long stackSize)
    : m_pThread(nullptr), m_pRunnable(runnable), m_stackSize(stackSize), m_pAtExit(nullptr) {}

QBLThread::~QBLThread() {
    TavThread* thread = record();
    if (thread == nullptr) return;
    const QBLNoCancel noCancel;
    // If this fails, the thread can no longer be joined. The destructor then only releases its
    // record.
    tavContain([this] {
        if (g_current.get() == this)
            g_current.set(nullptr);  // execute() then knows that the object is gone
        else
            join();
    });
    tavXThreadDestroy(thread);
}

void QBLThread::run() {}

void QBLThread::start() {
    TavThread* previous = record();
    if (previous != nullptr) {
        if (previous->joinable.load() != TavJoinable::kJoined)
            qblThrow<QBLIllegalStateError>(QBL_HERE, kStarted);
        __atomic_store_n(&m_pThread, nullptr, __ATOMIC_RELEASE);
        tavXThreadDestroy(previous);
    }
    m_pAtExit = nullptr;
    const unsigned int stackSize =
        m_stackSize < UINT_MAX ? static_cast<unsigned int>(m_stackSize) : UINT_MAX;
    // Stores the record before the thread begins, because the thread may destroy this object.
    const int result = tavXThreadCreate(&QBLThread::main, this, &m_pThread, TavThreadAttrStackSize,
                                        stackSize, TavThreadAttrEnd);
    switch (result) {
        case TAVTHREAD_OK:
            break;
        case TAVTHREAD_NOMEM:
            qblThrow<QBLOutOfMemoryError>(QBL_HERE, kNoMemory);
        case TAVTHREAD_AGAIN:
            qblThrow<QBLThreadResourceError>(QBL_HERE, nullptr);
        default:
            qblThrow<QBLThreadResourceError>(QBL_HERE, kStart);
    }
}

void QBLThread::join() {
    TavThread* thread = record();
    if (thread == nullptr) return;
    if (thread != tavThreadPeek() && thread->joinable.load() == TavJoinable::kJoined) return;
    if (tavXThreadJoin(thread, nullptr) != TAVTHREAD_OK) {
        qblThrow<QBLThreadResourceError>(QBL_HERE, kJoin);
    }
    if (tavXThreadAutopsy(thread) == TavThreadExitException) {
        qblThrow<QBLThreadResourceError>(QBL_HERE, kThrew);
    }
}

void QBLThread::joinQuietly() noexcept {
    TavThread* thread = record();
    if (thread == nullptr || thread == tavThreadPeek()) return;
    const QBLNoCancel noCancel;
    tavContain([this] { join(); });
}

TavThread* QBLThread::record() const { return __atomic_load_n(&m_pThread, __ATOMIC_ACQUIRE); }

bool QBLThread::isAlive() const {
    TavThread* thread = record();
    return thread != nullptr && tavXThreadAlive(thread) != 0;
}

void QBLThread::yield() { tavXThreadYield(); }

unsigned long QBLThread::currentThreadId() { return tavXThreadId(nullptr); }

void QBLThread::sleep(unsigned long ms) {
    timespec left;
    left.tv_sec = static_cast<time_t>(ms / 1000);
    left.tv_nsec = static_cast<long>(ms % 1000) * 1000000L;
    while (nanosleep(&left, &left) != 0 && errno == EINTR) {
    }
}

int QBLThread::atExit(void (*routine)(), int set) {
    if (set != 0 && routine == nullptr) return -1;
    if (!g_current.isOpen()) return -1;
    QBLThread* thread = g_current.get();
    if (thread == nullptr) return -1;
    thread->m_pAtExit = set != 0 ? routine : nullptr;
    return 0;
}

int QBLThread::Initialize() {
    try {
        QBLThreadGuard guard(g_current.lock);
        g_current.makeKey();
        g_current.open = true;
        return TAVTHREAD_OK;
    } catch (const QBLOutOfMemoryError&) {
        return TAVTHREAD_NOMEM;
    } catch (const std::bad_alloc&) {
        return TAVTHREAD_NOMEM;
    } catch (...) {
        return TAVTHREAD_ERROR;
    }
}

int QBLThread::Terminate() {
    QBLThreadGuard guard(g_current.lock);
    g_current.open = false;
    return TAVTHREAD_OK;
}

void* QBLThread::main(void* self) {
    static_cast<QBLThread*>(self)->execute();
    return nullptr;
}

TAV_CATCHES_UNWINDING void QBLThread::execute() {
    if (!tavContain([&] { g_current.set(this); })) return;
    // Runs even if run() ends the thread, but not if run() has destroyed the object.
    const auto callAtExit = [&] {
        if (g_current.get() != this || m_pAtExit == nullptr) return;
        void (*const routine)() = m_pAtExit;
        tavContain(routine);
    };
    try {
        tavContain([this] { m_pRunnable != nullptr ? m_pRunnable->run() : run(); });
    } catch (abi::__forced_unwind&) {
        callAtExit();
        throw;
    }
    callAtExit();
}
