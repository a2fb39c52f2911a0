#include "TavThread/TavResult.h"

#include <cerrno>

int tavThread_MapError(int err) {
    if (err == -1) err = errno != 0 ? errno : -1;
    switch (err) {
        case 0:
            return TAVTHREAD_OK;
        case EBUSY:
            return TAVTHREAD_BUSY;
        case EAGAIN:
            return TAVTHREAD_AGAIN;
        case ENOMEM:
            return TAVTHREAD_NOMEM;
        case EDEADLK:
            return TAVTHREAD_DEADLOCK;
        case ETIME:
        case ETIMEDOUT:
            return TAVTHREAD_TIMEOUT;
        default:
            return TAVTHREAD_ERROR;
    }
}
