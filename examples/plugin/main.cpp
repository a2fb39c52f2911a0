// plugin FILE: loads a plug-in, lets it throw each class of throwables, and catches each by its
// type. Exit status: 0 if all were caught, 1 if not or if loading failed, 2 for a usage error.
#include <cstdio>

#include "Faults.hpp"
#include "QBLCore/PlugIns/QBLPlugin.hpp"

namespace {

using Throw = QBLPluginEntry<void(PluginFault)>;

/// Returns true if a fault is caught by its own type. Prints the latest entry of its back-trace.
template <class Fault>
bool arrives(const Throw& throwFault, PluginFault number, const char* name) {
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

bool allArrive(const Throw& throwFault) {
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
        const QBLPlugin plugin(argv[1]);
        plugin.entry<void()>("faultsInitialize")();
        const bool all = allArrive(plugin.entry<void(PluginFault)>("faultsThrow"));
        plugin.entry<void()>("faultsTerminate")();
        return all ? 0 : 1;
    } catch (QBLThrowable& error) {
        std::fprintf(stderr, "plugin: %s\n", error.toString());
    }
    return 1;
}
