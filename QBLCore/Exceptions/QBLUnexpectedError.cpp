#include "QBLCore/Exceptions/QBLUnexpectedError.hpp"

QBL_EXPORTED_THROWABLE_DEFINITION(QBLUnexpectedError)
