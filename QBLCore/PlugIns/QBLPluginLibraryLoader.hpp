#ifndef QBLCORE_PLUGINS_QBLPLUGINLIBRARYLOADER_HPP
#define QBLCORE_PLUGINS_QBLPLUGINLIBRARYLOADER_HPP

#include <string>

#include "QBLCore/Frame/QBLExport.h"

/// Loads shared objects into the process and unloads them.
///
/// A plug-in may be built with hidden visibility: what it throws of the library's classes is caught
/// by its type. An exception of a class of its own must be gone, with all copies, before the
/// plug-in is unloaded.
///
/// Loading runs the file's code, and trusts what it holds: whoever can write to it, to its
/// directory or to one that the system searches can do what the process may. A damaged file may end
/// the process, and an exception that leaves a static constructor of the plug-in does.
///
/// Threads: any thread.
///
///     void* plugin = QBLPluginLibraryLoader::load("plugins/libdisk.so");
///     auto start = reinterpret_cast<void (*)()>(dlsym(plugin, "diskInitialize"));
///     QBLPluginLibraryLoader::initialize(plugin, start);
class QBL_API QBLPluginLibraryLoader {
public:
    QBLPluginLibraryLoader() = delete;

    /// Loads a shared object; functions that it calls are bound when they are called first. Each
    /// load of one that is loaded already is counted, and needs an unload of its own.
    /// @param path  as QBLFmDir::resolveEffectivePath sees it; a name without "/" is then looked
    ///     for where the system looks for libraries, as in dlopen(3), which also replaces $ORIGIN,
    ///     $LIB and $PLATFORM in a path
    /// @return the handle, as dlsym(3) takes it
    /// @throws QBLPluginException 1, with the reason as its second message: the system's, or that
    ///     this is no regular file or no path; QBLOutOfMemoryError
    [[nodiscard]] static void* load(const std::string& path);
    /// Takes a load back; the last one unloads the plug-in, of which nothing may be in use any more
    /// then: functions, objects, threads, registered tasks.
    /// @param handle  of load(), with no more unloads than loads
    /// @throws QBLPluginException 2, with the reason as its second message; QBLOutOfMemoryError
    static void unload(void* handle);
    /// Call an entry point of a plug-in; null does nothing.
    /// @throws what the entry point throws
    static void initialize(void* handle, void (*entry)());
    static void terminate(void* handle, void (*entry)());
};

#endif
