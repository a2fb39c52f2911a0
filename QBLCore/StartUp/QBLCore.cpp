#include "QBLCore/Frame/QBLCore.h"

#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <new>

#include "QBLCore/Base/QBLImmortal.hpp"
#include "QBLCore/Base/QBLNoCancel.hpp"
#include "QBLCore/Exceptions/QBLAllocation.hpp"
#include "QBLCore/QBLCustodian/QBLCustodian.hpp"
#include "QBLCore/Threads/QBLThreadCriticalSection.hpp"
#include "QBLCore/Threads/QBLThreadGuard.hpp"
#include "QBLCore/Threads/QBLThreadProcess.h"
#include "QBLCore/Utility/QBLHighResolutionTime.hpp"
#include "i18n/cpp/i18n_pooledstring.hpp"

namespace {

const char kName[] = "QBL 1.0";
const unsigned kMajor = 1;
const unsigned kMinor = 0;

const int kNotStarted = -2;
const int kSubsystemFailed = -3;

/// The count of starts, and the lock that every start and stop holds from begin to end.
struct Library {
    QBLThreadCriticalSection refCountLock{0};
    int refCount = 0;  // guarded by refCountLock
};

// Created when the library is loaded, so that no start can fail to create it.
Library& g_library = qblImmortal<Library>();

bool isCompatible(int major, int minor) {
    return major == static_cast<int>(kMajor) && minor <= static_cast<int>(kMinor);
}

int storeVersion(unsigned* major, unsigned* minor) {
    if (major != nullptr) *major = kMajor;
    if (minor != nullptr) *minor = kMinor;
    return 0;
}

}  // namespace

// A failed start is deliberately lenient. It counts, so that the caller can stop the library once.
// After a failed step, the later steps are still taken.
int qblCoreInitialize() {
    const QBLNoCancel noCancel;
    QBLThreadGuard guard(g_library.refCountLock);
    if (++g_library.refCount != 1) return 0;
    int result = 0;
    QBL_ALLOC_TRY
    if (qblThreadProcessInitialize(kName) < 0) result = kSubsystemFailed;
    if (!QBLCustodian::initialize()) {
        result = kSubsystemFailed;
        qblThreadProcessTerminate(kName);
    }
    if (!QBLHighResolutionTime::initialize()) {
        result = kSubsystemFailed;
        qblThreadProcessTerminate(kName);
    }
    I18NPooledString::initialize();
    QBL_ALLOC_CATCH
    return result;
}

int qblCoreTerminate() {
    const QBLNoCancel noCancel;
    QBLThreadGuard guard(g_library.refCountLock);
    if (g_library.refCount <= 0) return kNotStarted;
    if (--g_library.refCount > 0) return 0;
    I18NPooledString::terminate();
    QBLHighResolutionTime::terminate();
    QBLCustodian::terminate();
    return qblThreadProcessTerminate(kName) < 0 ? kSubsystemFailed : 0;
}

int qblCoreGetApiVersion(unsigned* major, unsigned* minor) { return storeVersion(major, minor); }

int qblCoreIsCompatibleWith(int major, int minor) { return isCompatible(major, minor) ? 0 : -1; }

int qblInitialize() { return qblCoreInitialize(); }

int qblTerminate() { return qblCoreTerminate(); }

int qblGetApiVersion(unsigned* major, unsigned* minor) { return storeVersion(major, minor); }

int qblIsCompatibleWith(int major, int minor) {
    return isCompatible(major, minor) ? qblCoreIsCompatibleWith(kMajor, kMinor) : -1;
}

QBLNewHandler qblSetNewHandler(QBLNewHandler handler) { return std::set_new_handler(handler); }

int qblSetBatchMode() {
    errno = 0;
    // The result of nice() does not show success, because -1 is a legal niceness.
    [[maybe_unused]] const int niceness = nice(4);
    return errno == 0 ? 1 : 0;
}

int qblErrorGetText() {
    std::puts("qblErrorGetText not yet implemented");
    return 0;
}
