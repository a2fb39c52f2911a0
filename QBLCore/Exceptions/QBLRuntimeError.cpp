#include "QBLCore/Exceptions/QBLRuntimeError.hpp"

QBL_EXPORTED_THROWABLE_DEFINITION(QBLRuntimeError)
