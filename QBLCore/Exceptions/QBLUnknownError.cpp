#include "QBLCore/Exceptions/QBLUnknownError.hpp"

QBL_EXPORTED_THROWABLE_DEFINITION(QBLUnknownError)
