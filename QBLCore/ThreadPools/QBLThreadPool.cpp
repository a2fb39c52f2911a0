#include "QBLCore/ThreadPools/QBLThreadPool.hpp"

#include "QBLCore/Base/QBLDynamicCast.hpp"
#include "QBLCore/ThreadPools/QBLThreadPoolFixed.hpp"
#include "QBLCore/ThreadPools/QBLThreadPoolQueued.hpp"

QBLThreadPool::QBLThreadPool() : m_iStopWork(0) {}

QBLThreadPool::~QBLThreadPool() = default;

// Uses casts instead of a virtual operation, because the virtual table must not grow within a major
// version. In the variable pool, no submitter waits.
void QBLThreadPool::setStopWork(int stop) {
    m_iStopWork.store(stop);
    if (stop == 0) return;
    if (auto* fixed = qblDynamicCast<QBLThreadPoolFixed*>(this)) fixed->wakeSubmitters();
    if (auto* queued = qblDynamicCast<QBLThreadPoolQueued*>(this)) queued->wakeSubmitters();
}
