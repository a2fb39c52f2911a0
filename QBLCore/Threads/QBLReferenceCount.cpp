#include "QBLCore/Threads/QBLReferenceCount.hpp"

#include "QBLCore/Threads/QBLThreadGuard.hpp"

QBLReferenceCount::QBLReferenceCount(int initial)
    : QBLThreadUnsafeReferenceCount(initial), m_lock(0) {}

QBLReferenceCount::~QBLReferenceCount() = default;

int QBLReferenceCount::addReference() {
    QBLThreadGuard guard(m_lock);
    return ++m_iCount;
}

int QBLReferenceCount::removeReference() {
    int left;
    {
        QBLThreadGuard guard(m_lock);
        left = --m_iCount;
    }
    // The lock is free here, because it is part of the object that cleanup() may destroy.
    if (left == 0) cleanup();
    return left;
}

int QBLReferenceCount::getReferenceCount() {
    QBLThreadGuard guard(m_lock);
    return m_iCount;
}
