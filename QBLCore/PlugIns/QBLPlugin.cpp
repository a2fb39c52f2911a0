#include "QBLCore/PlugIns/QBLPlugin.hpp"

#include <dlfcn.h>

#include <atomic>
#include <exception>

#include "QBLCore/Base/QBLNoCancel.hpp"
#include "QBLCore/Exceptions/QBLThrow.hpp"
#include "QBLCore/Messages/QBLMessageString.hpp"
#include "QBLCore/PlugIns/QBLPluginException.hpp"
#include "QBLCore/PlugIns/QBLPluginLibraryLoader.hpp"

namespace {

const char kEntry[] = "QBLPlugin::entry";
const char kNoName[] = "There is no name.";
const char kNull[] = "Its address is null.";

/// Returns true if an exception of the calling thread may need the code of a plug-in.
bool isExceptionAlive() {
    return std::uncaught_exceptions() != 0 || std::current_exception() != nullptr;
}

}  // namespace

struct QBLPlugin::Library {
    void* handle = nullptr;
    std::atomic<bool> stays{false};

    Library() = default;
    Library(const Library&) = delete;
    Library& operator=(const Library&) = delete;
    /// A handle that is not closed keeps the plug-in loaded.
    ~Library() {
        if (handle == nullptr || stays || isExceptionAlive()) return;
        const QBLNoCancel noCancel;  // static destructors of the plug-in may contain such points
        dlclose(handle);
    }
};

QBLPlugin::QBLPlugin(const std::string& path, Mode mode) {
    QBL_ALLOC_TRY
    m_pLibrary = std::make_shared<Library>();
    QBL_ALLOC_CATCH
    m_pLibrary->stays = mode == kResident;
    m_pLibrary->handle = QBLPluginLibraryLoader::load(path);
}

QBLPlugin::QBLPlugin(const QBLPlugin& other) noexcept = default;
QBLPlugin& QBLPlugin::operator=(const QBLPlugin& other) noexcept = default;
QBLPlugin::~QBLPlugin() = default;

void QBLPlugin::keepLoaded() const noexcept { m_pLibrary->stays = true; }

void* QBLPlugin::find(const char* name) const {
    void* found = name != nullptr ? dlsym(m_pLibrary->handle, name) : nullptr;
    if (found != nullptr) return found;
    const char* reason = name != nullptr ? dlerror() : kNoName;
    QBLPluginException error(QBLSeverityError, QBLPluginEntryMissing);
    error << QBLMessageString(reason != nullptr ? reason : kNull);
    QBL_THROW_NAMED(error, kEntry);
}
