#ifndef QBLCORE_THREADS_QBLTHREADUNSAFEREFERENCECOUNT_HPP
#define QBLCORE_THREADS_QBLTHREADUNSAFEREFERENCECOUNT_HPP

#include "QBLCore/Frame/QBLExport.h"
#include "QBLCore/Frame/QBLLanguage.hpp"

/// Base of objects that count their references and clean up when the last reference is removed.
///
/// Threads: only one thread may use an object; QBLReferenceCount is for shared objects.
class QBL_API QBLThreadUnsafeReferenceCount {
public:
    explicit QBLThreadUnsafeReferenceCount(int initial = 0);
    QBLThreadUnsafeReferenceCount(const QBLThreadUnsafeReferenceCount&) = delete;
    QBLThreadUnsafeReferenceCount& operator=(const QBLThreadUnsafeReferenceCount&) = delete;
    virtual ~QBLThreadUnsafeReferenceCount();

    /// @return the new count.
    virtual int addReference();
    /// Calls cleanup() if the count becomes 0. After that the object may be destroyed.
    /// @return the new count.
    virtual int removeReference();
    virtual int getReferenceCount();
    /// Called when the last reference is removed. This implementation does nothing, because the
    /// object may be on the stack. A class for objects on the heap usually overrides it with
    /// `delete this`.
    virtual void cleanup();

protected:
    int m_iCount;
};

#endif
