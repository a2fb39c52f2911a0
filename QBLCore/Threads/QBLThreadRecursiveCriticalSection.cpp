#include "QBLCore/Threads/QBLThreadRecursiveCriticalSection.hpp"

QBLThreadRecursiveCriticalSection::QBLThreadRecursiveCriticalSection(int trackOwner)
    : QBLThreadCriticalSection(trackOwner, true) {}

QBLThreadRecursiveCriticalSection::~QBLThreadRecursiveCriticalSection() = default;
