#include "QBLCore/Exceptions/QBLDeferredThrowable.hpp"

#include "QBLCore/Exceptions/QBLIllegalStateError.hpp"
#include "QBLCore/Exceptions/QBLThrow.hpp"
#include "tests/support/ThrowChecks.hpp"
#include "tests/support/Workers.hpp"

TEST(QBLDeferredThrowableTest, ThrowsTheErrorOfAnotherThreadWithItsClass) {
    QBLDeferredThrowable deferred;
    deferred.check(QBL_HERE, nullptr, "CHECK");
    Workers(1, [&] {
        try {
            QBL_THROW(QBLIllegalStateError(4, "from the worker"));
        } catch (QBLThrowable& e) {
            deferred.set(e);
        }
    }).join();
    const QBLDeferredThrowable copy(deferred);
    for (unsigned int round = 1; round <= 2; ++round) {
        try {
            deferred.check(QBL_HERE, "joined", "CHECK");
            ADD_FAILURE() << "nothing thrown";
        } catch (QBLIllegalStateError& e) {
            EXPECT_STREQ("from the worker", e.getMessage());
            EXPECT_EQ(1 + round, e.getBackTrace().size()) << "each check adds a back-trace entry";
        }
    }
    deferred = copy;
    QBL_EXPECT_THROW(deferred.check(QBL_HERE, nullptr, nullptr), QBLIllegalStateError,
                     "from the worker", 4);
    const QBLError other(9, "another");
    deferred = other;
    QBL_EXPECT_THROW(deferred.check(QBL_HERE, nullptr, nullptr), QBLError, "another", 9);
    QBLDeferredThrowable& self = deferred;
    deferred = self;
    deferred = *deferred.get();
    QBL_EXPECT_THROW(deferred.check(QBL_HERE, nullptr, nullptr), QBLError, "another", 9);
    deferred = QBLDeferredThrowable();
    EXPECT_EQ(nullptr, deferred.get());
    deferred = copy;
    deferred.clear();
    deferred.check(QBL_HERE, nullptr, "CHECK");
}
