#ifndef QBLCORE_RESOURCES_QBLCATALOGUESETTINGS_HPP
#define QBLCORE_RESOURCES_QBLCATALOGUESETTINGS_HPP

#include <list>
#include <string>

#include "QBLCore/Frame/QBLExport.h"

/// What a program sets once, at its start, so that its messages are found and are in the user's
/// language:
///
///     QBLCatalogueSettings::useLocalesOfUser();
///     QBLCatalogueSettings::addDirectory("/opt/product/messages");
///
/// Threads: any thread may call any operation. A message that another thread formats at the same
/// time uses the old settings or the new ones.
class QBL_API QBLCatalogueSettings {
public:
    QBLCatalogueSettings() = delete;

    /// Adds a directory in which QBLResourceFactory looks for catalogues. It looks into the added
    /// directories first, in the order in which they were added. A directory that was added before
    /// is not added again. Catalogues that were found before this call stay in use.
    /// @param path  an absolute path. QBLFmDir::resolveEffectivePath() resolves a relative path
    /// @throws QBLOutOfMemoryError
    static void addDirectory(const std::string& path);

    /// Sets the locales for messages that are formatted without a language. They are "en" until the
    /// first call. The process keeps each different list for the rest of its life.
    /// @param localeIDs  in the order of preference, separated by blanks, commas or semicolons;
    ///     null or an empty text means "en"
    /// @throws QBLOutOfMemoryError
    static void setDefaultLocales(const char* localeIDs);
    /// Calls setDefaultLocales() with the first of the environment variables LC_ALL, LC_MESSAGES
    /// and LANG that is set and is not empty. The locales "C" and "POSIX" mean "en". No thread may
    /// change the environment during this call.
    /// @throws QBLOutOfMemoryError
    static void useLocalesOfUser();
    /// @return the list of the last setDefaultLocales(); valid until the process ends
    static const char* getDefaultLocales();

    /// @return the directories in the order in which QBLResourceFactory looks into them. The first
    ///     entry after the added directories is empty and means the effective working directory.
    /// @throws QBLOutOfMemoryError
    static std::list<std::string> getDirectories();
};

#endif
