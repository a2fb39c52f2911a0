#ifndef QBLCORE_PLUGINS_QBLPLUGINLIBRARYLOADER_HPP
#define QBLCORE_PLUGINS_QBLPLUGINLIBRARYLOADER_HPP

#include <string>

#include "QBLCore/Frame/QBLExport.h"
#include "QBLCore/Frame/QBLLanguage.hpp"

/// Loads shared objects into the process and unloads them.
///
/// A plug-in may be built with hidden visibility: if it throws exceptions of the library's classes,
/// catch clauses still recognise them. Exceptions of the plug-in's own classes, and all their
/// copies, must be destroyed before the plug-in is unloaded.
///
/// Loading runs the code in the file and trusts it. Anyone who can write to the file, to its
/// directory or to a directory that the system searches can make the process run any code. A
/// damaged file may end the process. An exception that leaves a static constructor of the plug-in
/// ends the process.
///
/// Threads: any thread may call any operation.
///
///     void* plugin = QBLPluginLibraryLoader::load("plugins/libdisk.so");
///     auto start = reinterpret_cast<void (*)()>(dlsym(plugin, "diskInitialize"));
///     QBLPluginLibraryLoader::initialize(plugin, start);
class QBL_API QBLPluginLibraryLoader {
public:
    QBLPluginLibraryLoader() = delete;

    /// Loads a shared object. Functions that it calls are bound at their first call. Loads are
    /// counted: each load needs its own unload.
    /// @param path  resolved by QBLFmDir::resolveEffectivePath. Then dlopen(3) searches the
    ///     system's library directories for a name without "/", and replaces $ORIGIN, $LIB and
    ///     $PLATFORM in a path.
    /// @return the handle, for dlsym(3)
    /// @throws QBLPluginException 1, with the reason as its second message: the system's reason, or
    ///     that the file is not regular, or that the path is not valid; QBLOutOfMemoryError
    [[nodiscard]] static void* load(const std::string& path);
    /// Undoes one load. The last unload removes the plug-in. At that time, the program must no
    /// longer use functions, objects, threads or registered tasks of the plug-in.
    /// @param handle  from load(). There must not be more unloads than loads.
    /// @throws QBLPluginException 2, with the reason as its second message; QBLOutOfMemoryError
    static void unload(void* handle);
    /// Calls an entry point of a plug-in. Does nothing if the entry point is null.
    /// @throws the exceptions of the entry point
    static void initialize(void* handle, void (*entry)());
    static void terminate(void* handle, void (*entry)());
};

#endif
