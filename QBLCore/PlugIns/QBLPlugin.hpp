#ifndef QBLCORE_PLUGINS_QBLPLUGIN_HPP
#define QBLCORE_PLUGINS_QBLPLUGIN_HPP

#include <memory>
#include <string>
#include <type_traits>
#include <utility>

#include "QBLCore/Exceptions/QBLAllocation.hpp"
#include "QBLCore/Frame/QBLExport.h"

template <class Signature>
class QBLPluginEntry;

/// An owner of a loaded plug-in. The copies of this object, the functions that entry() returns, and
/// the objects that own() returns are owners, too. The plug-in is unloaded when the last owner is
/// destroyed. In the following cases, it is not unloaded, but stays loaded until the process ends:
///
/// - An exception left a call of an entry. The exception, and copies of it in other threads or in a
///   QBLDeferredThrowable, may need the plug-in's code, and nobody can tell how long they live.
/// - The last owner is destroyed while its thread throws or handles an exception, whatever the
///   exception is. So an owner inside `try` does not unload the code that `catch` needs.
/// - The caller asks for this with `kResident` or keepLoaded().
///
/// Call keepLoaded() if other parts of the plug-in may outlive all owners: its threads, its
/// registered tasks and classes, or errors that left functions other than entries and are kept
/// after their handler. Code of the plug-in must not destroy the last owner.
///
/// Loading has the same rules and risks as QBLPluginLibraryLoader::load().
///
/// Threads: one thread at a time for each object; different owners of one plug-in: any. Destroying
/// the last owner runs the destructors of the plug-in's static objects.
///
///     const QBLPlugin plugin("plugins/libdisk.so");
///     const auto make = plugin.entry<Disk*(const char*)>("diskMake");
///     std::shared_ptr<Disk> disk = plugin.own(std::unique_ptr<Disk>(make(path)));
class QBL_API QBLPlugin {
public:
    enum Mode { kUnloadable, kResident };

    /// Loads a plug-in.
    /// @throws the exceptions of QBLPluginLibraryLoader::load()
    explicit QBLPlugin(const std::string& path, Mode mode = kUnloadable);
    QBLPlugin(const QBLPlugin& other) noexcept;
    QBLPlugin& operator=(const QBLPlugin& other) noexcept;
    ~QBLPlugin();

    /// Returns a function of the plug-in.
    /// @tparam Function  the type of the function, such as void(int), or of a pointer to it; may be
    ///     noexcept. Nobody checks that the function has this type.
    /// @throws QBLPluginException 3, with the system's reason as its second message, if the plug-in
    ///     does not export the name; QBLOutOfMemoryError
    template <class Function>
    [[nodiscard]] QBLPluginEntry<std::remove_pointer_t<Function>> entry(const char* name) const;

    /// Shares the ownership of an object of the plug-in, so that the plug-in stays loaded until the
    /// object is deleted. If Deleter is a reference, the deleter must live that long, too.
    /// @throws QBLOutOfMemoryError after deleting the object
    template <class Object, class Deleter>
    [[nodiscard]] std::shared_ptr<Object> own(std::unique_ptr<Object, Deleter> object) const;

    /// Keeps the plug-in loaded until the process ends. Any thread may call it.
    void keepLoaded() const noexcept;

private:
    struct Library;

    void* find(const char* name) const;

    std::shared_ptr<Library> m_pLibrary;
};

/// A function of a plug-in, and an owner of the plug-in.
///
/// Threads: as with QBLPlugin; any threads may call it at the same time if the function allows it.
template <class Result, class... Arguments>
class QBLPluginEntry<Result(Arguments...)> {
public:
    QBLPluginEntry(const QBLPlugin& plugin, Result (*function)(Arguments...))
        : m_plugin(plugin), m_pFunction(function) {}

    /// Calls the function. If an exception leaves the function, or if the thread ends inside it,
    /// the plug-in stays loaded.
    Result operator()(Arguments... arguments) const {
        try {
            return m_pFunction(std::forward<Arguments>(arguments)...);
        } catch (...) {
            m_plugin.keepLoaded();
            throw;
        }
    }

private:
    QBLPlugin m_plugin;
    Result (*m_pFunction)(Arguments...);
};

/// The same for a function that is declared noexcept.
///
/// Threads: as with QBLPlugin.
template <class Result, class... Arguments>
class QBLPluginEntry<Result(Arguments...) noexcept> : public QBLPluginEntry<Result(Arguments...)> {
public:
    using QBLPluginEntry<Result(Arguments...)>::QBLPluginEntry;
};

/// The deleter of an object that QBLPlugin::own() returns. The fields are destroyed in reverse
/// order: the plug-in last, because the code of the deleter may be in the plug-in.
///
/// Threads: as with QBLPlugin.
template <class Deleter>
struct QBLPluginDeleter {
    QBLPlugin plugin;
    Deleter deleter;

    template <class Object>
    void operator()(Object* object) {
        if (object != nullptr) deleter(object);
    }
};

template <class Function>
QBLPluginEntry<std::remove_pointer_t<Function>> QBLPlugin::entry(const char* name) const {
    return {*this, reinterpret_cast<std::remove_pointer_t<Function>*>(find(name))};
}

template <class Object, class Deleter>
std::shared_ptr<Object> QBLPlugin::own(std::unique_ptr<Object, Deleter> object) const {
    QBL_ALLOC_TRY
    QBLPluginDeleter<Deleter> deleter{*this, std::forward<Deleter>(object.get_deleter())};
    return std::shared_ptr<Object>(object.release(), std::move(deleter));
    QBL_ALLOC_CATCH
}

#endif
