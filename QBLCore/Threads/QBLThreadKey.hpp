#ifndef QBLCORE_THREADS_QBLTHREADKEY_HPP
#define QBLCORE_THREADS_QBLTHREADKEY_HPP

#include "QBLCore/Frame/QBLExport.h"

struct TavThreadKey;

/// A pointer of which every thread has its own, null until it sets it.
///
/// Threads: any thread may call any operation; the key must outlive every call.
class QBL_API QBLThreadKey {
public:
    /// @param destructor  called at the end of each thread with the value that it left, unless
    ///     that is null; not called for values left when the key is destroyed
    /// @throws QBLOutOfMemoryError, QBLThreadResourceError (the system has no key left)
    explicit QBLThreadKey(void (*destructor)(void*) = nullptr);
    virtual ~QBLThreadKey();
    QBLThreadKey(const QBLThreadKey&) = delete;
    QBLThreadKey& operator=(const QBLThreadKey&) = delete;

    /// @throws QBLOutOfMemoryError
    void setValue(void* value);
    void* getValue();

private:
    TavThreadKey* m_pKey;
};

#endif
