#include "QBLCore/Resources/QBLResourceFactory.hpp"

#include <algorithm>
#include <cctype>
#include <cstring>
#include <memory>
#include <unordered_set>

#include "QBLCore/Base/QBLFileLook.hpp"
#include "QBLCore/Exceptions/QBLAllocation.hpp"
#include "QBLCore/Exceptions/QBLThrow.hpp"
#include "QBLCore/FileManagement/QBLFmDir.hpp"
#include "QBLCore/Resources/QBLCatalogueSettings.hpp"
#include "QBLCore/Resources/QBLResourceBMF.hpp"
#include "QBLCore/Resources/shared/QBLCatalogueCache.hpp"
#include "QBLCore/Utility/QBLUtStrTok.hpp"
#include "i18n/cpp/i18n_locale.hpp"

namespace {

bool isFileName(const std::string& baseName) {
    const std::string extension = QBLResourceFactory::g_resourceFileExtension;
    return baseName.size() > extension.size() &&
           baseName.compare(baseName.size() - extension.size(), extension.size(), extension) == 0;
}

bool isPlainName(const char* text) {
    return std::all_of(text, text + std::strlen(text),
                       [](unsigned char c) { return std::isalnum(c) != 0; });
}

/// Returns the names to search for, the most specific name first. The locales add only letters,
/// digits and "_" to the base name, even if the list contains other characters.
std::list<std::string> fileNames(const std::string& baseName, const char* localeIDs) {
    if (isFileName(baseName)) return {baseName};
    std::list<std::string> names;
    std::unordered_set<std::string> known;
    const auto add = [&](const std::string& suffix) {
        const std::string name = baseName + suffix + QBLResourceFactory::g_resourceFileExtension;
        if (known.insert(name).second) names.push_back(name);
    };
    QBLUtStrTok tokens(localeIDs);
    std::string token;
    while (tokens.nextToken(token)) {
        const I18NLocale locale(token.c_str());
        const std::string language = std::string("_") + locale.getLanguage();
        if (language.size() == 1 || !isPlainName(locale.getLanguage())) continue;
        if (*locale.getCountry() != '\0' && isPlainName(locale.getCountry()))
            add(language + "_" + locale.getCountry());
        add(language);
    }
    add(std::string("_") + QBLResourceFactory::g_defaultLocaleID);
    add(std::string());
    return names;
}

/// @param sure  receives true if all candidates before the result could be checked
std::string findFile(const std::string& baseName, const char* localeIDs, bool& sure) {
    sure = true;
    for (const std::string& candidate : QBLResourceFactory::getCandidates(baseName, localeIDs)) {
        const QBLFileLook seen = qblLookForFile(candidate.c_str());
        if (seen == QBLFileLook::kThere) return candidate;
        sure = sure && seen == QBLFileLook::kNotThere;
    }
    return std::string();
}

}  // namespace

QBLResource* QBLResourceFactory::findAndGet(const std::string& baseName, const char* localeID,
                                            int preload) {
    QBL_ALLOC_TRY
    const char* locales =
        localeID != nullptr ? localeID : QBLCatalogueSettings::getDefaultLocales();
    const std::string key = QBLCatalogueCache::keyOf(baseName, locales);
    std::string fileName;
    if (findFromMap(key, fileName)) {
        QBLResource* resource = get(fileName, locales, preload);
        if (resource != nullptr) return resource;
        // The remembered file no longer exists; another file may exist now.
    }
    bool sure = true;
    fileName = findFile(baseName, locales, sure);
    if (fileName.empty()) return nullptr;
    if (sure) cacheToMap(key, fileName);
    return get(fileName, locales, preload);
    QBL_ALLOC_CATCH
}

std::string QBLResourceFactory::find(const std::string& baseName, const char* localeIDs) {
    QBL_ALLOC_TRY
    bool sure = true;
    return findFile(baseName, localeIDs, sure);
    QBL_ALLOC_CATCH
}

std::list<std::string> QBLResourceFactory::getCandidates(const std::string& baseName,
                                                         const char* localeID) {
    QBL_ASSERT(localeID != NULL);
    QBL_ALLOC_TRY
    const bool hasDirectory = baseName.find('/') != std::string::npos;
    std::list<std::string> directories(1);  // "" is the effective working directory
    if (!hasDirectory) directories = QBLCatalogueSettings::getDirectories();
    std::list<std::string> candidates;
    for (const std::string& name : fileNames(baseName, localeID))
        for (const std::string& directory : directories) {
            std::string path = directory;
            if (path.empty()) {
                path = name;
                QBLFmDir::resolveEffectivePath(path);
            } else {
                QBLFmDir::joinPath(path, name.c_str());
            }
            candidates.push_back(path);
        }
    return candidates;
    QBL_ALLOC_CATCH
}

QBLResource* QBLResourceFactory::get(const std::string& fileName, const char* localeID,
                                     int preload) {
    QBL_ALLOC_TRY
    auto resource = std::make_unique<QBLResourceBMF>(preload);
    resource->setResourceFileName(fileName);
    resource->setResourceLocaleID(localeID != nullptr ? localeID
                                                      : QBLCatalogueSettings::getDefaultLocales());
    return resource->open() ? resource.release() : nullptr;
    QBL_ALLOC_CATCH
}

void QBLResourceFactory::release(QBLResource*& resource) {
    delete resource;
    resource = nullptr;
}

bool QBLResourceFactory::findFromMap(const std::string& key, std::string& fileName) {
    return QBLCatalogueCache::findName(key, fileName);
}

void QBLResourceFactory::cacheToMap(const std::string& key, const std::string& fileName) {
    QBLCatalogueCache::keepName(key, fileName);
}
