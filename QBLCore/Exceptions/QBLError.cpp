#include "QBLCore/Exceptions/QBLError.hpp"

QBL_EXPORTED_THROWABLE_DEFINITION(QBLError)
