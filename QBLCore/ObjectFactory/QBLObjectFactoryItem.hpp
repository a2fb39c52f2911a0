#ifndef QBLCORE_OBJECTFACTORY_QBLOBJECTFACTORYITEM_HPP
#define QBLCORE_OBJECTFACTORY_QBLOBJECTFACTORYITEM_HPP

#include <atomic>

#include "QBLCore/ObjectFactory/QBLObjectFactory.hpp"

/// Base of the objects that a QBLObjectFactory makes, on the heap. Whoever is handed one gives it
/// back by release(), and never deletes it.
///
/// Threads: an item belongs to whom it was handed out to.
class QBL_API QBLObjectFactoryItem {
public:
    /// @param factory  which the item goes back to, and which must be there until then for an item
    ///     that no creation hands out; null for an item that release() deletes
    explicit QBLObjectFactoryItem(QBLObjectFactory* factory);
    QBLObjectFactoryItem(const QBLObjectFactoryItem&) = delete;
    QBLObjectFactoryItem& operator=(const QBLObjectFactoryItem&) = delete;
    virtual ~QBLObjectFactoryItem();

    /// Gives the item back to its factory, after cleanObject(), or deletes it where there is none.
    /// A second release before the item is handed out again is ignored.
    /// @throws as QBLObjectFactory::releaseObject, and what cleanObject() throws
    virtual void release();
    /// The very pointer under which the item's class was registered.
    virtual char* getClassId() = 0;
    /// Resets the item before it is used again; does nothing here.
    virtual void cleanObject();

private:
    friend class QBLObjectFactory;

    QBLObjectFactory* m_pFactory;              // null for an item of its own
    QBLObjectFactory::LISTS_STRUCT* m_pLists;  // those of its class, once it is the factory's
    std::atomic<bool> m_free;                  // waits to be handed out
};

#endif
