#ifndef I18N_CPP_I18N_POOLEDSTRING_HPP
#define I18N_CPP_I18N_POOLEDSTRING_HPP

#include <atomic>
#include <ctime>
#include <iosfwd>

#include "QBLCore/QBLCustodian/QBLCustodianTask.hpp"
#include "QBLCore/Threads/QBLThreadCriticalSection.hpp"
#include "i18n/cpp/i18n_string.hpp"

struct I18NPooledStringEntry;

/// A holder of a text that the process stores once, no matter how many holders the text has. A
/// holder is as large as a pointer. Making a holder of an ASCII text that is already in the pool
/// allocates nothing, and takes a lock only if texts of the same bucket are being added or purged.
/// Other texts may have to be converted first.
///
/// Texts without a holder stay in the pool until the next purge. The custodian purges the pool from
/// time to time while the library runs. In its first pass, the custodian reads
/// "I18NPooledString.conf" from the working directory: pairs of a key and an integer, separated by
/// white space. "interval" is the minimum number of seconds between two purges; the default is
/// 3600. If "dumpToFile" is not 0, each purge first appends a dump to the file
/// "I18NPooledStringDump<process ID>.log", which only the owner can read.
///
/// Holders may be static objects. A text that is still held when the library stops leaves the pool
/// and is destroyed with its last holder. The pool can also be used before the library starts and
/// after it stops, but then the custodian does not purge it.
///
/// Each text costs at least 128 bytes (192 at 64 bits). Purges return unused memory to the system,
/// except one page in eight and the tables that find the texts.
///
/// Do not pool text from untrusted sources without a limit: whoever chooses the texts can choose
/// many with the same hash, which makes them slow to find.
///
/// Texts given as bytes are UTF-8. Two texts share an entry if their bytes are the same. Different
/// bytes can be the same text in normalisation form C, so two equal holders may have different
/// entries.
///
/// Errors: QBLOutOfMemoryError, also for more than about 130 million holders of one text, and
/// whatever I18NString throws for the text. A holder is unchanged after an error. A new handler
/// (qblSetNewHandler) must not use the pool, because it is called while the pool's locks are held.
///
/// Threads: any number of threads may use holders of one text, and may call constant operations of
/// one holder at the same time. During any other operation on a holder, no other thread may use
/// that holder. Any thread may call the static operations.
class QBL_API I18NPooledString {
public:
    class I18NPooledStringPool;

    /// @name Making a holder
    /// @{

    /// Holds the empty text, without an entry in the pool.
    I18NPooledString() noexcept = default;
    /// Takes the UTF-8 form of the text, up to its first NUL, and brings it to normalisation form
    /// C. An unpaired surrogate becomes U+FFFD.
    explicit I18NPooledString(const I18NString& text);
    /// @param utf8  null is the empty text
    explicit I18NPooledString(const char* utf8);
    /// Takes a standard text (see I18NString), up to its first NUL.
    template <class Text, std::enable_if_t<kI18NIsStdText<Text>, int> = 0>
    explicit I18NPooledString(const Text& text) : I18NPooledString(I18NString(text)) {}
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
    template <class Text, std::enable_if_t<kI18NIsStdText<Text>, int> = 0>
    I18NPooledString& operator=(const Text& text) {
        return *this = I18NPooledString(text);
    }
    /// @}

    /// @name The text
    /// @{

    /// Returns the text, which stays valid while any object holds it.
    const I18NString& getString() const;
    operator const I18NString&() const { return getString(); }
    friend bool operator==(const I18NPooledString& a, const I18NPooledString& b) {
        return a.m_pEntry == b.m_pEntry || a.getString() == b.getString();
    }
    friend bool operator!=(const I18NPooledString& a, const I18NPooledString& b) {
        return !(a == b);
    }
    /// Holders compare by their texts, not by their entries.
    friend bool operator<(const I18NPooledString& a, const I18NPooledString& b) {
        return a.getString() < b.getString();
    }
    friend bool operator<=(const I18NPooledString& a, const I18NPooledString& b) {
        return a.getString() <= b.getString();
    }
    friend bool operator>(const I18NPooledString& a, const I18NPooledString& b) {
        return a.getString() > b.getString();
    }
    friend bool operator>=(const I18NPooledString& a, const I18NPooledString& b) {
        return a.getString() >= b.getString();
    }
    /// Standard texts and null-terminated UTF-8. An I18NString compares by its own operators.
    template <class Text, std::enable_if_t<kI18NIsOrdered<Text>, int> = 0>
    friend bool operator==(const I18NPooledString& a, const Text& b) {
        return a.getString().compare(b) == 0;
    }
    template <class Text, std::enable_if_t<kI18NIsOrdered<Text>, int> = 0>
    friend bool operator==(const Text& a, const I18NPooledString& b) {
        return b.getString().compare(a) == 0;
    }
    template <class Text, std::enable_if_t<kI18NIsOrdered<Text>, int> = 0>
    friend bool operator!=(const I18NPooledString& a, const Text& b) {
        return a.getString().compare(b) != 0;
    }
    template <class Text, std::enable_if_t<kI18NIsOrdered<Text>, int> = 0>
    friend bool operator!=(const Text& a, const I18NPooledString& b) {
        return b.getString().compare(a) != 0;
    }
    template <class Text, std::enable_if_t<kI18NIsOrdered<Text>, int> = 0>
    friend bool operator<(const I18NPooledString& a, const Text& b) {
        return a.getString().compare(b) < 0;
    }
    template <class Text, std::enable_if_t<kI18NIsOrdered<Text>, int> = 0>
    friend bool operator<(const Text& a, const I18NPooledString& b) {
        return b.getString().compare(a) > 0;
    }
    template <class Text, std::enable_if_t<kI18NIsOrdered<Text>, int> = 0>
    friend bool operator<=(const I18NPooledString& a, const Text& b) {
        return a.getString().compare(b) <= 0;
    }
    template <class Text, std::enable_if_t<kI18NIsOrdered<Text>, int> = 0>
    friend bool operator<=(const Text& a, const I18NPooledString& b) {
        return b.getString().compare(a) >= 0;
    }
    template <class Text, std::enable_if_t<kI18NIsOrdered<Text>, int> = 0>
    friend bool operator>(const I18NPooledString& a, const Text& b) {
        return a.getString().compare(b) > 0;
    }
    template <class Text, std::enable_if_t<kI18NIsOrdered<Text>, int> = 0>
    friend bool operator>(const Text& a, const I18NPooledString& b) {
        return b.getString().compare(a) < 0;
    }
    template <class Text, std::enable_if_t<kI18NIsOrdered<Text>, int> = 0>
    friend bool operator>=(const I18NPooledString& a, const Text& b) {
        return a.getString().compare(b) >= 0;
    }
    template <class Text, std::enable_if_t<kI18NIsOrdered<Text>, int> = 0>
    friend bool operator>=(const Text& a, const I18NPooledString& b) {
        return b.getString().compare(a) <= 0;
    }
    /// @}

    /// @name Start and stop
    /// @{

    /// Registers the purge with the custodian, unless it is already registered. The library calls
    /// this function when it starts. Calls are counted. No task that the custodian runs may call
    /// this function or terminate().
    /// @return true if the purge is registered now
    /// @throws QBLOutOfMemoryError, QBLStdExceptionError; the call is not counted then
    static bool initialize();
    /// Undoes a call of initialize(). The last call deregisters the purge, waits for a running
    /// purge, and empties the pool. Does nothing if every call of initialize() has been undone.
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
    static std::atomic<bool> s_init;  // true once both have been read

    I18NPooledStringEntry* m_pEntry = nullptr;
};

/// Equal texts have equal hashes, so a holder can be looked up by a string or by UTF-8; see
/// I18NTextHash.
///
/// Threads: any thread may call it.
template <>
struct std::hash<I18NPooledString> : I18NTextHash {};

/// The texts of the process, in 257 buckets by a hash of their bytes.
///
/// Threads: any thread may call any operation. An operation that changes or walks a bucket holds
/// one of 64 locks. An operation on several buckets locks one bucket after another, so its result
/// does not describe a single moment. The number of holders may include lookups in progress. Sums
/// are capped at INT_MAX.
class QBL_API I18NPooledString::I18NPooledStringPool {
public:
    /// @name Texts
    /// @{

    /// Returns the string of a text, and adds the text if it is not in the pool. Each call counts
    /// as a holder until the matching releaseString().
    /// @param utf8  null is the empty text
    /// @throws like the constructors of I18NPooledString
    const I18NString& getString(const char* utf8);
    /// Does the same for the UTF-8 form of a string, as I18NPooledString takes it.
    const I18NString& getString(const I18NString& text);
    /// Releases one holder of a text. Does nothing if the text has no holder.
    /// @param string  the object that getString() of this class returned. Pass it once for each
    ///     call of getString(). Do not pass the string of an I18NPooledString, because the
    ///     I18NPooledString releases it
    /// @throws QBLIllegalArgumentError if the string is not in the pool
    void releaseString(const I18NString& string);
    /// @}

    /// @name Purge and dump
    /// @{

    /// Removes the texts without a holder. If "dumpToFile" is set, first writes a dump to the file.
    /// If the file cannot be opened or written, reports this on the standard error stream.
    void purge();
    /// Writes a line for each text, in the order of the buckets, and a summary. Texts are written
    /// as they are, including line ends.
    /// @param out  must not use the pool, because dump() writes to it while locks are held
    /// @throws QBLOutOfMemoryError, and what the stream throws if its exceptions are enabled
    void dump(std::ostream& out);
    /// @}

    /// @name Counts
    /// @{

    /// The number of texts in the pool.
    int count();
    /// The sum of I18NString::size() of all texts.
    int size();
    /// The sum of the holders of all texts.
    int getTotalRefCount();
    /// @}

    /// @name Hash
    /// @{

    /// The hash starts as the first byte, sign-extended. For each later byte it becomes hash * 38 +
    /// hash / 2^24 + the sign-extended byte, in 32 bits. The hash of null and of the empty text is
    /// 0.
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
    /// Calls a body with each bucket and its number, while holding the bucket's lock.
    template <class Body>
    void eachBucket(Body body);
    Totals totals();
    void dumpToFile();
    /// Removes all texts; a held text is destroyed with its last holder.
    void clear() noexcept;

    QBLThreadCriticalSection m_locks[kLocks];
    Bucket* m_pBuckets;
};

/// The custodian's task: purges the pool of strings from time to time.
///
/// Threads: one thread at a time may call doIt().
class QBL_API I18NPooledStringCustodian : public QBLCustodianTask {
    friend class I18NPooledString;

public:
    /// @param clock  returns the time as time() does
    explicit I18NPooledStringCustodian(std::time_t (*clock)(std::time_t*) = std::time);

    int doIt(int terminating) override;

private:
    std::time_t (*m_clock)(std::time_t*);
    std::time_t m_last;           // time of the last purge, or when the settings were read
    std::atomic<bool> m_dropped;  // a custodian that stopped has dropped the task
};
#if defined(_TIME_BITS) && _TIME_BITS == 64 && !defined(__LP64__)
static_assert(sizeof(I18NPooledStringCustodian) == 16,
              "_TIME_BITS=64 changes the layout of I18NPooledStringCustodian: compile without it");
#endif

#endif
