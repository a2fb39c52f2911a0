#include "QBLCore/Resources/QBLCatalogueSettings.hpp"

#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <climits>
#include <cstdlib>
#include <set>

#include "QBLCore/Base/QBLImmortal.hpp"
#include "QBLCore/Exceptions/QBLAllocation.hpp"
#include "QBLCore/FileManagement/QBLFmDir.hpp"
#include "QBLCore/Resources/QBLResourceFactory.hpp"
#include "QBLCore/Threads/QBLThreadCriticalSection.hpp"
#include "QBLCore/Threads/QBLThreadGuard.hpp"
#include "i18n/cpp/i18n_internal_resources.hpp"
#include "i18n/cpp/resources/i18n_bin_dir.hpp"

namespace {

struct Settings {
    QBLThreadCriticalSection lock{0};
    std::list<std::string> directories QBL_GUARDED_BY(lock);
    // All lists that have been set. None is removed, because other threads may still use it.
    std::set<std::string> locales QBL_GUARDED_BY(lock);
};

// The list in use, an element of Settings::locales; null means "en".
std::atomic<const char*> g_pLocales{nullptr};

/// Returns the path of the running program; empty if it is not known.
std::string programPath() {
    char path[PATH_MAX];
    const ssize_t length = readlink("/proc/self/exe", path, sizeof path);
    // A path that fills the buffer may be truncated.
    if (length <= 0 || length == static_cast<ssize_t>(sizeof path)) return std::string();
    return std::string(path, static_cast<std::size_t>(length));
}

/// For a program DIR/bin/PROGRAM, appends DIR/share/PROGRAM and DIR/bin.
void addOfProgram(std::list<std::string>& directories) {
    const std::string program = programPath();
    const std::size_t name = program.rfind('/');
    if (name == std::string::npos) return;
    const std::string own = program.substr(0, name);
    const std::size_t last = own.rfind('/');
    if (last != std::string::npos)
        directories.push_back(own.substr(0, last) + "/share" + program.substr(name));
    if (!own.empty()) directories.push_back(own);
}

}  // namespace

void QBLCatalogueSettings::addDirectory(const std::string& path) {
    if (path.empty()) return;
    QBL_ALLOC_TRY
    std::list<std::string> added(1, path);
    QBLFmDir::resolveEffectivePath(added.front());
    auto& settings = qblImmortal<Settings>();
    QBLThreadGuard guard(settings.lock);
    std::list<std::string>& all = settings.directories;
    if (std::find(all.begin(), all.end(), added.front()) == all.end()) all.splice(all.end(), added);
    QBL_ALLOC_CATCH
}

void QBLCatalogueSettings::setDefaultLocales(const char* localeIDs) {
    if (localeIDs == nullptr || *localeIDs == '\0') {
        g_pLocales.store(nullptr, std::memory_order_release);
        return;
    }
    QBL_ALLOC_TRY
    auto& settings = qblImmortal<Settings>();
    QBLThreadGuard guard(settings.lock);
    const std::string& kept = *settings.locales.emplace(localeIDs).first;
    g_pLocales.store(kept.c_str(), std::memory_order_release);
    QBL_ALLOC_CATCH
}

void QBLCatalogueSettings::useLocalesOfUser() {
    for (const char* name : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
        const char* const value = std::getenv(name);
        if (value == nullptr || *value == '\0') continue;
        const std::string locale(value);
        const bool isPlain = locale == "C" || locale == "POSIX" || locale.compare(0, 2, "C.") == 0;
        return setDefaultLocales(isPlain ? nullptr : value);
    }
    setDefaultLocales(nullptr);
}

const char* QBLCatalogueSettings::getDefaultLocales() {
    const char* const locales = g_pLocales.load(std::memory_order_acquire);
    return locales != nullptr ? locales : QBLResourceFactory::g_defaultLocaleID;
}

std::list<std::string> QBLCatalogueSettings::getDirectories() {
    QBL_ALLOC_TRY
    std::list<std::string> all;
    {
        auto& settings = qblImmortal<Settings>();
        QBLThreadGuard guard(settings.lock);
        all = settings.directories;
    }
    const std::size_t added = all.size();
    all.emplace_back();
    all.push_back(I18NInternalResources::getDataDirectoryPath());
    all.push_back(i18nShareDirectory());
    addOfProgram(all);
    std::set<std::string> known;
    std::size_t place = 0;
    all.remove_if([&](const std::string& directory) {
        return place++ != added && (directory.empty() || !known.insert(directory).second);
    });
    return all;
    QBL_ALLOC_CATCH
}
