#ifndef I18N_CPP_I18N_STRINGPOOL_HPP
#define I18N_CPP_I18N_STRINGPOOL_HPP

#include <string>

#include "QBLCore/Threads/QBLThreadCriticalSection.hpp"
#include "i18n/cpp/i18n_string.hpp"

/// A pool of one's own: each text is kept once, until the pool is destroyed.
///
/// Threads: any thread may call any operation.
class QBL_API I18NStringPool {
public:
    /// @param buckets  of the table, which does not grow; at least one is made
    /// @param encoding  of the bytes that getPooledString() is given; null for UTF-8
    /// @throws QBLOutOfMemoryError
    explicit I18NStringPool(unsigned long buckets, const char* encoding = nullptr);
    ~I18NStringPool();
    I18NStringPool(const I18NStringPool&) = delete;
    I18NStringPool& operator=(const I18NStringPool&) = delete;

    /// The pool's string with a text, added if there is none.
    /// @throws QBLOutOfMemoryError
    const I18NString& getPooledString(const I18NString& text);
    /// @param bytes  null is the empty text
    /// @throws I18NRuntimeError as I18NString does for the encoding
    const I18NString& getPooledString(const char* bytes);
    /// Texts in the pool.
    int size();

private:
    struct Entry;

    Entry* createSPE(const I18NString& text, unsigned long hash);

    QBLThreadCriticalSection m_lock;
    std::string m_encoding;  // empty for UTF-8
    Entry** m_pBuckets;      // under m_lock, as what follows
    unsigned long m_ulBuckets;
    int m_iCount;
};

#endif
