#include "QBLCore/Frame/QBLCore.h"
#include "i18n/cpp/i18n_init.h"

/// Starts the library before the first input.
extern "C" int LLVMFuzzerInitialize(int*, char***) {
    qblCoreInitialize();
    I18NInitialize();
    return 0;
}
