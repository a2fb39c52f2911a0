#include "QBLCore/Exceptions/QBLIllegalStateError.hpp"

QBL_EXPORTED_THROWABLE_DEFINITION(QBLIllegalStateError)
