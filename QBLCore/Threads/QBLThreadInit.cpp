#include "QBLCore/Threads/QBLThreadInit.hpp"

#include <cstdio>

#include "QBLCore/Exceptions/QBLThreadResourceError.hpp"
#include "QBLCore/Threads/QBLThreadProcess.h"
#include "QBLCore/Threads/shared/QBLLayerResult.hpp"

namespace {

const char kFailed[] =
    "Unable to initialize QBLThread. qblThreadProcessInitialize returned error code (%d)";

}  // namespace

QBLThreadInit::QBLThreadInit() : m_bSuccess(false), m_iErrorCode(0) {
    m_iErrorCode = qblThreadProcessInitialize(nullptr);
    m_bSuccess = m_iErrorCode == 0;
    if (!m_bSuccess) {
        char text[sizeof kFailed + 16];
        std::snprintf(text, sizeof text, kFailed, m_iErrorCode);
        qblThrow<QBLThreadResourceError>(QBL_HERE, text);
    }
}
