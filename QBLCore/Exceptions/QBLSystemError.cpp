#include "QBLCore/Exceptions/QBLSystemError.hpp"

QBL_EXPORTED_THROWABLE_DEFINITION(QBLSystemError)
