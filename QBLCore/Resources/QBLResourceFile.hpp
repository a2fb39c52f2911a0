#ifndef QBLCORE_RESOURCES_QBLRESOURCEFILE_HPP
#define QBLCORE_RESOURCES_QBLRESOURCEFILE_HPP

#include <string>

#include "QBLCore/Frame/QBLExport.h"

class QBLResource;

/// A catalogue as programs hold it: found by its base name and the locales wanted, and given back
/// at the end.
///
///     QBLResourceFile texts("myprogram", "de_AT de", 1);
///     char* text = nullptr;
///     if (texts.isOpen() && texts.getResource(104, &text)) show(text);
///
/// Errors: QBLOutOfMemoryError.
///
/// Threads: one at a time; a preloaded one can be asked by any number of threads.
class QBL_API QBLResourceFile {
public:
    /// @param preload  as of QBLResourceBMF
    explicit QBLResourceFile(int preload);
    /// The same, and opens it; isOpen() tells whether that worked.
    QBLResourceFile(const std::string& baseName, const char* localeID, int preload);
    QBLResourceFile(const QBLResourceFile&) = delete;
    QBLResourceFile& operator=(const QBLResourceFile&) = delete;
    ~QBLResourceFile();

    /// Closes what is open and opens another.
    /// @param localeID  as of QBLResourceFactory::findAndGet
    /// @return false if there is no such catalogue
    bool open(const std::string& baseName, const char* localeID);
    /// As QBLResource::getResource.
    /// @throws QBLAssertError when nothing is open
    [[nodiscard]] bool getResource(unsigned long id, char** text);
    void close();
    bool isOpen() const { return m_resource != nullptr; }

private:
    QBLResource* m_resource;  // owned; null when nothing is open
    int m_preload;
};

#endif
