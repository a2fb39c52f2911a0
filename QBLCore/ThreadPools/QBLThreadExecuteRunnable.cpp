#include "QBLCore/ThreadPools/QBLThreadExecuteRunnable.hpp"

#include "QBLCore/ThreadPools/QBLPoolTask.hpp"

QBLThreadExecuteRunnable::~QBLThreadExecuteRunnable() { QBLPoolTask::dropAllOf(*this); }
