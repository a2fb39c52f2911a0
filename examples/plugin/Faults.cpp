// faults.so: a plug-in that exports only its entry points.
#include "Faults.hpp"

#include "QBLCore/Exceptions/QBLThrow.hpp"

namespace {

bool g_bStarted = false;

}  // namespace

extern "C" {

[[gnu::visibility("default")]] void faultsInitialize() { g_bStarted = true; }

[[gnu::visibility("default")]] void faultsTerminate() { g_bStarted = false; }

[[gnu::visibility("default")]] void faultsThrow(PluginFault fault) {
    if (!g_bStarted) return;
    switch (fault) {
#define FAULT(Class, arguments) \
    case k##Class:              \
        QBL_THROW(Class arguments);
        PLUGIN_FAULTS(FAULT)
#undef FAULT
    }
}

}  // extern "C"
