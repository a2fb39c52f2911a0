#ifndef QBLCORE_RESOURCES_QBLRESOURCEFACTORY_HPP
#define QBLCORE_RESOURCES_QBLRESOURCEFACTORY_HPP

#include <list>
#include <string>

#include "QBLCore/Frame/QBLExport.h"

class QBLResource;

/// Finds the message file of a catalogue for a locale. For "base" and "de_AT,fr" these are looked
/// for, and the first that is a readable regular file is taken:
///
///     base_de_AT.bmf  base_de.bmf  base_fr.bmf  base_en.bmf  base.bmf
///
/// If the base name has a directory they are looked for in that, as QBLFmDir::resolveEffectivePath
/// sees it. Else in the effective working directory, then in the installation's bin directory, then
/// in share/qblcore beside the directory that the library was loaded from, or the one above it.
///
/// A base name that ends with ".bmf" is the name of the file itself, for whatever locale.
///
/// What was found for a base name and a list of locales is remembered for the process; what was not
/// is looked for again.
///
/// Threads: any thread.
class QBL_API QBLResourceFactory {
public:
    static constexpr char g_defaultLocaleID[] = "en";
    static constexpr char g_resourceFileExtension[] = ".bmf";

    QBLResourceFactory() = delete;

    /// @param localeID  locales, the best first, separated by blanks, commas or semicolons; null
    ///     means g_defaultLocaleID
    /// @param preload  as of QBLResourceBMF
    /// @return the resource, open, to be given back by release(); null if there is none
    /// @throws QBLOutOfMemoryError
    [[nodiscard]] static QBLResource* findAndGet(const std::string& baseName, const char* localeID,
                                                 int preload);
    /// @return the file's name; empty if there is none
    /// @throws QBLAssertError for null locales, QBLOutOfMemoryError
    static std::string find(const std::string& baseName, const char* localeIDs);
    /// All names that find() looks for, in their order, each once.
    static std::list<std::string> getCandidates(const std::string& baseName, const char* localeIDs);
    /// Opens a file. @return as findAndGet()
    [[nodiscard]] static QBLResource* get(const std::string& fileName, const char* localeID,
                                          int preload);
    /// Destroys a resource and sets the pointer to null.
    static void release(QBLResource*& resource);

private:
    static bool findFromMap(const std::string& key, std::string& fileName);
    static void cacheToMap(const std::string& key, const std::string& fileName);
};

#endif
