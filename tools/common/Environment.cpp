#include "tools/common/Environment.hpp"

#include <unistd.h>

#include <climits>

#include "QBLCore/FileManagement/QBLFmDir.hpp"
#include "QBLCore/Resources/QBLCatalogueSettings.hpp"
#include "QBLCore/Resources/QBLResourceFactory.hpp"

namespace tools {

std::string environmentLocale() {
    QBLCatalogueSettings::useLocalesOfUser();
    return QBLCatalogueSettings::getDefaultLocales();
}

Catalogue findCatalogue(const QBLTypedCatalogue& catalogue, const std::string& locales) {
    char path[PATH_MAX];
    const ssize_t length = readlink("/proc/self/exe", path, sizeof path);
    std::string beside;
    if (length <= 0 ||
        !QBLFmDir::splitPath(std::string(path, static_cast<std::size_t>(length)).c_str(), &beside,
                             nullptr))
        return {catalogue.name, catalogue.shape};
    QBLFmDir::joinPath(beside, catalogue.name);
    const bool isBeside = !QBLResourceFactory::find(beside, locales.c_str()).empty();
    return {isBeside ? beside : catalogue.name, catalogue.shape};
}

}  // namespace tools
