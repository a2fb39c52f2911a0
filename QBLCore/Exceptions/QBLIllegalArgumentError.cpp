#include "QBLCore/Exceptions/QBLIllegalArgumentError.hpp"

QBL_EXPORTED_THROWABLE_DEFINITION(QBLIllegalArgumentError)
