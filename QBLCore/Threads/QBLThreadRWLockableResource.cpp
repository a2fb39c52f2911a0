#include "QBLCore/Threads/QBLThreadRWLockableResource.hpp"

QBLThreadRWLockableResource::~QBLThreadRWLockableResource() = default;
