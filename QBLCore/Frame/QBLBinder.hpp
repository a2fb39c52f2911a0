#ifndef QBLCORE_FRAME_QBLBINDER_HPP
#define QBLCORE_FRAME_QBLBINDER_HPP

/// A lock with the data that it guards: reach the data through operator*() while the lock is
/// held. Lock is a lockable class whose constructor takes 0, such as QBLThreadCriticalSection
/// or QBLThreadMutex.
///
/// Threads: locking as Lock says; the data only under the lock.
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
