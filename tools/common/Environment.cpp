#include "tools/common/Environment.hpp"

#include <unistd.h>

#include <climits>
#include <cstdlib>

#include "QBLCore/FileManagement/QBLFmDir.hpp"
#include "QBLCore/Resources/QBLResourceFactory.hpp"

namespace tools {

std::string environmentLocale() {
    for (const char* name : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
        const char* value = std::getenv(name);
        if (value == nullptr || *value == '\0') continue;
        std::string locale(value);
        if (locale == "C" || locale == "POSIX" || locale.compare(0, 2, "C.") == 0) break;
        return locale;
    }
    return QBLResourceFactory::g_defaultLocaleID;
}

std::string findCatalogue(const char* name, const std::string& locales) {
    char path[PATH_MAX];
    const ssize_t length = readlink("/proc/self/exe", path, sizeof path);
    std::string beside;
    if (length <= 0 ||
        !QBLFmDir::splitPath(std::string(path, static_cast<std::size_t>(length)).c_str(), &beside,
                             nullptr))
        return name;
    QBLFmDir::joinPath(beside, name);
    return QBLResourceFactory::find(beside, locales.c_str()).empty() ? name : beside;
}

}  // namespace tools
