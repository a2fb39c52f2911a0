#ifndef QBLCORE_RESOURCES_QBLRESOURCEFILE_HPP
#define QBLCORE_RESOURCES_QBLRESOURCEFILE_HPP

#include <string>

#include "QBLCore/Frame/QBLExport.h"
#include "QBLCore/Frame/QBLLanguage.hpp"

class QBLResource;

/// A catalogue for use in programs. The object finds the catalogue by its base name and locales.
/// The destructor releases the catalogue.
///
///     QBLResourceFile texts("myprogram", "de_AT de", 1);
///     char* text = nullptr;
///     if (texts.isOpen() && texts.getResource(104, &text)) show(text);
///
/// Errors: QBLOutOfMemoryError.
///
/// Threads: one thread at a time for each object; any number of threads may call getResource() of a
/// preloaded catalogue.
class QBL_API QBLResourceFile {
public:
    /// @param preload  as for QBLResourceBMF
    explicit QBLResourceFile(int preload);
    /// Also opens a catalogue; isOpen() returns true if this succeeded.
    QBLResourceFile(const std::string& baseName, const char* localeID, int preload);
    QBLResourceFile(const QBLResourceFile&) = delete;
    QBLResourceFile& operator=(const QBLResourceFile&) = delete;
    ~QBLResourceFile();

    /// Closes the catalogue if one is open, and opens another catalogue.
    /// @param localeID  as for QBLResourceFactory::findAndGet()
    /// @return false if there is no such catalogue
    bool open(const std::string& baseName, const char* localeID);
    /// Works as QBLResource::getResource().
    /// @throws QBLAssertError if nothing is open
    [[nodiscard]] bool getResource(unsigned long id, char** text);
    /// Works as QBLResourceBMF::getShape(); 0 if nothing is open.
    unsigned getShape() const;
    void close();
    bool isOpen() const { return m_resource != nullptr; }

private:
    QBLResource* m_resource;  // owned; null if nothing is open
    int m_preload;
};

#endif
