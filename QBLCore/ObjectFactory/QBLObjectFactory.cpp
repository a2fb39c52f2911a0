#include "QBLCore/ObjectFactory/QBLObjectFactory.hpp"

#include <cstdint>
#include <memory>

#include "QBLCore/Exceptions/QBLAllocation.hpp"
#include "QBLCore/Exceptions/QBLIllegalArgumentError.hpp"
#include "QBLCore/Exceptions/QBLIllegalStateError.hpp"
#include "QBLCore/Exceptions/QBLThrow.hpp"
#include "QBLCore/ObjectFactory/QBLObjectFactoryItem.hpp"
#include "QBLCore/Threads/QBLThreadGuard.hpp"

// What there is of a class is in a LISTS_STRUCT. Structs are freed with the factory only, so that a
// creation may look into one that it remembers (m_recent) although its class is gone. A struct
// either serves a class (registered, in the map) or is unused; serve() and retire() change that,
// under the locks of the map and of the free list. classId keeps its last value in an unused one.
//
// An item of the factory is in one of four states. `latest` holds one item at most.
//   handed out  m_free is false; in no place of the struct but allItems.
//   released    m_free is true; the thread that set it has the item alone, on its way to `latest`.
//   latest      put there and taken from there by an exchange: whoever gets it has it alone.
//   listed      in freeItems, under its lock: an item goes there from `latest` only.
// releaseObject() changes m_free by an exchange, so that of two releases one counts. createObject()
// takes from `latest` first, without a lock, then from the list, and else calls the creator, which
// is counted in inFlight meanwhile.
//
// 1. `nodes` has a node for each item that is in allItems and not in freeItems. So an item goes to
//    the list, and out of it, without memory.
// 2. retire() moves `latest` to the list, and succeeds only if all items are there and inFlight is
//    0. So the class of a struct does not change under a thread that has an item or makes one.
// 3. takeLatest() looks at classId twice. The first look leaves items of other classes alone. The
//    second one holds as long as the item is taken (2). If the struct came to serve another class
//    between the two, the item goes back at once; an unregisterClass() of that class in this moment
//    reports an object in use.
// 4. putFree() touches nothing after its exchange if nothing was in `latest`: the item may be gone.
//    An item that was there belongs to this thread until it is in the list, and holds the class.
//
// Memory order: exchanges of `latest` acquire and release, so that the next user of an item finds
// what its last one and cleanObject() left, and sees the classId that the item was made under.
// m_recent is stored with release and loaded with acquire: a struct found there is complete.
// m_free is cleared relaxed, by the thread that has the item alone. All else is under the locks.
//
// A mistake hands an item out twice, or under another class's id:
// QBLObjectFactoryTest.ServesThreadsThatRegisterCreateAndRelease (x64-tsan, which reports a weaker
// exchange, and x86-asan); IsAsItWasWhenMemoryRunsOut for 1. Hardly a run of it meets the moment
// between the two looks of 3.

namespace {

const char kRegistered[] = "This classId is already registered";
const char kNotRegistered[] = "This classId hasn't been registered.";
const char kNeverRegistered[] = "This item type has never been registered.";
const char kInUse[] = "Unable to unregister the class .., some objects still in use.";
const char kNoCreator[] = "QBLObjectFactory::registerClass: there is no creator";

}  // namespace

/// What there is of a class, which stays registered while an item of it is handed out or being
/// made. A struct lives as long as the factory, and serves another class when its own is taken
/// away.
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
    Items freeItems;            // but the one released last
    Items allItems;
    // Changes only while nobody has an item, or makes one.
    std::atomic<char*> classId{nullptr};
    // The item released last, if it is free: what is released and created again at once needs no
    // lock.
    std::atomic<QBLObjectFactoryItem*> latest{nullptr};
    // These are guarded by the lock of the free list. There is a node for each item that is not in
    // it, so that neither creation nor release of one that is there already needs memory, or fails.
    ItemList nodes;
    int inFlight = 0;  // creators being called
    bool registered = false;
    LISTS_STRUCT* nextUnused = nullptr;  // guarded by the lock of the map
};

void QBLObjectFactory::LISTS_STRUCT::serve(char* id, Creator function) {
    QBLThreadGuard guard(freeItems);
    creator = function;
    classId = id;
    registered = true;
}

/// Hands out the item released last; null if that is not free, or this serves another class.
QBLObjectFactoryItem* QBLObjectFactory::LISTS_STRUCT::takeLatest(const char* id) {
    // Another class's item must not even for a moment count as handed out.
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

/// Hands out an item of the free list. If that is empty, null, and the caller has counted itself as
/// making one.
/// @return false, with nothing done, if this serves another class
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

/// Requires: nobody else has the item, which is marked as free.
void QBLObjectFactory::LISTS_STRUCT::putFree(QBLObjectFactoryItem& item) {
    // The one before counts as handed out until it is in the list. Once it is, or if there is none,
    // this may serve another class.
    QBLObjectFactoryItem* before = latest.exchange(&item, std::memory_order_acq_rel);
    if (before == nullptr) return;
    QBLThreadGuard guard(freeItems);
    pushFree(before);
}

/// Requires: the lock of the free list is held.
void QBLObjectFactory::LISTS_STRUCT::pushFree(QBLObjectFactoryItem* item) {
    nodes.front() = item;
    (*freeItems).splice((*freeItems).end(), nodes, nodes.begin());
}

/// Enters an item as one handed out.
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

/// Ends the service for a class, unless an item is handed out or being made.
bool QBLObjectFactory::LISTS_STRUCT::retire() {
    QBLThreadGuard guard(freeItems);
    QBLThreadGuard guardAll(allItems);
    if (QBLObjectFactoryItem* item = latest.exchange(nullptr, std::memory_order_acq_rel))
        pushFree(item);
    if (inFlight != 0 || (*freeItems).size() != (*allItems).size()) return false;
    registered = false;
    return true;
}

/// Moves the free items to a list, to be deleted, and makes the others their holders' own.
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

/// Requires: the lock of the map is held, or the factory is being destroyed.
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

/// Where a class may be found without the map. Ids are some bytes apart, or far.
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

/// Requires: the caller is counted as making an item, which this ends.
QBLObjectFactoryItem* QBLObjectFactory::make(LISTS_STRUCT& lists) {
    struct Flight {
        LISTS_STRUCT& lists;
        ~Flight() {
            QBLThreadGuard guard(lists.freeItems);
            --lists.inFlight;
        }
    } flight{lists};
    std::unique_ptr<QBLObjectFactoryItem> item(lists.creator(this));
    // A creator may hand on what it got from another creation.
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

/// The lists that an item goes back to. Its class stays registered while it is handed out, so that
/// one of ours needs no lookup.
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
