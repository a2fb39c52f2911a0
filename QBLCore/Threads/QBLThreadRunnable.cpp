#include "QBLCore/Threads/QBLThreadRunnable.hpp"

QBLThreadRunnable::~QBLThreadRunnable() = default;
