#include "TavThread/TavResult.h"

#include <gtest/gtest.h>

#include <cerrno>

TEST(TavResultTest, MapsSystemErrorsToItsOwnCodes) {
    const std::pair<int, int> table[] = {{0, TAVTHREAD_OK},
                                         {EBUSY, TAVTHREAD_BUSY},
                                         {EAGAIN, TAVTHREAD_AGAIN},
                                         {ENOMEM, TAVTHREAD_NOMEM},
                                         {EDEADLK, TAVTHREAD_DEADLOCK},
                                         {ETIME, TAVTHREAD_TIMEOUT},
                                         {ETIMEDOUT, TAVTHREAD_TIMEOUT},
                                         {EPERM, TAVTHREAD_ERROR},
                                         {EINTR, TAVTHREAD_ERROR},
                                         {-2, TAVTHREAD_ERROR}};
    for (const auto& [err, code] : table) {
        EXPECT_EQ(code, tavThread_MapError(err)) << err;
        errno = err;
        EXPECT_EQ(err == 0 ? TAVTHREAD_ERROR : code, tavThread_MapError(-1)) << err;
    }
}
