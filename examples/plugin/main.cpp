// plugin FILE: loads a plug-in, lets it throw each class of throwables, and catches each by its
// type. Exit status: 0 if all were caught, 1 if not or if loading failed, 2 for a usage error.
#include <dlfcn.h>

#include <cstdio>

#include "Faults.hpp"
#include "QBLCore/Exceptions/QBLThrow.hpp"
#include "QBLCore/PlugIns/QBLPluginLibraryLoader.hpp"

namespace {

typedef void (*Throw)(PluginFault);

template <class Function>
Function entry(void* plugin, const char* name) {
    void* found = dlsym(plugin, name);
    if (found == nullptr) QBL_THROW(QBLSystemError(0, name));
    return reinterpret_cast<Function>(found);
}

/// Returns true if a fault is caught by its own type. Prints the latest entry of its back-trace.
template <class Fault>
bool arrives(Throw throwFault, PluginFault number, const char* name) {
    try {
        throwFault(number);
    } catch (Fault& fault) {
        std::printf("%s: %s\n", name,
                    fault.getBackTrace().begin() != fault.getBackTrace().end()
                        ? *fault.getBackTrace().begin()
                        : "no trace");
        return true;
    } catch (QBLThrowable& other) {
        std::printf("%s arrives as %s\n", name, other.getThrowableName());
    } catch (...) {
        std::printf("%s arrives as something unknown\n", name);
    }
    return false;
}

bool allArrive(Throw throwFault) {
    bool all = true;
#define FAULT(Class, arguments) all = arrives<Class>(throwFault, k##Class, #Class) && all;
    PLUGIN_FAULTS(FAULT)
#undef FAULT
    return all;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fprintf(stderr, "usage: plugin FILE\n");
        return 2;
    }
    try {
        void* plugin = QBLPluginLibraryLoader::load(argv[1]);
        typedef void (*Entry)();
        QBLPluginLibraryLoader::initialize(plugin, entry<Entry>(plugin, "faultsInitialize"));
        const bool all = allArrive(entry<Throw>(plugin, "faultsThrow"));
        QBLPluginLibraryLoader::terminate(plugin, entry<Entry>(plugin, "faultsTerminate"));
        QBLPluginLibraryLoader::unload(plugin);
        return all ? 0 : 1;
    } catch (QBLThrowable& error) {
        std::fprintf(stderr, "plugin: %s\n", error.toString());
    }
    return 1;
}
