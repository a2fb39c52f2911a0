#include "QBLCore/Exceptions/QBLOutOfMemoryError.hpp"

QBL_EXPORTED_THROWABLE_DEFINITION(QBLOutOfMemoryError)
