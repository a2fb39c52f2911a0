#include "QBLCore/Exceptions/QBLI18NStringAllocator.hpp"

#include <new>

char* QBLI18NStringAllocator(void*, char* old, int size, int* status) {
    delete[] old;
    char* block = size > 0 ? new (std::nothrow) char[static_cast<unsigned>(size)] : nullptr;
    if (status != nullptr) *status = size > 0 && block == nullptr ? -1 : 0;
    return block;
}
