#include "i18n/cpp/i18n_stringpool.hpp"

#include "QBLCore/Exceptions/QBLAllocation.hpp"
#include "QBLCore/Threads/QBLThreadGuard.hpp"

struct I18NStringPool::Entry {
    Entry* next;
    unsigned long hash;
    I18NString string;
};

I18NStringPool::I18NStringPool(unsigned long buckets, const char* encoding)
    : m_lock(0), m_pBuckets(nullptr), m_ulBuckets(buckets != 0 ? buckets : 1), m_iCount(0) {
    QBL_ALLOC_TRY
    if (encoding != nullptr) m_encoding = encoding;
    m_pBuckets = new Entry*[m_ulBuckets]();
    QBL_ALLOC_CATCH
}

I18NStringPool::~I18NStringPool() {
    for (unsigned long i = 0; i < m_ulBuckets; ++i) {
        for (Entry* e = m_pBuckets[i]; e != nullptr;) {
            Entry* const next = e->next;
            delete e;
            e = next;
        }
    }
    delete[] m_pBuckets;
}

const I18NString& I18NStringPool::getPooledString(const I18NString& text) {
    const unsigned long hash = std::hash<I18NString>()(text);
    QBLThreadGuard guard(m_lock);
    Entry*& first = m_pBuckets[hash % m_ulBuckets];
    for (Entry* e = first; e != nullptr; e = e->next)
        if (e->hash == hash && e->string == text) return e->string;
    Entry* const entry = createSPE(text, hash);
    entry->next = first;
    first = entry;
    ++m_iCount;
    return entry->string;
}

const I18NString& I18NStringPool::getPooledString(const char* bytes) {
    return getPooledString(I18NString(bytes, m_encoding.empty() ? nullptr : m_encoding.c_str()));
}

int I18NStringPool::size() {
    QBLThreadGuard guard(m_lock);
    return m_iCount;
}

I18NStringPool::Entry* I18NStringPool::createSPE(const I18NString& text, unsigned long hash) {
    QBL_ALLOC_TRY
    return new Entry{nullptr, hash, text};
    QBL_ALLOC_CATCH
}
