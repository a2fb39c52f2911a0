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
    for (const auto& row : table) EXPECT_EQ(row.code, tavThread_MapError(row.err)) << row.err;
}

TEST(TavResultTest, MinusOneStandsForErrno) {
    errno = ETIMEDOUT;
    EXPECT_EQ(TAVTHREAD_TIMEOUT, tavThread_MapError(-1));
    errno = 0;
    EXPECT_EQ(TAVTHREAD_ERROR, tavThread_MapError(-1)) << "an unset errno is still an error";
}
