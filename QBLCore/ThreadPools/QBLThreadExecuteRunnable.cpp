#include "QBLCore/ThreadPools/QBLThreadExecuteRunnable.hpp"

QBLThreadExecuteRunnable::~QBLThreadExecuteRunnable() = default;
