#ifndef QBLCORE_THREADS_QBLTHREADKEY_HPP
#define QBLCORE_THREADS_QBLTHREADKEY_HPP

#include "QBLCore/Frame/QBLExport.h"
#include "QBLCore/Frame/QBLLanguage.hpp"

struct TavThreadKey;

/// A pointer with a separate value for each thread. It is null until the thread sets it.
///
/// Threads: any thread may call any operation; the key must outlive every call.
class QBL_API QBLThreadKey {
public:
    /// @param destructor  called with the thread's value when a thread ends, unless the value is
    ///     null. Not called for values that exist when the key is destroyed.
    /// @throws QBLOutOfMemoryError; QBLThreadResourceError if the system has no more keys
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
