#include "QBLCore/Threads/QBLThreadLockableResource.hpp"

QBLThreadLockableResource::~QBLThreadLockableResource() = default;
