#ifndef QBLCORE_TYPES_INTERNAL_QBLBYTEBUFFERASSERT_HPP
#define QBLCORE_TYPES_INTERNAL_QBLBYTEBUFFERASSERT_HPP

#include "QBLCore/Exceptions/QBLThrow.hpp"

/// QBL_ASSERT_NAMED for the byte buffer. Error texts of the byte buffer have blanks inside the
/// parentheses around the condition.
#define QBL_BUFFER_ASSERT(condition, conditionText, text)                               \
    ((condition) ? static_cast<void>(0)                                                 \
                 : qblAssertFailed(QBL_HERE, "QBL_ASSERT_NAMED(( " conditionText " ), " \
                                             "\"[QBLByteBuffer" text "\");"))

#define QBL_BUFFER_ASSERT_ARRAY(operation)                       \
    QBL_BUFFER_ASSERT(m_pBuffer != nullptr, "NULL != m_pBuffer", \
                      "::" operation "] The internal buffer is NULL.")

#endif
