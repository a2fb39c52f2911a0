#ifndef QBLCORE_OBJECTFACTORY_QBLOBJECTFACTORY_HPP
#define QBLCORE_OBJECTFACTORY_QBLOBJECTFACTORY_HPP

#include <atomic>
#include <cstddef>
#include <map>

#include "QBLCore/Frame/QBLExport.h"
#include "QBLCore/Frame/QBLList.hpp"
#include "QBLCore/Frame/QBLThreadMonitor.hpp"
#include "QBLCore/Threads/QBLThreadCriticalSection.hpp"

class QBLObjectFactoryItem;

/// Creates objects by the id of their class. Keeps released objects and hands them out again, the
/// last released object first.
///
/// A class id is a pointer and is compared as a pointer: the same text at another address is a
/// different id.
///
/// Creators, cleanObject() and destructors of items are called without a lock. They may use the
/// factory, but must not create or release items while it is being destroyed.
///
/// Errors: QBLOutOfMemoryError; this error does not change the factory.
///
/// Threads: any thread may create, release and register. While clearLists() or the destructor runs,
/// no other thread may use the factory or release one of its items.
///
///     char kind[] = "Connection";
///     factory.registerClass(kind, &Connection::make);
///     QBLObjectFactoryItem* item = factory.createObject(kind);
///     item->release();
class QBL_API QBLObjectFactory {
public:
    /// @name Making a factory
    /// @{

    /// Creates an item on the heap for the given factory. It may return null.
    typedef QBLObjectFactoryItem* (*Creator)(QBLObjectFactory*);

    /// @throws QBLOutOfMemoryError; QBLThreadResourceError if the system has no lock
    QBLObjectFactory();
    /// Does the work of clearLists().
    ~QBLObjectFactory();
    QBLObjectFactory(const QBLObjectFactory&) = delete;
    QBLObjectFactory& operator=(const QBLObjectFactory&) = delete;
    /// @}

    /// @name Classes
    /// @{

    /// @param classId  not owned; must stay a valid pointer while it is registered
    /// @throws QBLIllegalStateError if the id is already registered; QBLIllegalArgumentError if the
    ///     creator is null; the errors of the constructor
    void registerClass(char* classId, Creator creator);
    /// Removes a class and deletes its free items.
    /// @throws QBLIllegalStateError if the id is not registered, or if an item of the class is
    ///     handed out or being created
    void unregisterClass(char* classId);
    /// @}

    /// @name Items
    /// @{

    /// Hands out the item of the class that was released last, or creates one if no item is free.
    /// @return the item, which the caller must release; null if the creator returned null
    /// @throws QBLIllegalStateError if the id is not registered; the exceptions of the creator
    QBLObjectFactoryItem* createObject(char* classId);
    /// Keeps an item for the next createObject() of its class, which getClassId() of the item
    /// names. Programs call the item's release() instead. If createObject() has not handed out the
    /// item, the item now belongs to the factory. Ignores null and an item that is already free.
    /// @throws QBLIllegalStateError if the item's class is not registered, or if the item belongs
    ///     to another factory
    void releaseObject(QBLObjectFactoryItem* item);
    /// Deletes all free items. Items that are handed out no longer belong to the factory, and their
    /// release() deletes them. Classes stay registered.
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

    // Locks are taken in this order: map, free list, list of all items.
    QBLThreadMonitor<QBLThreadCriticalSection, ClassMap> m_classes;  // owns the structs
    LISTS_STRUCT* m_pUnused;  // owned list of structs without a class; guarded by the map's lock
    // Structs that were found recently, indexed by placeOf() of their class. A struct found here
    // needs no lock of the map, but it may serve another class by now.
    std::atomic<LISTS_STRUCT*> m_recent[kRecent];
};
#ifdef _GLIBCXX_DEBUG
static_assert(sizeof(QBLObjectFactory) == (sizeof(void*) == 4 ? 100 : 200),
              "_GLIBCXX_DEBUG changes the layout of QBLObjectFactory: compile without it");
#endif

#endif
