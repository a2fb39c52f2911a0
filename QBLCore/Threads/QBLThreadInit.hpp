#ifndef QBLCORE_THREADS_QBLTHREADINIT_HPP
#define QBLCORE_THREADS_QBLTHREADINIT_HPP

#include "QBLCore/Frame/QBLExport.h"
#include "QBLCore/Frame/QBLLanguage.hpp"

/// The constructor starts the thread layer of the process. The destructor does not stop the layer;
/// qblThreadProcessTerminate() stops it.
///
/// Threads: any thread may make an object and read it.
class QBL_API QBLThreadInit {
public:
    /// @throws QBLThreadResourceError if the start failed
    QBLThreadInit();

    bool getSuccess() const { return m_bSuccess; }
    /// Returns the result of qblThreadProcessInitialize().
    int getErrorCode() const { return m_iErrorCode; }

private:
    bool m_bSuccess;
    int m_iErrorCode;
};

#endif
