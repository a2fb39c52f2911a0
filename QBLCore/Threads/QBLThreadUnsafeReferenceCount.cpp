#include "QBLCore/Threads/QBLThreadUnsafeReferenceCount.hpp"

QBLThreadUnsafeReferenceCount::QBLThreadUnsafeReferenceCount(int initial) : m_iCount(initial) {}

QBLThreadUnsafeReferenceCount::~QBLThreadUnsafeReferenceCount() = default;

int QBLThreadUnsafeReferenceCount::addReference() { return ++m_iCount; }

int QBLThreadUnsafeReferenceCount::removeReference() {
    const int left = --m_iCount;
    if (left == 0) cleanup();
    return left;  // not m_iCount: cleanup() may have destroyed the object
}

int QBLThreadUnsafeReferenceCount::getReferenceCount() { return m_iCount; }

void QBLThreadUnsafeReferenceCount::cleanup() {}
