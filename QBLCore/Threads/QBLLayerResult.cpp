#include "QBLCore/Threads/internal/QBLLayerResult.hpp"

#include "QBLCore/Exceptions/QBLOutOfMemoryError.hpp"
#include "QBLCore/Exceptions/QBLThreadResourceError.hpp"

void qblThrowThreadResource(QBLFileLocation where, const char* text) {
    QBLThreadResourceError(0, text).hurl(where, nullptr, "QBL_THROW");
}

void qblThrowOutOfMemory(QBLFileLocation where, const char* text) {
    QBLOutOfMemoryError(0, text).hurl(where, nullptr, "QBL_THROW");
}
