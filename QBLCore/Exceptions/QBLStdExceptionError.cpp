#include "QBLCore/Exceptions/QBLStdExceptionError.hpp"

QBL_EXPORTED_THROWABLE_DEFINITION(QBLStdExceptionError)
