#include "QBLCore/ObjectFactory/QBLObjectFactoryItem.hpp"

QBLObjectFactoryItem::QBLObjectFactoryItem(QBLObjectFactory* factory)
    : m_pFactory(factory), m_pLists(nullptr), m_free(false) {}

QBLObjectFactoryItem::~QBLObjectFactoryItem() = default;

void QBLObjectFactoryItem::release() {
    if (m_pFactory == nullptr) {
        delete this;
        return;
    }
    if (m_free.load(std::memory_order_acquire)) return;
    cleanObject();
    m_pFactory->releaseObject(this);
}

void QBLObjectFactoryItem::cleanObject() {}
