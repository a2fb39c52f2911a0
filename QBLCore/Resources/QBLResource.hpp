#ifndef QBLCORE_RESOURCES_QBLRESOURCE_HPP
#define QBLCORE_RESOURCES_QBLRESOURCE_HPP

#include <string>

#include "QBLCore/Frame/QBLExport.h"

/// A catalogue of texts by their identifiers, in one file and for one locale.
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

    /// @return false if the file is not there, not readable, or none of its format
    [[nodiscard]] virtual bool open() = 0;
    virtual void close() = 0;
    /// Whether the file is open, which says nothing about the texts: those of a resource that was
    /// read as a whole are there with the file closed.
    virtual bool isOpen() = 0;
    /// @param id  of 32 bits
    /// @param text  receives the text, which belongs to the resource; untouched without one
    /// @return whether there is a text for the identifier
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
