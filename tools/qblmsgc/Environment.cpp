#include "tools/qblmsgc/Environment.hpp"

#include <unistd.h>

#include <climits>
#include <cstdlib>

#include "QBLCore/FileManagement/QBLFmDir.hpp"
#include "QBLCore/Resources/QBLResourceFactory.hpp"

namespace msgc {

namespace {

const char kBaseName[] = "qblmsgcmsgs";

std::string findLocale() {
    for (const char* name : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
        const char* value = std::getenv(name);
        if (value == nullptr || *value == '\0') continue;
        std::string locale(value);
        if (locale == "C" || locale == "POSIX" || locale.compare(0, 2, "C.") == 0) break;
        return locale;
    }
    return QBLResourceFactory::g_defaultLocaleID;
}

std::string besideProgram() {
    char path[PATH_MAX];
    const ssize_t length = readlink("/proc/self/exe", path, sizeof path);
    std::string directory;
    if (length <= 0 ||
        !QBLFmDir::splitPath(std::string(path, static_cast<std::size_t>(length)).c_str(),
                             &directory, nullptr))
        return kBaseName;
    QBLFmDir::joinPath(directory, kBaseName);
    return directory;
}

std::string findCatalogue() {
    const std::string beside = besideProgram();
    const char* locale = userLocale().c_str();
    return QBLResourceFactory::find(beside, locale).empty() ? kBaseName : beside;
}

}  // namespace

const std::string& userLocale() {
    static const std::string locale = findLocale();
    return locale;
}

const std::string& ownCatalogue() {
    static const std::string base = findCatalogue();
    return base;
}

}  // namespace msgc
