#ifndef QBLCORE_THREADS_QBLREFERENCECOUNT_HPP
#define QBLCORE_THREADS_QBLREFERENCECOUNT_HPP

#include "QBLCore/Threads/QBLThreadCriticalSection.hpp"
#include "QBLCore/Threads/QBLThreadUnsafeReferenceCount.hpp"

/// A reference count for objects that several threads share.
///
/// Threads: any thread that holds a reference may call any operation. cleanup() runs once, on the
/// thread that removes the last reference, and without a lock.
class QBL_API QBLReferenceCount : public QBLThreadUnsafeReferenceCount {
public:
    explicit QBLReferenceCount(int initial = 0);
    ~QBLReferenceCount() override;

    int addReference() override;
    int removeReference() override;
    int getReferenceCount() override;

private:
    QBLThreadCriticalSection m_lock;  // guards m_iCount
};

#endif
