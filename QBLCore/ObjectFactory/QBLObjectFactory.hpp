#ifndef QBLCORE_OBJECTFACTORY_QBLOBJECTFACTORY_HPP
#define QBLCORE_OBJECTFACTORY_QBLOBJECTFACTORY_HPP

#include <atomic>
#include <cstddef>
#include <functional>
#include <map>

#include "QBLCore/Frame/QBLExport.h"
#include "QBLCore/Frame/QBLList.hpp"
#include "QBLCore/Frame/QBLThreadMonitor.hpp"
#include "QBLCore/Threads/QBLThreadCriticalSection.hpp"

class QBLObjectFactoryItem;

/// Makes objects by the id of their class, and keeps released ones to hand them out again: the one
/// released last first.
///
/// A class id is a pointer, and compared as one: an equal text at another address is another id.
///
/// Creators, cleanObject() and destructors of items are called without a lock, and may use the
/// factory, but not to create or release items while it is destroyed.
///
/// Errors: QBLOutOfMemoryError, after which the factory is as it was.
///
/// Threads: any thread may create, release and register. clearLists() and the destructor need that
/// nobody else uses the factory, or releases an item of it, at the same time.
///
///     char kind[] = "Connection";
///     factory.registerClass(kind, &Connection::make);
///     QBLObjectFactoryItem* item = factory.createObject(kind);
///     item->release();
class QBL_API QBLObjectFactory {
public:
    /// @name Making a factory
    /// @{

    /// Makes an item on the heap, for the factory that it is given. It may return null.
    typedef QBLObjectFactoryItem* (*Creator)(QBLObjectFactory*);

    QBLObjectFactory();
    /// As clearLists().
    ~QBLObjectFactory();
    QBLObjectFactory(const QBLObjectFactory&) = delete;
    QBLObjectFactory& operator=(const QBLObjectFactory&) = delete;
    /// @}

    /// @name Classes
    /// @{

    /// @param classId  not owned; must stay a valid pointer while it is registered
    /// @throws QBLIllegalStateError if the id is registered; QBLIllegalArgumentError without
    ///     creator
    void registerClass(char* classId, Creator creator);
    /// Takes a class away and deletes its free items.
    /// @throws QBLIllegalStateError if the id is not registered, or an item of the class is handed
    ///     out or being made
    void unregisterClass(char* classId);
    /// @}

    /// @name Items
    /// @{

    /// The item of the class that was released last, or a new one where none is free.
    /// @return the item, the caller's until it is released; null if the creator gave null
    /// @throws QBLIllegalStateError if the id is not registered; what the creator throws
    QBLObjectFactoryItem* createObject(char* classId);
    /// Keeps an item, with those of the class that its id names, for the next creation; programs
    /// call the item's release() instead. One that no creation has handed out becomes the
    /// factory's. A null item, or one that is free already, is ignored.
    /// @throws QBLIllegalStateError if the item's class is not registered, or another factory's
    void releaseObject(QBLObjectFactoryItem* item);
    /// Deletes all free items, and lets go of those handed out: their release() then deletes them.
    /// Classes stay registered.
    void clearLists();
    /// @}

private:
    friend class QBLObjectFactoryItem;
    struct LISTS_STRUCT;
    typedef QBLList<QBLObjectFactoryItem*> ItemList;
    typedef QBLThreadMonitor<QBLThreadCriticalSection, ItemList> Items;
    typedef std::map<char*, LISTS_STRUCT*, std::less<char*>> ClassMap;

    static constexpr std::size_t kRecent = 16;

    bool insert(char* classId, Creator creator);
    void keepUnused(LISTS_STRUCT* lists);
    static std::size_t placeOf(const char* classId);
    LISTS_STRUCT& listsOf(QBLObjectFactoryItem& item);
    QBLObjectFactoryItem* make(LISTS_STRUCT& lists);

    // Locks are taken in this order: that of the map, of a free list, of the list of all items.
    QBLThreadMonitor<QBLThreadCriticalSection, ClassMap> m_classes;  // owns the structs
    LISTS_STRUCT* m_pUnused;  // owned: those of no class, a list; guarded by the lock of the map
    // Structs found lately, by their classes' places: what spares the lock of the map. They may
    // serve another class by now.
    std::atomic<LISTS_STRUCT*> m_recent[kRecent];
};

#endif
