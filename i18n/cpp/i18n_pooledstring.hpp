#ifndef I18N_CPP_I18N_POOLEDSTRING_HPP
#define I18N_CPP_I18N_POOLEDSTRING_HPP

#include <atomic>
#include <ctime>
#include <iosfwd>

#include "QBLCore/QBLCustodian/QBLCustodianTask.hpp"
#include "QBLCore/Threads/QBLThreadCriticalSection.hpp"
#include "i18n/cpp/i18n_string.hpp"

struct I18NPooledStringEntry;

/// A text that is kept once in the process, however many hold it: a holder is as large as a
/// pointer. Taking an ASCII text that is in the pool allocates nothing, and takes no lock but while
/// texts of its bucket are added or purged. The bytes of others may have to be converted first.
///
/// Texts that nobody holds any more stay until the next purge, which the custodian does from time
/// to time while the library runs. In its first pass it reads "I18NPooledString.conf" from the
/// working directory: pairs of a key and an integer between white space. "interval" is the least
/// number of seconds between two purges, 3600 unless said; with "dumpToFile" other than 0 each
/// purge first appends a dump to "I18NPooledStringDump", the process's number and ".log", readable
/// by the owner only.
///
/// Holders may be static objects: what is held when the library stops is taken out of the pool and
/// goes with its last holder. The pool can be used before the library starts and after it stopped,
/// but then nobody purges it.
///
/// Each text costs at least 128 bytes (192 at 64 bits). Of that memory, what a purge empties goes
/// back to the system, but for a page in eight and for the tables by which texts are found.
///
/// Whoever chooses the texts can choose many of one hash, which makes them slow to find: do not
/// pool what comes from strangers without a limit.
///
/// Texts of bytes are UTF-8. Two of them share an entry when they have the same bytes; as
/// different bytes may be the same text in normalisation form C, equal holders may still differ in
/// their entries.
///
/// Errors: QBLOutOfMemoryError, also for more than some 130 million holders of one text, and what
/// I18NString throws for text that it cannot take. A holder is as it was after an error. A new
/// handler (qblSetNewHandler) must not use the pool: it is called under its locks.
///
/// Threads: any number of threads may use the holders of a text; each holder one at a time, but
/// for the constant operations. The operations of the class may be called by any thread.
class QBL_API I18NPooledString {
public:
    class I18NPooledStringPool;

    /// @name Making a holder
    /// @{

    /// Holds the empty text, of no entry.
    I18NPooledString() noexcept = default;
    /// The text by its UTF-8 form: up to a zero in it, with U+FFFD for a surrogate without its
    /// other half, in normalisation form C.
    explicit I18NPooledString(const I18NString& text);
    /// @param utf8  null is the empty text
    explicit I18NPooledString(const char* utf8);
    I18NPooledString(const I18NPooledString& other);
    I18NPooledString(I18NPooledString&& other) noexcept : m_pEntry(other.m_pEntry) {
        other.m_pEntry = nullptr;
    }
    ~I18NPooledString();
    /// @}

    /// @name Assigning
    /// @{

    I18NPooledString& operator=(const I18NString& text);
    I18NPooledString& operator=(const char* utf8);
    I18NPooledString& operator=(const I18NPooledString& other);
    I18NPooledString& operator=(I18NPooledString&& other) noexcept;
    /// @}

    /// @name The text
    /// @{

    /// The text, which stays while anybody holds it.
    const I18NString& getString() const;
    operator const I18NString&() const { return getString(); }
    friend bool operator==(const I18NPooledString& a, const I18NPooledString& b) {
        return a.m_pEntry == b.m_pEntry || a.getString() == b.getString();
    }
    friend bool operator!=(const I18NPooledString& a, const I18NPooledString& b) {
        return !(a == b);
    }
    /// @}

    /// @name Start and stop
    /// @{

    /// Part of the start of the library, counted: gives the custodian its task if that has none.
    /// Neither this nor terminate() may be called by a task of the custodian.
    /// @return whether there is such a task now
    /// @throws QBLOutOfMemoryError, QBLStdExceptionError; it does not count then
    static bool initialize();
    /// The last one withdraws the task, waiting for a purge that is under way, and empties the
    /// pool. Does nothing when it has not been started.
    static void terminate();
    /// @}

    /// @name The pool
    /// @{

    static I18NPooledStringPool& getPool();
    static void purge();
    static void dump(std::ostream& out);
    /// @}

private:
    friend class I18NPooledStringCustodian;

    // Settings of the purge.
    static std::atomic<long> s_interval;  // seconds
    static std::atomic<bool> s_dumpToFile;
    static std::atomic<bool> s_init;  // the two have been read

    I18NPooledStringEntry* m_pEntry = nullptr;
};

/// The texts of the process, in 257 buckets by a hash of their bytes.
///
/// Threads: any thread may call any operation. What changes a bucket, or walks it, holds one of 64
/// locks; none is held across buckets, so what is told of several is of several moments, and a
/// holder may be a look-up under way. Sums over INT_MAX are INT_MAX.
class QBL_API I18NPooledString::I18NPooledStringPool {
public:
    /// @name Texts
    /// @{

    /// The string of a text, which is added if it is not there. Each call counts as a holder, up to
    /// its releaseString().
    /// @param utf8  null is the empty text
    /// @throws as I18NPooledString
    const I18NString& getString(const char* utf8);
    /// The same by the string's UTF-8 form, as I18NPooledString takes it.
    const I18NString& getString(const I18NString& text);
    /// Counts a holder less; does nothing when none is left.
    /// @param string  the very string that this class's getString() gave, once for each time; a
    ///     holder's string is the holder's to release
    /// @throws QBLIllegalArgumentError for one that is not of the pool
    void releaseString(const I18NString& string);
    /// @}

    /// @name Purge and dump
    /// @{

    /// Removes the texts that nobody holds, after a dump to the file if that is asked for. A file
    /// that cannot be opened or written is reported on the standard error stream.
    void purge();
    /// Writes a line for each text, by buckets, and a summary. Texts are written as they are, line
    /// ends in them too.
    /// @param out  is written to under the locks: it must not use the pool
    /// @throws QBLOutOfMemoryError; what the stream throws if it was told to
    void dump(std::ostream& out);
    /// @}

    /// @name Counts
    /// @{

    /// Texts in the pool.
    int count();
    /// The sum of their I18NString::size().
    int size();
    /// The sum of their holders.
    int getTotalRefCount();
    /// @}

    /// @name Hash
    /// @{

    /// The hash: the first byte sign-extended, and for each that follows hash * 38 + hash / 2^24 +
    /// the byte sign-extended, in 32 bits. 0 for null and for the empty text.
    static unsigned hashOf(const char* text);
    /// @}

private:
    friend class I18NPooledString;
    template <class T>
    friend T& qblImmortal();
    struct Bucket;
    struct Totals;

    static constexpr unsigned kBuckets = 257;
    static constexpr unsigned kLocks = 64;

    I18NPooledStringPool();
    ~I18NPooledStringPool() = delete;

    static I18NPooledStringEntry* acquire(const char* utf8);
    I18NPooledStringEntry* acquireLocked(unsigned number, const char* utf8, unsigned hash);
    I18NPooledStringEntry* createPSPE(const char* utf8, unsigned hash);
    /// Calls a body with each bucket and its number, under its lock.
    template <class Body>
    void eachBucket(Body body);
    Totals totals();
    void dumpToFile();
    /// Takes out all texts; those that are held go with their last holder.
    void clear() noexcept;

    QBLThreadCriticalSection m_locks[kLocks];
    Bucket* m_pBuckets;
};

/// The custodian's task: purges the pool of strings from time to time.
///
/// Threads: doIt() by one at a time.
class QBL_API I18NPooledStringCustodian : public QBLCustodianTask {
    friend class I18NPooledString;

public:
    /// @param clock  tells the time as time() does
    explicit I18NPooledStringCustodian(std::time_t (*clock)(std::time_t*) = std::time);

    int doIt(int terminating) override;

private:
    std::time_t (*m_clock)(std::time_t*);
    std::time_t m_last;           // when the settings were read, or the last purge began
    std::atomic<bool> m_dropped;  // by a custodian that has stopped
};

#endif
