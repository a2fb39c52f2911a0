#include "i18n/cpp/i18n_pooledstring.hpp"

#include <cstdlib>
#include <new>
#include <utility>

#include "QBLCore/Base/QBLImmortal.hpp"
#include "QBLCore/Exceptions/QBLAllocation.hpp"
#include "QBLCore/Exceptions/QBLIllegalArgumentError.hpp"
#include "QBLCore/Exceptions/QBLThrow.hpp"
#include "QBLCore/Exceptions/shared/QBLThrowNoMemory.hpp"
#include "QBLCore/QBLCustodian/QBLCustodian.hpp"
#include "QBLCore/Threads/QBLThreadGuard.hpp"
#include "i18n/cpp/pool/i18n_pool_bucket.hpp"

namespace {

using Entry = I18NPooledStringEntry;

const char kMalloc[] = "malloc failed to allocate memory.";
const char kTooMany[] = "I18NPooledString: too many holders of one text";
const char kForeign[] = "I18NPooledStringPool::releaseString: the string is not of the pool";

/// The number of starts, and the lock that is held during each start and stop.
struct Starts {
    QBLThreadCriticalSection s_initLock{0};
    int s_initCount QBL_GUARDED_BY(s_initLock) = 0;
    I18NPooledStringCustodian task QBL_GUARDED_BY(s_initLock);
    bool registered QBL_GUARDED_BY(s_initLock) = false;
};

// Constructed when the library is loaded, so that no stop has to construct it, which could fail.
[[maybe_unused]] Starts& g_starts = qblImmortal<Starts>();

struct Hashed {
    std::uint32_t hash;
    std::size_t length;
};

std::uint32_t signExtended(char byte) {
    return static_cast<std::uint32_t>(static_cast<signed char>(byte));
}

inline Hashed hashed(const char* text) {
    if (*text == '\0') return {0, 0};
    std::uint32_t hash = signExtended(*text);
    const char* p = text + 1;
    for (; *p != '\0'; ++p) {
        // The empty asm statement makes the compiler compute this sum separately. The sum does not
        // depend on the product, so the processor can compute both at the same time.
        std::uint32_t rest = signExtended(*p) + (hash >> 24);
        asm("" : "+r"(rest));
        hash = hash * 38 + rest;
    }
    return {hash, static_cast<std::size_t>(p - text)};
}

/// Returns the pool. Once the pool exists, this needs no function call.
inline I18NPooledString::I18NPooledStringPool& knownPool() {
    static std::atomic<I18NPooledString::I18NPooledStringPool*> s_known{nullptr};
    auto* pool = s_known.load(std::memory_order_acquire);
    if (__builtin_expect(pool == nullptr, 0))
        s_known.store(pool = &I18NPooledString::getPool(), std::memory_order_release);
    return *pool;
}

/// Releases a holder of an entry at the end of the scope, unless keep() is called.
class Pin {
public:
    explicit Pin(Entry& entry) : m_pEntry(&entry) {}
    ~Pin() {
        if (m_pEntry != nullptr) m_pEntry->unpin();
    }
    Pin(const Pin&) = delete;
    Pin& operator=(const Pin&) = delete;
    bool keep() {
        m_pEntry = nullptr;
        return true;
    }

private:
    Entry* m_pEntry;
};

}  // namespace

I18NPooledString::I18NPooledStringPool::I18NPooledStringPool()
    : m_pBuckets(static_cast<Bucket*>(std::malloc(kBuckets * sizeof(Bucket)))) {
    if (m_pBuckets == nullptr) qblThrowNoMemory(QBL_HERE, kMalloc);
    for (unsigned i = 0; i < kBuckets; ++i) new (&m_pBuckets[i]) Bucket();
}

unsigned I18NPooledString::I18NPooledStringPool::hashOf(const char* text) {
    return text != nullptr ? hashed(text).hash : 0;
}

Entry* I18NPooledString::I18NPooledStringPool::acquire(const char* utf8) {
    I18NPooledStringPool& pool = knownPool();
    if (utf8 == nullptr) utf8 = "";
    const Hashed key = hashed(utf8);
    const unsigned number = key.hash % kBuckets;
    Entry* const found = pool.m_pBuckets[number].index.find(key.hash, [=](Entry& entry) {
        if (!entry.pin()) return false;
        Pin pin(entry);
        return entry.hashCode == key.hash && entry.holds(utf8, key.length) && pin.keep();
    });
    return found != nullptr ? found : pool.acquireLocked(number, utf8, key.hash);
}

// Another thread may have added the text by now.
Entry* I18NPooledString::I18NPooledStringPool::acquireLocked(unsigned number, const char* utf8,
                                                             unsigned hash) {
    QBL_ALLOC_TRY
    const std::size_t length = std::strlen(utf8);
    Bucket& bucket = m_pBuckets[number];
    QBLThreadGuard guard(m_locks[number % kLocks]);
    Entry* const found = bucket.index.find(
        hash, [=](Entry& entry) { return entry.hashCode == hash && entry.holds(utf8, length); });
    if (found != nullptr) {
        if (!found->pin()) qblThrowNoMemory(QBL_HERE, kTooMany);
        return found;
    }
    bucket.makeRoom();
    Entry* const entry = createPSPE(utf8, hash);
    entry->enter();
    bucket.append(entry);
    return entry;
    QBL_ALLOC_CATCH
}

Entry* I18NPooledString::I18NPooledStringPool::createPSPE(const char* utf8, unsigned hash) {
    Entry* const entry = i18n_places::take();
    try {
        new (entry->place) I18NString(utf8);
    } catch (...) {
        i18n_places::give(entry);
        throw;
    }
    entry->hashCode = hash;
    return entry;
}

const I18NString& I18NPooledString::I18NPooledStringPool::getString(const char* utf8) {
    return acquire(utf8)->string();
}

const I18NString& I18NPooledString::I18NPooledStringPool::getString(const I18NString& text) {
    return acquire(text.c_str())->string();
}

void I18NPooledString::I18NPooledStringPool::releaseString(const I18NString& string) {
    Entry* const entry = i18n_places::find(string);
    if (entry == nullptr) QBL_THROW(QBLIllegalArgumentError(0, kForeign));
    entry->unpin();
}

I18NPooledString::I18NPooledString(const I18NString& text)
    : m_pEntry(I18NPooledStringPool::acquire(text.c_str())) {}

I18NPooledString::I18NPooledString(const char* utf8)
    : m_pEntry(I18NPooledStringPool::acquire(utf8)) {}

I18NPooledString::I18NPooledString(const I18NPooledString& other) : m_pEntry(other.m_pEntry) {
    if (m_pEntry != nullptr && !m_pEntry->addHolder()) qblThrowNoMemory(QBL_HERE, kTooMany);
}

I18NPooledString::~I18NPooledString() {
    if (m_pEntry != nullptr) m_pEntry->unpin();
}

I18NPooledString& I18NPooledString::operator=(const I18NString& text) {
    return *this = I18NPooledString(text);
}

I18NPooledString& I18NPooledString::operator=(const char* utf8) {
    return *this = I18NPooledString(utf8);
}

I18NPooledString& I18NPooledString::operator=(const I18NPooledString& other) {
    return *this = I18NPooledString(other);
}

I18NPooledString& I18NPooledString::operator=(I18NPooledString&& other) noexcept {
    I18NPooledString taken(std::move(other));
    std::swap(m_pEntry, taken.m_pEntry);
    return *this;
}

const I18NString& I18NPooledString::getString() const {
    return m_pEntry != nullptr ? m_pEntry->string() : qblImmortal<I18NString>();
}

// The pool is never destroyed, because another thread or the destructor of a static object may be
// using it. terminate() only empties the pool.
I18NPooledString::I18NPooledStringPool& I18NPooledString::getPool() {
    return qblImmortal<I18NPooledStringPool>();
}

bool I18NPooledString::initialize() {
    QBL_ALLOC_TRY
    Starts& starts = qblImmortal<Starts>();
    QBLThreadGuard guard(starts.s_initLock);
    getPool();
    // A custodian that was created later, or that was stopped and started again, does not know the
    // task.
    if (!starts.registered || starts.task.m_dropped) {
        starts.task.m_dropped = false;
        starts.registered = QBLCustodian::registerTask(&starts.task);
    }
    ++starts.s_initCount;
    return starts.registered;
    QBL_ALLOC_CATCH
}

// After deRegisterTask(), the custodian no longer runs the task.
void I18NPooledString::terminate() {
    Starts& starts = qblImmortal<Starts>();
    QBLThreadGuard guard(starts.s_initLock);
    if (starts.s_initCount == 0 || --starts.s_initCount > 0) return;
    if (std::exchange(starts.registered, false)) QBLCustodian::deRegisterTask(&starts.task);
    s_init = false;
    getPool().clear();
}

void I18NPooledString::purge() { getPool().purge(); }

void I18NPooledString::dump(std::ostream& out) { getPool().dump(out); }
