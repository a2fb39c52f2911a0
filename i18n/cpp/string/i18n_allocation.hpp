#ifndef I18N_CPP_STRING_I18N_ALLOCATION_HPP
#define I18N_CPP_STRING_I18N_ALLOCATION_HPP

#include <stdexcept>

#include "QBLCore/Exceptions/shared/QBLThrowNoMemory.hpp"

/// Closes the block that QBL_ALLOC_TRY opens around code that uses strings of the standard library.
/// At 32 bits, standard strings hold less than our strings, so a std::length_error counts as
/// exhausted memory.
#define I18N_ALLOC_CATCH               \
    }                                  \
    catch (const std::length_error&) { \
        qblThrowNoMemory(QBL_HERE);    \
        QBL_ALLOC_CATCH

#endif
