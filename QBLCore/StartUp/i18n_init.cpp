#include "i18n/cpp/i18n_init.h"

#include "QBLCore/Base/QBLImmortal.hpp"
#include "QBLCore/Exceptions/QBLAllocation.hpp"
#include "QBLCore/Threads/QBLThreadCriticalSection.hpp"
#include "QBLCore/Threads/QBLThreadGuard.hpp"
#include "TavThread/shared/TavContain.hpp"
#include "i18n/cpp/converter/i18n_holders.hpp"
#include "i18n/cpp/i18n_internal_resources.hpp"
#include "i18n/cpp/locale/i18n_icu.hpp"

namespace {

/// The count of starts, and the lock that every start and stop holds from begin to end.
struct Layer {
    QBLThreadCriticalSection lock{0};
    int starts QBL_GUARDED_BY(lock) = 0;
};

void start() {
    I18NInternalResources::setDataDirectoryPath();
    i18nWarmUpICU();
    I18NInternalResources::getInternalResources().loadSequenceTable();
    i18nCreateConverters();
    i18nSetInitialized(true);
}

/// Undoes start(): stops the parts of the layer that have been started. The caller holds the lock.
void stop() {
    i18nSetInitialized(false);
    I18NInternalResources::getInternalResources().release();
}

}  // namespace

void I18NInitialize() {
    QBL_ALLOC_TRY
    Layer& layer = qblImmortal<Layer>();
    QBLThreadGuard guard(layer.lock);
    if (layer.starts == 0) {
        try {
            start();
        } catch (...) {
            tavContain(stop);  // the caller gets the error of the start
            throw;
        }
    }
    ++layer.starts;
    QBL_ALLOC_CATCH
}

void I18NTerminate() {
    Layer& layer = qblImmortal<Layer>();
    QBLThreadGuard guard(layer.lock);
    if (layer.starts == 0 || --layer.starts > 0) return;
    stop();
}
