#ifndef I18N_CPP_POOL_I18N_POOL_BUCKET_HPP
#define I18N_CPP_POOL_I18N_POOL_BUCKET_HPP

#include "i18n/cpp/i18n_pooledstring.hpp"
#include "i18n/cpp/pool/i18n_pool_entry.hpp"
#include "i18n/cpp/pool/i18n_pool_index.hpp"

/// The entries of a bucket in the order of their arrival. The bucket's lock guards everything
/// except the index.
struct I18NPooledString::I18NPooledStringPool::Bucket {
    using Entry = I18NPooledStringEntry;

    Entry* first;
    Entry* last;
    unsigned count;
    I18NPoolIndex index;

    /// Makes room for one more entry.
    /// @throws std::bad_alloc
    void makeRoom() {
        if (index.hasRoomFor(count + 1)) return;
        index.grow();
        fillIndex();
    }
    void append(Entry* entry) noexcept {
        entry->next = nullptr;
        (last != nullptr ? last->next : first) = entry;
        last = entry;
        ++count;
        index.insert(entry);
    }
    /// Removes each entry for which a body returns true. The body may destroy that entry.
    template <class Body>
    void removeIf(Body body) noexcept {
        const unsigned before = count;
        Entry* kept = nullptr;
        for (Entry *e = first, *next = nullptr; e != nullptr; e = next) {
            next = e->next;
            if (!body(*e)) {
                kept = e;
                continue;
            }
            (kept != nullptr ? kept->next : first) = next;
            --count;
        }
        last = kept;
        if (count == before) return;
        index.clear();
        fillIndex();
    }

private:
    void fillIndex() noexcept {
        for (Entry* e = first; e != nullptr; e = e->next) index.insert(e);
    }
};

#endif
