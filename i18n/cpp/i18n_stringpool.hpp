#ifndef I18N_CPP_I18N_STRINGPOOL_HPP
#define I18N_CPP_I18N_STRINGPOOL_HPP

#include <string>

#include "QBLCore/Threads/QBLThreadCriticalSection.hpp"
#include "i18n/cpp/i18n_string.hpp"

/// A pool of strings that the caller creates and owns. The pool stores each text once, until the
/// pool is destroyed.
///
/// Threads: any thread may call any operation.
class QBL_API I18NStringPool {
public:
    /// @param buckets  number of buckets of the hash table, which does not grow; 0 means 1
    /// @param encoding  of the bytes passed to getPooledString(); null for UTF-8
    /// @throws QBLOutOfMemoryError; QBLThreadResourceError if the lock cannot be created
    explicit I18NStringPool(unsigned long buckets, const char* encoding = nullptr);
    ~I18NStringPool();
    I18NStringPool(const I18NStringPool&) = delete;
    I18NStringPool& operator=(const I18NStringPool&) = delete;

    /// Returns the pool's string with this text. Adds the string if it is missing.
    /// @throws QBLOutOfMemoryError
    const I18NString& getPooledString(const I18NString& text);
    /// @param bytes  null is the empty text
    /// @throws I18NRuntimeError like I18NString for an unknown encoding
    const I18NString& getPooledString(const char* bytes);
    /// The number of texts in the pool.
    int size();

private:
    struct Entry;

    Entry* createSPE(const I18NString& text, unsigned long hash);

    QBLThreadCriticalSection m_lock;
    std::string m_encoding;  // empty for UTF-8
    Entry** m_pBuckets;      // guarded by m_lock, like the members below
    unsigned long m_ulBuckets;
    int m_iCount;
};

#endif
