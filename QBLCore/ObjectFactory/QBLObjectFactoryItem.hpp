#ifndef QBLCORE_OBJECTFACTORY_QBLOBJECTFACTORYITEM_HPP
#define QBLCORE_OBJECTFACTORY_QBLOBJECTFACTORYITEM_HPP

#include <atomic>

#include "QBLCore/ObjectFactory/QBLObjectFactory.hpp"

/// Base of the objects that a QBLObjectFactory creates on the heap. The user of an item gives it
/// back with release(), and never deletes it.
///
/// Threads: an item belongs to the user to whom it was handed out.
class QBL_API QBLObjectFactoryItem {
public:
    /// @param factory  the factory to which the item goes back; null for an item that release()
    ///     deletes. If the program creates the item itself, without createObject(), the factory
    ///     must exist until the item is released.
    explicit QBLObjectFactoryItem(QBLObjectFactory* factory);
    QBLObjectFactoryItem(const QBLObjectFactoryItem&) = delete;
    QBLObjectFactoryItem& operator=(const QBLObjectFactoryItem&) = delete;
    virtual ~QBLObjectFactoryItem();

    /// Calls cleanObject(), then gives the item back to its factory. Deletes the item if it has no
    /// factory. Ignores a second release before the item is handed out again.
    /// @throws the exceptions of QBLObjectFactory::releaseObject() and of cleanObject()
    virtual void release();
    /// Returns the same pointer under which the item's class was registered.
    virtual char* getClassId() = 0;
    /// Resets the item before it is used again. This implementation does nothing.
    virtual void cleanObject();

private:
    friend class QBLObjectFactory;

    QBLObjectFactory* m_pFactory;              // null if release() deletes the item
    QBLObjectFactory::LISTS_STRUCT* m_pLists;  // data of its class; null until the factory owns it
    std::atomic<bool> m_free;                  // can be handed out
};

#endif
