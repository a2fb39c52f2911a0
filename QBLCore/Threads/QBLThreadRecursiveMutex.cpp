#include "QBLCore/Threads/QBLThreadRecursiveMutex.hpp"

QBLThreadRecursiveMutex::QBLThreadRecursiveMutex(int trackOwner)
    : QBLThreadMutex(trackOwner, true) {}

QBLThreadRecursiveMutex::~QBLThreadRecursiveMutex() = default;
