#include "QBLCore/Resources/QBLResourceFile.hpp"

#include "QBLCore/Exceptions/QBLThrow.hpp"
#include "QBLCore/Resources/QBLResourceBMF.hpp"
#include "QBLCore/Resources/QBLResourceFactory.hpp"

QBLResourceFile::QBLResourceFile(int preload) : m_resource(nullptr), m_preload(preload) {}

QBLResourceFile::QBLResourceFile(const std::string& baseName, const char* localeID, int preload)
    : QBLResourceFile(preload) {
    open(baseName, localeID);
}

QBLResourceFile::~QBLResourceFile() { close(); }

bool QBLResourceFile::open(const std::string& baseName, const char* localeID) {
    close();
    m_resource = QBLResourceFactory::findAndGet(baseName, localeID, m_preload);
    return isOpen();
}

bool QBLResourceFile::getResource(unsigned long id, char** text) {
    QBL_ASSERT(m_resource != NULL);
    return m_resource->getResource(id, text);
}

unsigned QBLResourceFile::getShape() const {
    const auto* const file = dynamic_cast<const QBLResourceBMF*>(m_resource);
    return file != nullptr ? file->getShape() : 0;
}

void QBLResourceFile::close() { QBLResourceFactory::release(m_resource); }
