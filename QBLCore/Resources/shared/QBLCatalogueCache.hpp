#ifndef QBLCORE_RESOURCES_SHARED_QBLCATALOGUECACHE_HPP
#define QBLCORE_RESOURCES_SHARED_QBLCATALOGUECACHE_HPP

#include <memory>
#include <string>

class QBLCatalogue;

/// The message files that the process remembers: the names of the files that were found, and the
/// catalogues that were read from some of these files. The cache does not remember failures.
///
/// Threads: any thread may call any operation. No file is opened or examined under the lock.
class QBLCatalogueCache {
public:
    QBLCatalogueCache() = delete;

    /// Returns the key for a base name and a list of locales.
    static std::string keyOf(const std::string& baseName, const char* localeIDs);
    static bool findName(const std::string& key, std::string& fileName);
    static void keepName(const std::string& key, const std::string& fileName);

    /// Returns the current catalogue of a file that was found before. If the catalogue is in the
    /// cache and is current, get() calls statx(2) once; otherwise it reads the file.
    /// @return null if the caller has to find or open the file itself
    static std::shared_ptr<const QBLCatalogue> get(const std::string& baseName,
                                                   const char* localeIDs);
};

#endif
