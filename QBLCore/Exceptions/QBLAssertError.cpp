#include "QBLCore/Exceptions/QBLAssertError.hpp"

#include "QBLCore/Exceptions/QBLThrow.hpp"

QBL_EXPORTED_THROWABLE_DEFINITION(QBLAssertError)

void qblAssertFailed(const QBLFileLocation& where, const char* statement) {
    QBLAssertError(0, statement).hurl(where, nullptr, "QBL_THROW");
}
