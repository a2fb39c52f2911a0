#ifndef QBLCORE_RESOURCES_QBLCATALOGUESETTINGS_HPP
#define QBLCORE_RESOURCES_QBLCATALOGUESETTINGS_HPP

#include <list>
#include <string>

#include "QBLCore/Frame/QBLExport.h"
#include "QBLCore/Frame/QBLLanguage.hpp"

/// The settings with which the library finds the message catalogues of a program and chooses the
/// language of messages. A program usually sets them once, at its start:
///
///     QBLCatalogueSettings::useLocalesOfUser();
///     QBLCatalogueSettings::addDirectory("/opt/product/messages");
///
/// Threads: any thread may call any operation. A message that another thread formats at the same
/// time uses the old settings or the new ones.
class QBL_API QBLCatalogueSettings {
public:
    QBLCatalogueSettings() = delete;

    /// Adds a directory in which QBLResourceFactory looks for catalogues. The factory looks into
    /// the added directories first, in the order in which they were added. A directory that was
    /// added before is not added again, and an empty path is ignored. If the library has already
    /// found a catalogue, it continues to use that file.
    /// @param path  an absolute path. QBLFmDir::resolveEffectivePath() resolves a relative path
    /// @throws QBLOutOfMemoryError
    static void addDirectory(const std::string& path);

    /// Sets the locales for messages that are formatted without a language. The default is "en".
    /// The process keeps each different list until it ends.
    /// @param localeIDs  in the order of preference, separated by blanks, commas or semicolons;
    ///     null or an empty text means "en"
    /// @throws QBLOutOfMemoryError
    static void setDefaultLocales(const char* localeIDs);
    /// Calls setDefaultLocales() with the first of the environment variables LC_ALL, LC_MESSAGES
    /// and LANG that is set and is not empty. "POSIX", "C" and values that begin with "C." mean
    /// "en", which is also the result if there is no such variable. No thread may change the
    /// environment during this call.
    /// @throws QBLOutOfMemoryError
    static void useLocalesOfUser();
    /// @return the list that the last setDefaultLocales() has set; valid until the process ends
    static const char* getDefaultLocales();

    /// @return the directories in the order in which QBLResourceFactory looks into them. The first
    ///     entry after the added directories is empty and means the effective working directory.
    /// @throws QBLOutOfMemoryError
    static std::list<std::string> getDirectories();
};

#endif
