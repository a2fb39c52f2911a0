#include "QBLCore/Exceptions/QBLStdBridge.hpp"

#include <atomic>
#include <memory>
#include <new>

#include "QBLCore/Exceptions/QBLAllocation.hpp"
#include "QBLCore/Exceptions/QBLThrowable.hpp"
#include "QBLCore/Exceptions/QBLUnknownError.hpp"
#include "QBLCore/Exceptions/QBLWhat.hpp"
#include "TavThread/shared/TavContain.hpp"

// A count of its own instead of std::shared_ptr keeps <memory> out of the header.
struct QBLStdBridge::Shared {
    explicit Shared(const QBLThrowable& e) : error(e.clone()) {}

    const std::unique_ptr<const QBLThrowable> error;
    std::atomic<unsigned int> holders{1};
};

QBLStdBridge::QBLStdBridge(const QBLThrowable& error)
    : std::runtime_error(qblWhat(error)), m_pShared(new Shared(error)) {}

QBLStdBridge::QBLStdBridge(const QBLStdBridge& other) noexcept
    : std::runtime_error(other), m_pShared(other.m_pShared) {
    m_pShared->holders.fetch_add(1, std::memory_order_relaxed);
}

QBLStdBridge& QBLStdBridge::operator=(const QBLStdBridge& other) noexcept {
    if (this == &other) return *this;
    std::runtime_error::operator=(other);
    other.m_pShared->holders.fetch_add(1, std::memory_order_relaxed);
    release();
    m_pShared = other.m_pShared;
    return *this;
}

QBLStdBridge::~QBLStdBridge() { release(); }

const QBLThrowable& QBLStdBridge::getThrowable() const noexcept { return *m_pShared->error; }

void QBLStdBridge::release() noexcept {
    if (m_pShared->holders.fetch_sub(1, std::memory_order_acq_rel) == 1) delete m_pShared;
}

namespace {

/// For handlers of exceptions that are not a std::exception.
[[noreturn]] void throwBridge(const QBLFileLocation& where) {
    try {
        qblRethrowTranslated(where);
    } catch (const QBLThrowable& error) {
        try {
            throw QBLStdBridge(error);
        } catch (const QBLThrowable&) {  // cloning a throwable with messages lacked memory
            throw std::bad_alloc();
        }
    }
}

}  // namespace

// A class may be both a std::exception and a throwable, so no handler for throwables encloses the
// `throw` of a std::exception.
TAV_CATCHES_UNWINDING void qblToStd(const QBLFileLocation& where) {
    try {
        throw;
    } catch (abi::__forced_unwind&) {
        throw;
    } catch (const std::exception&) {
        throw;
    } catch (...) {
        throwBridge(where);
    }
}

void qblFromStd(const QBLFileLocation& where) { qblRethrowTranslated(where); }
