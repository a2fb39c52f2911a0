#ifndef QBLCORE_THREADS_QBLTHREADINIT_HPP
#define QBLCORE_THREADS_QBLTHREADINIT_HPP

#include "QBLCore/Frame/QBLExport.h"

/// Starts the thread layer for the process by being constructed. Its destructor does not stop
/// it: that is qblThreadProcessTerminate()'s, for whoever wants it.
///
/// Threads: any thread may make one, and read it.
class QBL_API QBLThreadInit {
public:
    /// @throws QBLThreadResourceError if the start failed
    QBLThreadInit();

    bool getSuccess() const { return m_bSuccess; }
    /// What qblThreadProcessInitialize() returned.
    int getErrorCode() const { return m_iErrorCode; }

private:
    bool m_bSuccess;
    int m_iErrorCode;
};

#endif
