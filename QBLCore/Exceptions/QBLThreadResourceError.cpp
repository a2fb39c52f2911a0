#include "QBLCore/Exceptions/QBLThreadResourceError.hpp"

QBL_EXPORTED_THROWABLE_DEFINITION(QBLThreadResourceError)
