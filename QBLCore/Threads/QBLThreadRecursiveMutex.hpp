#ifndef QBLCORE_THREADS_QBLTHREADRECURSIVEMUTEX_HPP
#define QBLCORE_THREADS_QBLTHREADRECURSIVEMUTEX_HPP

#include "QBLCore/Threads/QBLThreadMutex.hpp"

/// A QBLThreadMutex that its holder may lock again. It is free after one unlock for each lock. An
/// unlock by another thread throws QBLThreadResourceError and changes nothing. Condition variables
/// do not accept it.
///
/// Threads: any thread may call any operation; the mutex must outlive every call.
class QBL_API QBL_CAPABILITY("mutex") QBLThreadRecursiveMutex : public QBLThreadMutex {
public:
    explicit QBLThreadRecursiveMutex(int trackOwner = 0);
    ~QBLThreadRecursiveMutex() override;

    void lock() override QBL_ACQUIRE();
    void unlock() override QBL_RELEASE();
};

#endif
