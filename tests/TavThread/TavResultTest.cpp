#include "TavThread/TavResult.h"

#include <gtest/gtest.h>

#include <cerrno>

TEST(TavResultTest, MapsSystemErrorsToItsOwnCodes) {
    const struct {
        int err, code;
    } table[] = {{0, TAVTHREAD_OK},
                 {EBUSY, TAVTHREAD_BUSY},
                 {EAGAIN, TAVTHREAD_AGAIN},
                 {ENOMEM, TAVTHREAD_NOMEM},
                 {EDEADLK, TAVTHREAD_DEADLOCK},
                 {ETIME, TAVTHREAD_TIMEOUT},
                 {ETIMEDOUT, TAVTHREAD_TIMEOUT},
                 {EPERM, TAVTHREAD_ERROR},
                 {EINTR, TAVTHREAD_ERROR},
                 {-2, TAVTHREAD_ERROR}};
    for (const auto& row : table) {
        EXPECT_EQ(row.code, tavThread_MapError(row.err)) << row.err;
        errno = row.err;
        EXPECT_EQ(row.err == 0 ? TAVTHREAD_ERROR : row.code, tavThread_MapError(-1)) << row.err;
    }
}
