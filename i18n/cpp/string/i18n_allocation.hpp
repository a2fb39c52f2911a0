#ifndef I18N_CPP_STRING_I18N_ALLOCATION_HPP
#define I18N_CPP_STRING_I18N_ALLOCATION_HPP

#include <stdexcept>

#include "QBLCore/Exceptions/shared/QBLThrowNoMemory.hpp"

/// Ends what QBL_ALLOC_TRY begins, where text goes through the standard library's strings. At 32
/// bits they hold less than ours, so a length that they refuse is memory that there is not.
#define I18N_ALLOC_CATCH               \
    }                                  \
    catch (const std::length_error&) { \
        qblThrowNoMemory(QBL_HERE);    \
        QBL_ALLOC_CATCH

#endif
