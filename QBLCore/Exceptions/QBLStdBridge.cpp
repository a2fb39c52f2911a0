#include "QBLCore/Exceptions/QBLStdBridge.hpp"

#include <new>

#include "QBLCore/Exceptions/QBLAllocation.hpp"
#include "QBLCore/Exceptions/QBLThrowable.hpp"
#include "QBLCore/Exceptions/QBLUnknownError.hpp"
#include "QBLCore/Exceptions/QBLWhat.hpp"
#include "TavThread/shared/TavContain.hpp"

QBLStdBridge::QBLStdBridge(const QBLThrowable& error)
    : std::runtime_error(qblWhat(error)), m_pError(error.clone()) {}

QBLStdBridge::QBLStdBridge(const QBLStdBridge& other) noexcept = default;

QBLStdBridge& QBLStdBridge::operator=(const QBLStdBridge& other) noexcept = default;

QBLStdBridge::~QBLStdBridge() = default;

TAV_CATCHES_UNWINDING void qblToStd(const QBLFileLocation& where) {
    try {
        try {
            throw;
        } catch (abi::__forced_unwind&) {
            throw;
        } catch (const std::exception&) {
            throw;
        } catch (...) {
            qblRethrowTranslated(where);
        }
    } catch (QBLThrowable& error) {
        try {
            throw QBLStdBridge(error);
        } catch (const QBLThrowable&) {  // cloning a throwable with messages lacked memory
            throw std::bad_alloc();
        }
    }
}

void qblFromStd(const QBLFileLocation& where) { qblRethrowTranslated(where); }
