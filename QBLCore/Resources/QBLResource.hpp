#ifndef QBLCORE_RESOURCES_QBLRESOURCE_HPP
#define QBLCORE_RESOURCES_QBLRESOURCE_HPP

#include <string>

#include "QBLCore/Frame/QBLExport.h"
#include "QBLCore/Frame/QBLLanguage.hpp"

/// A catalogue, which maps identifiers to texts, in one file and for one locale.
///
/// Errors: QBLOutOfMemoryError.
///
/// Threads: not synchronised.
class QBL_API QBLResource {
public:
    QBLResource();
    QBLResource(const QBLResource&) = delete;
    QBLResource& operator=(const QBLResource&) = delete;
    virtual ~QBLResource();

    /// @return false if the file does not exist, cannot be read, or has another format
    [[nodiscard]] virtual bool open() = 0;
    virtual void close() = 0;
    /// Returns true if the file is open. This says nothing about the texts: a preloaded resource
    /// has its texts while the file is closed.
    virtual bool isOpen() = 0;
    /// @param id  a 32-bit identifier
    /// @param text  receives the text, which belongs to the resource; unchanged if there is no text
    /// @return true if there is a text for the identifier
    [[nodiscard]] virtual bool getResource(unsigned long id, char** text) = 0;

    const std::string& getResourceFileName() const { return m_resourceFileName; }
    void setResourceFileName(const std::string& name);
    const std::string& getResourceLocaleID() const { return m_resourceLocaleID; }
    void setResourceLocaleID(const std::string& locale);

private:
    std::string m_resourceFileName;
    std::string m_resourceLocaleID;
};

#endif
