#include "QBLCore/ThreadPools/QBLThreadPool.hpp"

QBLThreadPool::QBLThreadPool() : m_iStopWork(0) {}

QBLThreadPool::~QBLThreadPool() = default;
