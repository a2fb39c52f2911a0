#ifndef QBLCORE_THREADS_QBLTHREADUNSAFEREFERENCECOUNT_HPP
#define QBLCORE_THREADS_QBLTHREADUNSAFEREFERENCECOUNT_HPP

#include "QBLCore/Frame/QBLExport.h"

/// Base of objects that count their users and clean up when the last one goes.
///
/// Threads: for objects that one thread uses; QBLReferenceCount is for shared ones.
class QBL_API QBLThreadUnsafeReferenceCount {
public:
    explicit QBLThreadUnsafeReferenceCount(int initial = 0);
    QBLThreadUnsafeReferenceCount(const QBLThreadUnsafeReferenceCount&) = delete;
    QBLThreadUnsafeReferenceCount& operator=(const QBLThreadUnsafeReferenceCount&) = delete;
    virtual ~QBLThreadUnsafeReferenceCount();

    /// @return the new count.
    virtual int addReference();
    /// Calls cleanup() when the count comes down to 0, after which the object may be gone.
    /// @return the new count.
    virtual int removeReference();
    virtual int getReferenceCount();
    /// What to do when nobody refers to the object any more: nothing here, for objects on the
    /// stack; objects on the heap usually `delete this`.
    virtual void cleanup();

protected:
    int m_iCount;
};

#endif
