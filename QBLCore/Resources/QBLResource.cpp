#include "QBLCore/Resources/QBLResource.hpp"

#include "QBLCore/Exceptions/QBLAllocation.hpp"

QBLResource::QBLResource() = default;

QBLResource::~QBLResource() = default;

void QBLResource::setResourceFileName(const std::string& name) {
    QBL_ALLOC_TRY
    m_resourceFileName = name;
    QBL_ALLOC_CATCH
}

void QBLResource::setResourceLocaleID(const std::string& locale) {
    QBL_ALLOC_TRY
    m_resourceLocaleID = locale;
    QBL_ALLOC_CATCH
}
