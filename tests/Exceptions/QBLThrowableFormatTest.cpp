#include <gtest/gtest.h>

#include "QBLCore/Exceptions/QBLDeferredThrowable.hpp"
#include "QBLCore/Exceptions/QBLException.hpp"
#include "QBLCore/Messages/QBLMessageString.hpp"
#include "tests/support/Workers.hpp"

namespace {

struct ListError : QBLException {
    using QBLException::QBLException;
    QBL_EXCEPTION_METHODS(ListError)
};

ListError listError() {
    ListError error(7);
    error << QBLMessageString("cannot load.") << QBLMessageString("") << QBLMessageString("x.so");
    return error;
}

}  // namespace

TEST(QBLThrowableFormatTest, FormatsAConstantThrowableOnSeveralThreads) {
    const ListError error = listError();
    const QBLDeferredThrowable deferred(error);
    EXPECT_EQ(nullptr, QBLDeferredThrowable().get());
    const QBLThrowable& root = *deferred.get();
    Workers(4, [&root] {
        EXPECT_EQ("cannot load.; x.so", root.format("de en", "; ").toUtf8());
        EXPECT_EQ("cannot load.x.so", root.format(nullptr, nullptr).toUtf8());
    }).join();
    I18NString text;
    error.format(nullptr, nullptr, text);
    EXPECT_EQ("cannot load.x.so", text.toUtf8());
    EXPECT_EQ("ListError -4", ListError(-4).format().toUtf8());
    EXPECT_EQ("ListError", ListError(0).format().toUtf8());
}
