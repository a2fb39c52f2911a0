#include "QBLCore/Threads/shared/QBLLayerResult.hpp"

#include "QBLCore/Exceptions/QBLOutOfMemoryError.hpp"
#include "QBLCore/Exceptions/QBLThreadResourceError.hpp"

void qblThrowThreadResource(QBLFileLocation where, const char* text) {
    qblThrow<QBLThreadResourceError>(where, text);
}

void qblThrowOutOfMemory(QBLFileLocation where, const char* text) {
    qblThrow<QBLOutOfMemoryError>(where, text);
}
