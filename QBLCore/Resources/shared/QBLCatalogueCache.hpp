#ifndef QBLCORE_RESOURCES_SHARED_QBLCATALOGUECACHE_HPP
#define QBLCORE_RESOURCES_SHARED_QBLCATALOGUECACHE_HPP

#include <memory>
#include <string>

class QBLCatalogue;

/// What the process remembers of message files: the names of the files that were found, and the
/// catalogues that were read from some of them. Failures are not remembered.
///
/// Threads: any thread. No file is opened or examined under the lock.
class QBLCatalogueCache {
public:
    QBLCatalogueCache() = delete;

    /// A key for a base name and a list of locales.
    static std::string keyOf(const std::string& baseName, const char* localeIDs);
    static bool findName(const std::string& key, std::string& fileName);
    static void keepName(const std::string& key, const std::string& fileName);

    /// Returns the catalogue of a file that was found before, as the file is now. If the catalogue
    /// is in the cache and current, this calls statx(2) once; otherwise it reads the file.
    /// @return null if the caller has to find or open the file itself
    static std::shared_ptr<const QBLCatalogue> get(const std::string& baseName,
                                                   const char* localeIDs);
};

#endif
