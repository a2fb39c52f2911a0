// Throws, translates and rethrows errors, and passes one on to another thread.
#include <cstdio>
#include <stdexcept>

#include "QBLCore/Exceptions/QBLAllocation.hpp"
#include "QBLCore/Exceptions/QBLDeferredThrowable.hpp"
#include "QBLCore/Exceptions/QBLRuntimeError.hpp"
#include "QBLCore/Exceptions/QBLTerminateHandler.hpp"
#include "QBLCore/Exceptions/QBLThrow.hpp"
#include "QBLCore/Exceptions/QBLWhat.hpp"
#include "QBLCore/Frame/QBLCore.h"
#include "QBLCore/Threads/QBLThread.hpp"

namespace {

class ParseError : public QBLRuntimeError {
public:
    using QBLRuntimeError::QBLRuntimeError;
    QBL_EXCEPTION_METHODS(ParseError)
};

int parse(const char* text) try {
    if (*text == '\0') QBL_THROW_NAMED(ParseError(QBLSeverityError, 7, "empty"), "parse");
    if (*text > '9') throw std::out_of_range("no digit");
    QBL_ASSERT_NAMED(text[1] == '\0', "one digit");
    return *text - '0';
} catch (...) {
    qblRethrowTranslated(QBL_HERE);
}

struct Job : QBLThreadRunnable {
    QBLDeferredThrowable error;
    void run() override try { parse(""); } catch (QBLThrowable& e) {
        error.set(e);
    }
};

}  // namespace

int main() {
    qblInstallTerminateHandler();
    for (const char* text : {"one", "12"}) {
        try {
            parse(text);
        } catch (const QBLThrowable& e) {
            std::printf("%s\n%s\n\n", qblWhat(e).c_str(), qblXml(e).c_str());
        }
    }
    qblCoreInitialize();
    Job job;
    QBLThread thread(&job);
    thread.start();
    thread.join();
    try {
        job.error.check(QBL_HERE, "main", "QBL_THROW");
    } catch (ParseError& e) {
        std::printf("%s\n", e.toString());
    }
    return qblCoreTerminate();
}
