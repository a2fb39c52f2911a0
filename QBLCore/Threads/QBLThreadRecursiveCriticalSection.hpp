#ifndef QBLCORE_THREADS_QBLTHREADRECURSIVECRITICALSECTION_HPP
#define QBLCORE_THREADS_QBLTHREADRECURSIVECRITICALSECTION_HPP

#include "QBLCore/Threads/QBLThreadCriticalSection.hpp"

/// A QBLThreadCriticalSection that its holder may lock again. It is free after one unlock for each
/// lock. An unlock by another thread throws QBLThreadResourceError and changes nothing. Condition
/// variables do not accept it.
///
/// Threads: any thread may call any operation; the section must outlive every call.
class QBL_API QBL_CAPABILITY("mutex") QBLThreadRecursiveCriticalSection
    : public QBLThreadCriticalSection {
public:
    explicit QBLThreadRecursiveCriticalSection(int trackOwner = 0);
    ~QBLThreadRecursiveCriticalSection() override;

    void lock() override QBL_ACQUIRE();
    void unlock() override QBL_RELEASE();
};

#endif
