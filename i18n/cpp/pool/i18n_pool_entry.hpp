#ifndef I18N_CPP_POOL_I18N_POOL_ENTRY_HPP
#define I18N_CPP_POOL_I18N_POOL_ENTRY_HPP

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <new>

#include "i18n/cpp/i18n_string.hpp"

// The life of an entry. The word refCount is its state. One thread writes all other members while
// no other thread uses the entry. While the entry is live or detached, these members do not change,
// except the link `next` and the conversions that the string caches (i18n_string_convert.cpp).
//   empty      0: in its block's list of empty places, or with the thread that took it from there.
//   live       kLive and the number of holders, which may be 0: in the list and the index of a
//              bucket.
//   detached   kLive, kDetached and the number of holders: in no bucket, kept for its last holders.
// Changes of the state:
//   empty -> live        enter(), under the bucket's lock, once string, hash and copy are set.
//   live -> empty        retire(), under the bucket's lock, if it has no holder (purge).
//   live -> detached     detach(), under the bucket's lock (the library stops).
//   detached -> empty    the unpin() of the last holder, or detach() if it has no holder.
//
// Any thread may call pin() on an entry that it finds, however old the address is. pin() fails
// unless the entry is live and has room for another holder. By then, the entry may have another
// text. So the thread compares hash and text after the pin, and unpins the entry if it has another
// text. No thread destroys a pinned entry.
//
// Exactly one thread destroys an entry. retire() changes the state from "live without holders" to 0
// in one atomic step, so no pin() can come between. After kDetached is set, no pin() succeeds, and
// only a holder can add a holder. So exactly one thread changes the count from 1 to 0. unpin() does
// not change a count of 0, because one release too many must not damage the state.
//
// Memory order: enter() releases the contents, and pin() acquires them. All later changes are
// read-modify-write operations, so a pin() that reads the result of a later change acquires the
// contents, too. unpin() releases the holder's reads; retire(), detach() and the last unpin()
// acquire these reads before they destroy the string. addHolder() is relaxed, because its caller
// has a holder. The place of a destroyed entry goes to its next owner under the lock of
// i18n_places.
//
// Tests: I18NPooledStringTest.ThreadsAcquireReleasePurgeDumpAndStop detects mistakes, above all
// with the presets x86-asan and x64-tsan. x64-tsan reports a weaker order in enter(), in pin() and
// in unpin(). SurplusReleaseIsHarmless and HoldersOutliveTheLibrary detect other mistakes.

/// A copy of the characters that a string stores in itself. If kSize is 0, there is no copy, and
/// get() returns the string's own characters.
template <std::size_t kSize>
struct I18NPoolCopy {
    char bytes[kSize];
    void set(const char* text, std::size_t length) { std::memcpy(bytes, text, length); }
    const char* get(const char*) const { return bytes; }
};
template <>
struct I18NPoolCopy<0> {
    void set(const char*, std::size_t) {}
    const char* get(const char* text) const { return text; }
};

/// A text of the pool of strings, or an empty place for a text. The memory of an entry is never
/// freed. So a thread can read the state of an entry that is destroyed after the thread has found
/// it. The thread reads nothing else before pin() succeeds.
///
/// The last cache line of an entry holds everything that is needed to find a short text. At 32
/// bits, the string's own characters are in this cache line. At 64 bits they would not fit, so this
/// cache line has a copy of them.
struct alignas(64) I18NPooledStringEntry {
    /// The value of refCount: 0 for an empty place, else kLive, the number of holders, and these
    /// flags.
    static constexpr std::uint32_t kLive = 1U << 30;
    static constexpr std::uint32_t kDetached = 1U << 29;  // no longer in the pool
    static constexpr std::uint32_t kShort = 1U << 28;     // the text is in the string itself
    static constexpr std::uint32_t kCount = kShort - 1;
    static constexpr std::uint32_t kFull = 1U << 27;  // set if the count is at its maximum

    static constexpr std::size_t kCopy = sizeof(void*) > 4 ? (I18NString::kInline + 8) / 8 * 8 : 0;
    static constexpr std::size_t kUsed =
        sizeof(void*) + sizeof(I18NString) + kCopy + 2 * sizeof(std::uint32_t);
    unsigned char unused[64 - kUsed % 64];
    I18NPooledStringEntry* next;  // in the bucket, or in the list of empty places
    alignas(I18NString) unsigned char place[sizeof(I18NString)];
    [[no_unique_address]] I18NPoolCopy<kCopy> copy;
    std::uint32_t hashCode;
    std::atomic<std::uint32_t> refCount;

    I18NString& string() { return *std::launder(reinterpret_cast<I18NString*>(place)); }
    /// Makes the place a live entry with one holder. Requires: the place has a string and its hash.
    void enter() noexcept {
        I18NString& text = string();
        const bool inlined = text.m_pUnicodeString == nullptr && text.c_str() == text.m_asciiInline;
        if (inlined) {
            // Texts are compared by words, so the bytes after the end must be defined.
            const auto length = static_cast<std::size_t>(text.m_asciiBufLength);
            std::memset(text.m_asciiInline + length, '\0', sizeof text.m_asciiInline - length);
            copy.set(text.m_asciiInline, sizeof text.m_asciiInline);
        }
        refCount.store(kLive | (inlined ? kShort : 0U) | 1, std::memory_order_release);
    }
    /// Requires: the caller has a holder or the bucket's lock.
    bool holds(const char* utf8, std::size_t length) {
        if ((refCount.load(std::memory_order_relaxed) & kShort) == 0)
            return holdsLong(utf8, length);
        return length <= I18NString::kInline &&
               sameText(copy.get(string().m_asciiInline), utf8, length);
    }

    std::uint32_t holders() const { return refCount.load(std::memory_order_acquire) & kCount; }

    /// Adds a holder. Fails if the entry is not in the pool or has too many holders.
    bool pin() noexcept {
        std::uint32_t state = refCount.load(std::memory_order_relaxed);
        while ((state & (kLive | kDetached | kFull)) == kLive)
            if (refCount.compare_exchange_weak(state, state + 1, std::memory_order_acquire,
                                               std::memory_order_relaxed))
                return true;
        return false;
    }
    /// @return false if there are too many holders
    /// Requires: the caller has a holder.
    bool addHolder() noexcept {
        if ((refCount.fetch_add(1, std::memory_order_relaxed) & kFull) == 0) return true;
        refCount.fetch_sub(1, std::memory_order_relaxed);
        return false;
    }
    /// Releases a holder. Does nothing if there is no holder, because a caller may release an entry
    /// too often. The last release of a detached entry destroys the entry.
    void unpin() noexcept {
        std::uint32_t state = refCount.load(std::memory_order_relaxed);
        do {
            if ((state & kLive) == 0 || (state & kCount) == 0) return;
        } while (!refCount.compare_exchange_weak(state, state - 1, std::memory_order_acq_rel,
                                                 std::memory_order_relaxed));
        if (isLast(state)) destroy();
    }
    /// Destroys the entry if it has no holders. Its place is empty then.
    /// @return false if the entry has holders
    bool retire() noexcept {
        std::uint32_t state = refCount.load(std::memory_order_relaxed);
        do {
            if ((state & kCount) != 0) return false;
        } while (!refCount.compare_exchange_weak(state, 0, std::memory_order_acquire,
                                                 std::memory_order_relaxed));
        destroy();
        return true;
    }
    /// Takes the entry out of the pool. Destroys the entry now if it has no holders; otherwise the
    /// last unpin() destroys it.
    void detach() noexcept {
        const std::uint32_t state = refCount.fetch_or(kDetached, std::memory_order_acq_rel);
        if ((state & kCount) == 0) destroy();
    }

private:
    /// Compares two null-terminated texts by words; `length` is the length of `utf8`.
    static bool sameText(const char* text, const char* utf8, std::size_t length) {
        const auto differ = [=](std::size_t i) {
            std::uint32_t a, b;
            std::memcpy(&a, text + i, sizeof a);
            std::memcpy(&b, utf8 + i, sizeof b);
            return a != b;
        };
        if (length < 3) return std::memcmp(text, utf8, length + 1) == 0;
        for (std::size_t i = 0; i + 4 <= length; i += 4)
            if (differ(i)) return false;
        return !differ(length - 3);
    }
    static bool isLast(std::uint32_t state) {
        return (state & (kDetached | kCount)) == (kDetached | 1);
    }
    bool holdsLong(const char* utf8, std::size_t length);
    void destroy() noexcept;
};

/// The memory of entries: blocks of places, which are kept for the life of the process. If all
/// places of a block are empty, its memory is given back to the system and then reads as zeros.
namespace i18n_places {

/// Returns an empty place.
/// @throws QBLOutOfMemoryError
I18NPooledStringEntry* take();
void give(I18NPooledStringEntry* place) noexcept;
/// Returns the entry that contains a string; null if no entry contains it. The entry may be an
/// empty place.
I18NPooledStringEntry* find(const I18NString& string);
/// Gives the memory of a block back to the system if all its places have been empty since the
/// previous call. So memory that a program uses again and again stays.
void trim() noexcept;

}  // namespace i18n_places

#endif
