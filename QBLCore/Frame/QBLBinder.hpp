#ifndef QBLCORE_FRAME_QBLBINDER_HPP
#define QBLCORE_FRAME_QBLBINDER_HPP

#include "QBLCore/Frame/QBLLanguage.hpp"

/// A lock together with the data that it guards. operator*() returns the data. Use the data only
/// while you hold the lock. Lock is a lockable class whose constructor accepts 0, such as
/// QBLThreadCriticalSection or QBLThreadMutex.
///
/// Threads: the rules of Lock apply to the lock; only its holder may use the data.
template <class Lock, class Data>
class QBLBinder : public Lock {
public:
    QBLBinder() : Lock(0), m_data() {}
    explicit QBLBinder(const Data& data) : Lock(0), m_data(data) {}

    Data& operator*() { return m_data; }
    const Data& operator*() const { return m_data; }

private:
    Data m_data;
};

#endif
