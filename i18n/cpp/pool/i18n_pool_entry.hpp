#ifndef I18N_CPP_POOL_I18N_POOL_ENTRY_HPP
#define I18N_CPP_POOL_I18N_POOL_ENTRY_HPP

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <new>

#include "i18n/cpp/i18n_string.hpp"

// How an entry lives. The word refCount is its state. The rest is written while one thread alone
// has the entry, and does not change while it is live or detached, except the link `next` and the
// conversions that the string keeps by its own rules.
//   empty      0: in its block's list of empty places, or with the thread that took it from there.
//   live       kLive and the number of holders, which may be 0: in the list and the index of a
//              bucket.
//   detached   also kDetached: in no bucket, kept for its last holders.
// Who changes the state:
//   empty -> live        enter(), under the bucket's lock, when string, hash and copy are there.
//   live -> empty        retire(), under the bucket's lock, if nobody holds it (purge).
//   live -> detached     detach(), under the bucket's lock (the library stops).
//   detached -> empty    the unpin() of the last holder, or detach() if nobody holds it.
//
// Any thread may pin() what it finds, however old the address is: pin() fails unless the entry is
// live, and has room for a holder more. It may be live with another text by then, so the finder
// compares hash and text after the pin, and unpins what it did not look for. Nothing destroys an
// entry that is pinned.
//
// One thread destroys an entry, once. retire() goes from "no holders" to 0 in one step, so that no
// pin comes between. Once kDetached is set no pin succeeds, and only a holder can add a holder: so
// one thread sees the count go from 1 to 0. unpin() leaves a count of 0 alone, since a release too
// many must not spoil the state.
//
// Memory order: enter() releases the contents, and pin() acquires them. All later changes are
// read-modify-write operations, so a pin that reads one of them acquires the contents too. unpin()
// releases the holder's reads; retire(), detach() and the last unpin() acquire them before the
// string is destroyed. addHolder() is relaxed, since its caller has a holder. A destroyed place
// goes to its next owner under the lock of i18n_places.
//
// A mistake shows in I18NPooledStringTest.ThreadsAcquireReleasePurgeDumpAndStop, above all with the
// presets x64-tsan, which reports each of enter(), pin() and unpin() with a weaker order, and
// x86-asan; and in ASurplusReleaseSpoilsNothing and HoldersOutliveTheLibrary.

/// A copy of the characters that a string has itself; or none, and those are read there.
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

/// A text of the pool of strings, or a place for one. The memory of an entry is never freed, so
/// that its state can be read by who found it just before it was destroyed: nothing else of it is
/// read before pin() has succeeded.
///
/// It ends with a cache line, in which there is all that a short text is found by: at 32 bits the
/// end of the string, at 64 bits, where that would not fit, a copy of its characters.
struct alignas(64) I18NPooledStringEntry {
    /// 0 for an empty place, else kLive and the number of holders.
    static constexpr std::uint32_t kLive = 1U << 30;
    static constexpr std::uint32_t kDetached = 1U << 29;  // no longer in the pool
    static constexpr std::uint32_t kShort = 1U << 28;     // the text is in the string itself
    static constexpr std::uint32_t kCount = kShort - 1;
    static constexpr std::uint32_t kFull = 1U << 27;  // of the count: there may be no more

    static constexpr std::size_t kCopy = sizeof(void*) > 4 ? (I18NString::kInline + 8) / 8 * 8 : 0;
    static constexpr std::size_t kUsed =
        sizeof(void*) + sizeof(I18NString) + kCopy + 2 * sizeof(std::uint32_t);
    unsigned char unused[64 - kUsed % 64];
    I18NPooledStringEntry* next;  // in the bucket, or of the empty places
    alignas(I18NString) unsigned char place[sizeof(I18NString)];
    [[no_unique_address]] I18NPoolCopy<kCopy> copy;
    std::uint32_t hashCode;
    std::atomic<std::uint32_t> refCount;

    I18NString& string() { return *std::launder(reinterpret_cast<I18NString*>(place)); }
    /// Makes an entry of a place whose string and hash are there, with one holder.
    void enter() noexcept {
        I18NString& text = string();
        const bool inlined = text.m_pUnicodeString == nullptr && text.c_str() == text.m_asciiInline;
        if (inlined) {
            // Words of it are compared, also behind its end.
            const auto length = static_cast<std::size_t>(text.m_asciiBufLength);
            std::memset(text.m_asciiInline + length, '\0', sizeof text.m_asciiInline - length);
            copy.set(text.m_asciiInline, sizeof text.m_asciiInline);
        }
        refCount.store(kLive | (inlined ? kShort : 0U) | 1, std::memory_order_release);
    }
    /// Requires: the caller has a holder, or the bucket's lock.
    bool holds(const char* utf8, std::size_t length) {
        if ((refCount.load(std::memory_order_relaxed) & kShort) == 0)
            return holdsLong(utf8, length);
        return length <= I18NString::kInline &&
               sameText(copy.get(string().m_asciiInline), utf8, length);
    }

    std::uint32_t holders() const { return refCount.load(std::memory_order_acquire) & kCount; }

    /// Counts a holder, unless the entry is not in the pool or has too many.
    bool pin() noexcept {
        std::uint32_t state = refCount.load(std::memory_order_relaxed);
        while ((state & (kLive | kDetached | kFull)) == kLive)
            if (refCount.compare_exchange_weak(state, state + 1, std::memory_order_acquire,
                                               std::memory_order_relaxed))
                return true;
        return false;
    }
    /// @return false if there are too many
    /// Requires: the caller has a holder.
    bool addHolder() noexcept {
        if ((refCount.fetch_add(1, std::memory_order_relaxed) & kFull) == 0) return true;
        refCount.fetch_sub(1, std::memory_order_relaxed);
        return false;
    }
    /// Counts a holder less, unless there is none: it may have been released once too often. The
    /// last one of an entry that is no longer in the pool destroys it.
    void unpin() noexcept {
        std::uint32_t state = refCount.load(std::memory_order_relaxed);
        do {
            if ((state & kLive) == 0 || (state & kCount) == 0) return;
        } while (!refCount.compare_exchange_weak(state, state - 1, std::memory_order_acq_rel,
                                                 std::memory_order_relaxed));
        if (isLast(state)) destroy();
    }
    /// Makes an empty place of an entry without holders.
    /// @return false, with nothing done, if it has any
    bool retire() noexcept {
        std::uint32_t state = refCount.load(std::memory_order_relaxed);
        do {
            if ((state & kCount) != 0) return false;
        } while (!refCount.compare_exchange_weak(state, 0, std::memory_order_acquire,
                                                 std::memory_order_relaxed));
        destroy();
        return true;
    }
    /// Takes the entry from the pool: it goes with its last holder, now if there is none.
    void detach() noexcept {
        const std::uint32_t state = refCount.fetch_or(kDetached, std::memory_order_acq_rel);
        if ((state & kCount) == 0) destroy();
    }

private:
    /// Compares texts of which one has a length, and the other a zero at its end, by words.
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

/// Where entries live: blocks of places, which are kept for the life of the process. Memory of
/// places that are all empty is given back to the system, and reads as zeros then.
namespace i18n_places {

/// An empty place.
/// @throws QBLOutOfMemoryError
I18NPooledStringEntry* take();
void give(I18NPooledStringEntry* place) noexcept;
/// The entry that a string is in, which may be an empty place; null for any other string.
I18NPooledStringEntry* find(const I18NString& string);
/// Gives memory back: that of places which have been empty since the last time, so that what a
/// program needs again and again stays.
void trim() noexcept;

}  // namespace i18n_places

#endif
