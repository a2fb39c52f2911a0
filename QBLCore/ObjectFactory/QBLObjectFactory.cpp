#include "QBLCore/ObjectFactory/QBLObjectFactory.hpp"

#include <cstdint>
#include <memory>

#include "QBLCore/Exceptions/QBLAllocation.hpp"
#include "QBLCore/Exceptions/QBLIllegalArgumentError.hpp"
#include "QBLCore/Exceptions/QBLIllegalStateError.hpp"
#include "QBLCore/Exceptions/QBLThrow.hpp"
#include "QBLCore/ObjectFactory/QBLObjectFactoryItem.hpp"
#include "QBLCore/Threads/QBLThreadGuard.hpp"

// A LISTS_STRUCT has the data of a class. Structs are freed only with the factory, so that
// createObject() may use a struct from m_recent even if the class of the struct was removed. A
// struct either serves a class (registered, in the map) or is unused. serve() and retire() change
// that, under the locks of the map and of the free list. In an unused struct, classId keeps its
// last value.
//
// An item of the factory is in one of four states. `latest` holds at most one item.
//   handed out  m_free is false; the item is in allItems only.
//   released    m_free is true; only the thread that set m_free uses the item, and moves it to
//               `latest`.
//   latest      stored and taken by an exchange, so only one thread gets the item.
//   listed      in freeItems, under its lock; items get there only from `latest`.
// releaseObject() changes m_free by an exchange: if two threads release an item, only one release
// has an effect. createObject() first takes from `latest`, without a lock, then from the list. If
// both are empty, it calls the creator. inFlight counts the creator calls in progress.
//
// 1. `nodes` has a node for each item that is in allItems and not in freeItems. An item therefore
//    needs no memory to enter or leave the list.
// 2. retire() moves `latest` to the list. It succeeds only if all items are in the list and
//    inFlight is 0. The class of a struct therefore does not change while a thread has or creates
//    an item.
// 3. takeLatest() reads classId twice. The first check leaves items of other classes alone. The
//    second check stays valid while the item is taken (rule 2). If the struct has changed its class
//    between the two checks, the item goes back at once. If unregisterClass() is called for the
//    new class at this moment, it reports an object in use.
// 4. If `latest` was empty, putFree() accesses nothing after its exchange, because the item may
//    already be deleted. If `latest` had an item, that item belongs to this thread until the thread
//    has put it into the list, so the class stays registered.
//
// Memory order: exchanges of `latest` acquire and release. The next user of an item therefore sees
// everything that its last user and cleanObject() wrote, and the classId under which the item was
// created. m_recent is stored with release and loaded with acquire, so a struct found there is
// complete. m_free is cleared relaxed, by the only thread that has the item. The locks guard
// everything else.
//
// A mistake here would hand out an item twice, or under the id of another class.
// QBLObjectFactoryTest.ServesThreadsThatRegisterCreateAndRelease detects this with x86-asan and
// x64-tsan. x64-tsan also reports an exchange with a weaker memory order.
// The row QBLObjectFactory of tests/faults tests rule 1. A run rarely hits the moment between the
// two checks of rule 3.

namespace {

const char kRegistered[] = "This classId is already registered";
const char kNotRegistered[] = "This classId hasn't been registered.";
const char kNeverRegistered[] = "This item type has never been registered.";
const char kInUse[] = "Unable to unregister the class .., some objects still in use.";
const char kNoCreator[] = "QBLObjectFactory::registerClass: there is no creator";

}  // namespace

/// The data of a class. The class stays registered while one of its items is handed out or being
/// created. A struct lives as long as the factory. It can serve another class after its class was
/// removed.
struct QBLObjectFactory::LISTS_STRUCT {
    void serve(char* id, Creator function);
    QBLObjectFactoryItem* takeLatest(const char* id);
    bool take(const char* id, QBLObjectFactoryItem*& item);
    void putFree(QBLObjectFactoryItem& item);
    void adopt(QBLObjectFactory& factory, QBLObjectFactoryItem& item);
    void forget(const QBLObjectFactoryItem& item);
    bool retire();
    void empty(ItemList& unused);
    void pushFree(QBLObjectFactoryItem* item);

    Creator creator = nullptr;  // changes with classId
    Items freeItems;            // except the item in `latest`
    Items allItems;
    // Changes only while no thread has or creates an item.
    std::atomic<char*> classId{nullptr};
    // The item released last, if it is free. With it, createObject() needs no lock right after a
    // release.
    std::atomic<QBLObjectFactoryItem*> latest{nullptr};
    // The lock of the free list guards the next three members. `nodes` has a node for each item
    // that is not in the list, so that releasing an item, or handing out an existing item, needs no
    // memory and cannot fail.
    ItemList nodes;
    int inFlight = 0;  // running creators
    bool registered = false;
    LISTS_STRUCT* nextUnused = nullptr;  // guarded by the lock of the map
};

void QBLObjectFactory::LISTS_STRUCT::serve(char* id, Creator function) {
    QBLThreadGuard guard(freeItems);
    creator = function;
    classId = id;
    registered = true;
}

/// Hands out the item released last. Returns null if that item is not free, or if this struct
/// serves another class.
QBLObjectFactoryItem* QBLObjectFactory::LISTS_STRUCT::takeLatest(const char* id) {
    // An item of another class must not count as handed out, even for a moment.
    if (classId.load(std::memory_order_acquire) != id) return nullptr;
    QBLObjectFactoryItem* item = latest.exchange(nullptr, std::memory_order_acq_rel);
    if (item == nullptr) return nullptr;
    if (classId.load(std::memory_order_acquire) != id) {
        putFree(*item);
        return nullptr;
    }
    item->m_free.store(false, std::memory_order_relaxed);
    return item;
}

/// Hands out an item of the free list. If the list is empty, sets `item` to null and raises
/// inFlight, because the caller then creates an item.
/// @return false, without any change, if this struct serves another class
bool QBLObjectFactory::LISTS_STRUCT::take(const char* id, QBLObjectFactoryItem*& item) {
    QBLThreadGuard guard(freeItems);
    if (classId != id || !registered) return false;
    ItemList& list = *freeItems;
    if (list.empty()) {
        ++inFlight;
        item = nullptr;
        return true;
    }
    item = list.back();
    nodes.splice(nodes.begin(), list, --list.end());
    item->m_free.store(false, std::memory_order_relaxed);
    return true;
}

/// Requires: no other thread has the item, and the item is marked as free.
void QBLObjectFactory::LISTS_STRUCT::putFree(QBLObjectFactoryItem& item) {
    // The previous item counts as handed out until it is in the list. After that, or if there is no
    // previous item, this struct may serve another class.
    QBLObjectFactoryItem* before = latest.exchange(&item, std::memory_order_acq_rel);
    if (before == nullptr) return;
    QBLThreadGuard guard(freeItems);
    pushFree(before);
}

/// Requires: the caller holds the lock of the free list.
void QBLObjectFactory::LISTS_STRUCT::pushFree(QBLObjectFactoryItem* item) {
    nodes.front() = item;
    (*freeItems).splice((*freeItems).end(), nodes, nodes.begin());
}

/// Adds an item, which counts as handed out.
void QBLObjectFactory::LISTS_STRUCT::adopt(QBLObjectFactory& factory, QBLObjectFactoryItem& item) {
    QBLThreadGuard guard(freeItems);
    QBLThreadGuard guardAll(allItems);
    nodes.push_front(&item);
    try {
        (*allItems).push_back(&item);
    } catch (...) {
        nodes.pop_front();
        throw;
    }
    item.m_pFactory = &factory;
    item.m_pLists = this;
}

/// Undoes adopt(). Requires: the item is handed out.
void QBLObjectFactory::LISTS_STRUCT::forget(const QBLObjectFactoryItem& item) {
    QBLThreadGuard guard(freeItems);
    QBLThreadGuard guardAll(allItems);
    nodes.pop_front();
    auto it = (*allItems).begin();
    while (it != (*allItems).end() && *it != &item) ++it;
    (*allItems).erase(it);
}

/// Ends the service for a class, unless an item is handed out or being created.
bool QBLObjectFactory::LISTS_STRUCT::retire() {
    QBLThreadGuard guard(freeItems);
    QBLThreadGuard guardAll(allItems);
    if (QBLObjectFactoryItem* item = latest.exchange(nullptr, std::memory_order_acq_rel))
        pushFree(item);
    if (inFlight != 0 || (*freeItems).size() != (*allItems).size()) return false;
    registered = false;
    return true;
}

/// Moves the free items to a list of items to delete. The other items no longer belong to the
/// factory.
void QBLObjectFactory::LISTS_STRUCT::empty(ItemList& unused) {
    QBLThreadGuard guard(freeItems);
    QBLThreadGuard guardAll(allItems);
    if (QBLObjectFactoryItem* item = latest.exchange(nullptr, std::memory_order_acq_rel))
        pushFree(item);
    for (QBLObjectFactoryItem* item : *allItems) {
        if (item->m_free.load(std::memory_order_relaxed)) continue;
        item->m_pFactory = nullptr;
        item->m_pLists = nullptr;
    }
    (*allItems).clear();
    nodes.clear();
    ItemList& list = *freeItems;
    while (!list.empty()) unused.splice(unused.end(), list, list.begin());
}

QBLObjectFactory::QBLObjectFactory() : m_pUnused(nullptr), m_recent() {}

QBLObjectFactory::~QBLObjectFactory() {
    clearLists();
    for (const auto& entry : *m_classes) keepUnused(entry.second);
    while (m_pUnused != nullptr) {
        const std::unique_ptr<LISTS_STRUCT> lists(m_pUnused);
        m_pUnused = lists->nextUnused;
    }
}

void QBLObjectFactory::registerClass(char* classId, Creator creator) {
    if (creator == nullptr) QBL_THROW(QBLIllegalArgumentError(0, kNoCreator));
    if (!insert(classId, creator)) QBL_THROW(QBLIllegalStateError(0, kRegistered));
}

bool QBLObjectFactory::insert(char* classId, Creator creator) {
    QBL_ALLOC_TRY
    QBLThreadGuard guard(m_classes);
    if (m_pUnused == nullptr) keepUnused(new LISTS_STRUCT);
    LISTS_STRUCT* lists = m_pUnused;
    if (!(*m_classes).emplace(classId, lists).second) return false;
    m_pUnused = lists->nextUnused;
    lists->serve(classId, creator);
    return true;
    QBL_ALLOC_CATCH
}

/// Requires: the caller holds the lock of the map, or the factory is being destroyed.
void QBLObjectFactory::keepUnused(LISTS_STRUCT* lists) {
    lists->nextUnused = m_pUnused;
    m_pUnused = lists;
}

void QBLObjectFactory::unregisterClass(char* classId) {
    ItemList unused;
    {
        QBLThreadGuard guard(m_classes);
        const auto found = (*m_classes).find(classId);
        if (found == (*m_classes).end()) QBL_THROW(QBLIllegalStateError(0, kNotRegistered));
        if (!found->second->retire()) QBL_THROW(QBLIllegalStateError(0, kInUse));
        found->second->empty(unused);
        keepUnused(found->second);
        (*m_classes).erase(found);
    }
    for (const QBLObjectFactoryItem* item : unused) delete item;
}

/// Returns the index of a class in m_recent. Ids may be a few bytes apart, or far apart.
std::size_t QBLObjectFactory::placeOf(const char* classId) {
    const auto address = reinterpret_cast<std::uintptr_t>(classId);
    return (address ^ address >> 3 ^ address >> 6) % kRecent;
}

QBLObjectFactoryItem* QBLObjectFactory::createObject(char* classId) {
    std::atomic<LISTS_STRUCT*>& recent = m_recent[placeOf(classId)];
    LISTS_STRUCT* lists = recent.load(std::memory_order_acquire);
    QBLObjectFactoryItem* item = lists != nullptr ? lists->takeLatest(classId) : nullptr;
    if (item != nullptr) return item;
    if (lists == nullptr || !lists->take(classId, item)) {
        QBLThreadGuard guard(m_classes);
        const auto found = (*m_classes).find(classId);
        if (found == (*m_classes).end()) QBL_THROW(QBLIllegalStateError(0, kNotRegistered));
        lists = found->second;
        recent.store(lists, std::memory_order_release);
        item = lists->takeLatest(classId);
        if (item == nullptr) lists->take(classId, item);
    }
    return item != nullptr ? item : make(*lists);
}

/// Requires: inFlight counts the caller. This call lowers inFlight again.
QBLObjectFactoryItem* QBLObjectFactory::make(LISTS_STRUCT& lists) {
    struct Flight {
        LISTS_STRUCT& lists;
        ~Flight() {
            QBLThreadGuard guard(lists.freeItems);
            --lists.inFlight;
        }
    } flight{lists};
    std::unique_ptr<QBLObjectFactoryItem> item(lists.creator(this));
    // A creator may return an item that another createObject() has handed out.
    if (item == nullptr || item->m_pLists != nullptr) return item.release();
    QBL_ALLOC_TRY
    lists.adopt(*this, *item);
    QBL_ALLOC_CATCH
    return item.release();
}

void QBLObjectFactory::releaseObject(QBLObjectFactoryItem* item) {
    if (item == nullptr || item->m_free.load(std::memory_order_acquire)) return;
    LISTS_STRUCT& lists = listsOf(*item);
    if (!item->m_free.exchange(true, std::memory_order_acq_rel)) lists.putFree(*item);
}

/// Returns the struct to which an item goes back. The class of a handed-out item stays registered,
/// so an item of this factory needs no lookup.
QBLObjectFactory::LISTS_STRUCT& QBLObjectFactory::listsOf(QBLObjectFactoryItem& item) {
    char* const classId = item.getClassId();
    LISTS_STRUCT* const before = item.m_pLists;
    const bool ours = before == nullptr || item.m_pFactory == this;
    if (before != nullptr && ours && before->classId == classId) return *before;
    QBLThreadGuard guard(m_classes);
    const auto found = (*m_classes).find(classId);
    if (!ours || found == (*m_classes).end()) QBL_THROW(QBLIllegalStateError(0, kNeverRegistered));
    QBL_ALLOC_TRY
    found->second->adopt(*this, item);
    QBL_ALLOC_CATCH
    if (before != nullptr) before->forget(item);
    return *found->second;
}

void QBLObjectFactory::clearLists() {
    ItemList unused;
    {
        QBLThreadGuard guard(m_classes);
        for (const auto& entry : *m_classes) entry.second->empty(unused);
    }
    for (const QBLObjectFactoryItem* item : unused) delete item;
}
