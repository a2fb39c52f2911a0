#include "QBLCore/Exceptions/QBLAllocation.hpp"

#include <exception>
#include <memory>
#include <new>

#include "QBLCore/Exceptions/QBLOutOfMemoryError.hpp"
#include "QBLCore/Exceptions/QBLStdBridge.hpp"
#include "QBLCore/Exceptions/QBLStdExceptionError.hpp"
#include "QBLCore/Exceptions/QBLThrowable.hpp"
#include "QBLCore/Exceptions/QBLUnknownError.hpp"
#include "TavThread/shared/TavContain.hpp"

namespace {

// hurl() throws a copy of the error. If memory suffices for the trace but not for its copy, this
// function throws an error without a trace.
[[noreturn]] void hurlOutOfMemory(const QBLFileLocation& where, const char* detail) {
    try {
        QBLOutOfMemoryError(0, nullptr).hurl(where, detail, "QBL_THROW");
    } catch (const std::bad_alloc&) {
        throw QBLOutOfMemoryError(0, nullptr);
    }
}

}  // namespace

TAV_CATCHES_UNWINDING void qblRethrowTranslated(const QBLFileLocation& where, const char* detail) {
    try {
        throw;
    } catch (abi::__forced_unwind&) {
        throw;
    } catch (QBLThrowable& e) {
        e.addBackTrace(where, detail, "QBL_RETHROW");
        throw;
    } catch (const std::bad_alloc&) {
        hurlOutOfMemory(where, detail);
    } catch (const QBLStdBridge& e) {
        try {
            const std::unique_ptr<QBLThrowable> carried(e.getThrowable().clone());
            carried->hurl(where, detail, "QBL_RETHROW");
            std::terminate();  // not every hurl() is declared as [[noreturn]]
        } catch (const std::bad_alloc&) {
            hurlOutOfMemory(where, detail);
        }
    } catch (const std::exception& e) {
        try {
            QBLStdExceptionError(0, e.what()).hurl(where, detail, "QBL_THROW");
        } catch (const std::bad_alloc&) {
            hurlOutOfMemory(where, detail);
        }
    } catch (...) {
        try {
            QBLUnknownError(0, nullptr).hurl(where, detail, "QBL_THROW");
        } catch (const std::bad_alloc&) {
            hurlOutOfMemory(where, detail);
        }
    }
}
