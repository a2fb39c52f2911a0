#ifndef QBLCORE_RESOURCES_QBLRESOURCEFACTORY_HPP
#define QBLCORE_RESOURCES_QBLRESOURCEFACTORY_HPP

#include <list>
#include <string>

#include "QBLCore/Frame/QBLExport.h"
#include "QBLCore/Frame/QBLLanguage.hpp"

class QBLResource;

/// Finds the message file of a catalogue for a locale. For "base" and "de_AT,fr", the factory takes
/// the first of these names that is a readable regular file:
///
///     base_de_AT.bmf  base_de.bmf  base_fr.bmf  base_en.bmf  base.bmf
///
/// If the base name contains a directory, the factory searches only there;
/// QBLFmDir::resolveEffectivePath() resolves a relative directory. Otherwise it looks for each name
/// in these directories, in this order:
///
///  - the directories added by QBLCatalogueSettings::addDirectory();
///  - the effective working directory;
///  - the installation's bin directory, if the library has determined it; I18NInitialize() and the
///    first converter do this;
///  - share/qblcore next to the library's directory, or next to the parent of that directory;
///  - for a program DIR/bin/PROGRAM: DIR/share/PROGRAM, and then DIR/bin.
///
/// A base name that ends with ".bmf" is the name of the file itself, for every locale.
///
/// The process remembers the file that was found for a base name and a list of locales. If no
/// file was found, the next call searches again.
///
/// Threads: any thread may call any operation.
class QBL_API QBLResourceFactory {
public:
    static constexpr char g_defaultLocaleID[] = "en";
    static constexpr char g_resourceFileExtension[] = ".bmf";

    QBLResourceFactory() = delete;

    /// @param localeID  locales in the order of preference, separated by blanks, commas or
    ///     semicolons; null means QBLCatalogueSettings::getDefaultLocales(), "en" by default
    /// @param preload  as for QBLResourceBMF
    /// @return the open resource, which the caller passes to release(); null if no file was found
    /// @throws QBLOutOfMemoryError
    [[nodiscard]] static QBLResource* findAndGet(const std::string& baseName, const char* localeID,
                                                 int preload);
    /// @return the file's name; empty if no file was found
    /// @throws QBLAssertError for null locales, QBLOutOfMemoryError
    static std::string find(const std::string& baseName, const char* localeIDs);
    /// Returns the paths of all files that find() looks for, in the order of the search, without
    /// duplicates.
    static std::list<std::string> getCandidates(const std::string& baseName, const char* localeIDs);
    /// Opens a file. @return the same as findAndGet()
    [[nodiscard]] static QBLResource* get(const std::string& fileName, const char* localeID,
                                          int preload);
    /// Destroys a resource and sets the pointer to null.
    static void release(QBLResource*& resource);

private:
    static bool findFromMap(const std::string& key, std::string& fileName);
    static void cacheToMap(const std::string& key, const std::string& fileName);
};

#endif
