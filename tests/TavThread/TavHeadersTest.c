/* Includes every public header in C. TavHeadersTest checks that tavCalledFromC() returns 0. */
#include "TavThread/TavCondition.h"
#include "TavThread/TavEvent.h"
#include "TavThread/TavExport.h"
#include "TavThread/TavMutex.h"
#include "TavThread/TavRWLock.h"
#include "TavThread/TavResult.h"
#include "TavThread/TavSemaphore.h"
#include "TavThread/TavStateTrap.h"
#include "TavThread/TavThread.h"
#include "TavThread/TavThreadKey.h"
#include "TavThread/TavTrace.h"

static void* echo(void* arg) { return arg; }

int tavCalledFromC(void);
int tavCalledFromC(void) {
    TavMutex* m = 0;
    TavThread* thread = 0;
    void* value = 0;
    int failed = tavThreadProcessInitialize("name") != TAVTHREAD_OK;
    failed |= tavXMutexCreate(&m, TavMutexAttrRecursive, TavMutexAttrEnd) != TAVTHREAD_OK;
    failed |= tavXMutexLock(m) != TAVTHREAD_OK || tavXMutexTryLock(m) != TAVTHREAD_OK;
    failed |= tavXMutexUnlock(m) != TAVTHREAD_OK || tavXMutexUnlock(m) != TAVTHREAD_OK;
    failed |= tavXMutexDestroy(m) != TAVTHREAD_OK;
    failed |= tavXThreadCreate(echo, &failed, &thread, TavThreadAttrStackSize, 1U,
                               TavThreadAttrEnd) != TAVTHREAD_OK;
    failed |= tavXThreadJoin(thread, &value) != TAVTHREAD_OK || value != &failed;
    failed |= tavXThreadDestroy(thread) != TAVTHREAD_OK;
    failed |= tavThreadProcessTerminate("name") != TAVTHREAD_OK;
    return failed;
}
