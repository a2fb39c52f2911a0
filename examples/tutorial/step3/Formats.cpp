#include "Formats.hpp"

#include <dlfcn.h>

#include <memory>

#include "../step2/Errors.hpp"
#include "Format.hpp"
#include "QBLCore/Exceptions/QBLThrow.hpp"
#include "QBLCore/PlugIns/QBLPluginException.hpp"
#include "QBLCore/PlugIns/QBLPluginLibraryLoader.hpp"
#include "QBLCore/Threads/QBLThreadGuard.hpp"

namespace {

void release(Format* format) { format->release(); }

}  // namespace

Formats::~Formats() {
    m_factory.clearLists();  // deletes the plug-ins' objects while their code is still there
    for (const auto& [type, plugin] : m_plugins)
        if (plugin.handle != nullptr) QBLPluginLibraryLoader::unload(plugin.handle);
}

char* Formats::classOf(const std::string& type) try {
    const QBLThreadGuard guard(m_mutex);
    Plugin& plugin = m_plugins[type];
    if (plugin.handle == nullptr) plugin.handle = QBLPluginLibraryLoader::load("./" + type + ".so");
    if (plugin.classId == nullptr) {
        const auto enter = reinterpret_cast<FormatRegister>(dlsym(plugin.handle, "formatRegister"));
        QBL_ASSERT_NAMED(enter != nullptr, "a plug-in has formatRegister");
        plugin.classId = enter(m_factory);
    }
    return plugin.classId;
} catch (QBLPluginException& error) {
    error.addMessageFront(message(TALLY_NO_PLUGIN) << type.c_str());
    QBL_RETHROW(error);
}

int Formats::countLines(const std::string& type, const I18NString& text) {
    const std::unique_ptr<Format, void (*)(Format*)> format(
        static_cast<Format*>(m_factory.createObject(classOf(type))), release);
    return format->countLines(text);
}
