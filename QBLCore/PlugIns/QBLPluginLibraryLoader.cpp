#include "QBLCore/PlugIns/QBLPluginLibraryLoader.hpp"

#include <dlfcn.h>

#include <climits>

#include "QBLCore/Base/QBLFileStatus.hpp"
#include "QBLCore/Exceptions/QBLAllocation.hpp"
#include "QBLCore/Exceptions/QBLThrow.hpp"
#include "QBLCore/FileManagement/QBLFmDir.hpp"
#include "QBLCore/Messages/QBLMessageString.hpp"
#include "QBLCore/PlugIns/QBLPluginException.hpp"

namespace {

const char kLoad[] = "QBLPluginLibraryLoader::load";
const char kUnload[] = "QBLPluginLibraryLoader::unload";
const char kBadPath[] = "The path is empty or has a zero in it.";
const char kTooLong[] = "The path is too long.";
const char kNotAFile[] = "It is not a regular file.";
const char kNoHandle[] = "There is no handle.";
const char kNoReason[] = "The system gives no reason.";

/// Returns false if the file does not exist.
bool isSpecialFile(const char* path) {
    QBLFileStatus status;
    return status.get(path) && !status.isRegular();
}

QBLPluginException failure(QBLPluginErrorCode code, const char* reason) {
    QBLPluginException error(QBLSeverityError, code);
    error << QBLMessageString(reason != nullptr ? reason : kNoReason);
    return error;
}

}  // namespace

void* QBLPluginLibraryLoader::load(const std::string& path) {
    std::string resolved;
    QBL_ALLOC_TRY
    resolved = path;
    QBLFmDir::resolveEffectivePath(resolved);
    QBL_ALLOC_CATCH
    // For the system, an empty path means the program itself, and a NUL ends the path.
    if (path.empty() || path.find('\0') != std::string::npos)
        QBL_THROW_NAMED(failure(QBLPluginLoadFailed, kBadPath), kLoad);
    // dlopen(3) copies a name to the stack before it checks the length. If the path names a
    // pipe, dlopen waits until a writer opens it; during this wait no other thread can load
    // libraries.
    if (resolved.size() >= PATH_MAX) QBL_THROW_NAMED(failure(QBLPluginLoadFailed, kTooLong), kLoad);
    if (resolved.find('/') != std::string::npos && isSpecialFile(resolved.c_str()))
        QBL_THROW_NAMED(failure(QBLPluginLoadFailed, kNotAFile), kLoad);
    void* handle = dlopen(resolved.c_str(), RTLD_LAZY);
    if (handle == nullptr) QBL_THROW_NAMED(failure(QBLPluginLoadFailed, dlerror()), kLoad);
    return handle;
}

void QBLPluginLibraryLoader::unload(void* handle) {
    if (handle == nullptr) QBL_THROW_NAMED(failure(QBLPluginUnloadFailed, kNoHandle), kUnload);
    if (dlclose(handle) != 0) QBL_THROW_NAMED(failure(QBLPluginUnloadFailed, dlerror()), kUnload);
}

void QBLPluginLibraryLoader::initialize(void*, void (*entry)()) {
    if (entry != nullptr) entry();
}

void QBLPluginLibraryLoader::terminate(void*, void (*entry)()) {
    if (entry != nullptr) entry();
}
