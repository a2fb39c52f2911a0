#include "QBLCore/Resources/shared/QBLCatalogueCache.hpp"

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <map>
#include <new>

#include "QBLCore/Base/QBLImmortal.hpp"
#include "QBLCore/Exceptions/QBLThrowable.hpp"
#include "QBLCore/Resources/shared/QBLCatalogue.hpp"
#include "QBLCore/Threads/QBLThreadCriticalSection.hpp"
#include "QBLCore/Threads/QBLThreadGuard.hpp"

namespace {

// Locales may come from a program's clients, so the number and the length of the remembered lists
// are limited. For other lists, each call searches for the file again.
const std::size_t kMaxNames = 4096;
const std::size_t kLongestKey = 4096;

const std::size_t kMaxCatalogues = 64;
const std::size_t kMaxBytes = 16 << 20;  // total size of the catalogues

typedef std::shared_ptr<const QBLCatalogue> CataloguePtr;
/// Catalogues that were dropped. They are destroyed after the lock is released.
typedef std::array<CataloguePtr, kMaxCatalogues> Dropped;

class Cache {
public:
    bool findName(const std::string& key, std::string& fileName) {
        QBLThreadGuard guard(m_QBLResourceFactoryLock);
        const auto found = m_QBLResourceBaseFileLocaleMap.find(key);
        if (found == m_QBLResourceBaseFileLocaleMap.end()) return false;
        fileName = found->second.fileName;
        return true;
    }

    void keepName(const std::string& key, const std::string& fileName) {
        if (key.size() > kLongestKey) return;
        QBLThreadGuard guard(m_QBLResourceFactoryLock);
        const auto found = m_QBLResourceBaseFileLocaleMap.find(key);
        if (found != m_QBLResourceBaseFileLocaleMap.end())
            found->second.fileName = fileName;
        else if (m_QBLResourceBaseFileLocaleMap.size() < kMaxNames)
            m_QBLResourceBaseFileLocaleMap.emplace(key, Found{fileName, 0});
    }

    /// @param fileName  receives the name of the file if the name is known but its catalogue is not
    ///     in the cache; otherwise unchanged
    /// @return null if the catalogue is not in the cache
    CataloguePtr find(const std::string& key, std::string& fileName) {
        QBLThreadGuard guard(m_QBLResourceFactoryLock);
        const auto found = m_QBLResourceBaseFileLocaleMap.find(key);
        if (found == m_QBLResourceBaseFileLocaleMap.end()) return nullptr;
        Found& file = found->second;
        if (!isAt(file.place, file.fileName)) file.place = placeOf(file.fileName);
        if (file.place != kMaxCatalogues) {
            m_places[file.place].lastUse = ++m_uUses;
            return m_places[file.place].catalogue;
        }
        file.place = 0;
        fileName = file.fileName;
        return nullptr;
    }

    void keep(const CataloguePtr& catalogue) {
        Dropped dropped;
        QBLThreadGuard guard(m_QBLResourceFactoryLock);
        std::size_t place = placeOf(catalogue->getFileName());
        if (place != kMaxCatalogues) drop(place, dropped);
        while ((place = placeOf(std::string())) == kMaxCatalogues ||
               m_uBytes + catalogue->getSize() > kMaxBytes)
            drop(leastUsed(), dropped);
        m_places[place] = {catalogue, ++m_uUses};
        m_uBytes += catalogue->getSize();
    }

    void drop(const std::string& fileName) {
        Dropped dropped;
        QBLThreadGuard guard(m_QBLResourceFactoryLock);
        const std::size_t place = placeOf(fileName);
        if (place != kMaxCatalogues) drop(place, dropped);
    }

private:
    struct Found {
        std::string fileName;
        std::size_t place;  // of its catalogue, unless it was dropped
    };
    struct Place {
        CataloguePtr catalogue;  // may be null
        std::uint64_t lastUse = 0;
    };

    /// An empty name means a place without a catalogue.
    bool isAt(std::size_t place, const std::string& fileName) const
        QBL_REQUIRES(m_QBLResourceFactoryLock) {
        const CataloguePtr& there = m_places[place].catalogue;
        return there == nullptr ? fileName.empty() : there->getFileName() == fileName;
    }
    /// @return kMaxCatalogues if no place has this catalogue
    std::size_t placeOf(const std::string& fileName) const QBL_REQUIRES(m_QBLResourceFactoryLock) {
        std::size_t place = 0;
        while (place < kMaxCatalogues && !isAt(place, fileName)) ++place;
        return place;
    }
    std::size_t leastUsed() const QBL_REQUIRES(m_QBLResourceFactoryLock) {
        std::size_t least = 0;
        for (std::size_t place = 1; place < kMaxCatalogues; ++place) {
            const bool has = m_places[place].catalogue != nullptr;
            if (has && (m_places[least].catalogue == nullptr ||
                        m_places[place].lastUse < m_places[least].lastUse))
                least = place;
        }
        return least;
    }
    void drop(std::size_t place, Dropped& dropped) QBL_REQUIRES(m_QBLResourceFactoryLock) {
        m_uBytes -= m_places[place].catalogue->getSize();
        dropped[place] = std::move(m_places[place].catalogue);
    }

    QBLThreadCriticalSection m_QBLResourceFactoryLock{0};
    std::map<std::string, Found> m_QBLResourceBaseFileLocaleMap
        QBL_GUARDED_BY(m_QBLResourceFactoryLock);
    std::array<Place, kMaxCatalogues> m_places QBL_GUARDED_BY(m_QBLResourceFactoryLock);
    std::uint64_t m_uUses QBL_GUARDED_BY(m_QBLResourceFactoryLock) = 0;
    std::size_t m_uBytes QBL_GUARDED_BY(m_QBLResourceFactoryLock) = 0;
};

}  // namespace

std::string QBLCatalogueCache::keyOf(const std::string& baseName, const char* localeIDs) {
    const std::size_t length = std::strlen(localeIDs);
    std::string key = std::to_string(baseName.size());
    key.reserve(key.size() + 1 + baseName.size() + length);
    return key.append(1, ' ').append(baseName).append(localeIDs, length);
}

bool QBLCatalogueCache::findName(const std::string& key, std::string& fileName) {
    return qblImmortal<Cache>().findName(key, fileName);
}

void QBLCatalogueCache::keepName(const std::string& key, const std::string& fileName) {
    qblImmortal<Cache>().keepName(key, fileName);
}

CataloguePtr QBLCatalogueCache::get(const std::string& baseName, const char* localeIDs) {
    try {
        Cache& cache = qblImmortal<Cache>();
        std::string fileName;
        const CataloguePtr kept = cache.find(keyOf(baseName, localeIDs), fileName);
        if (kept != nullptr) {
            if (kept->isCurrent()) return kept->isSound() ? kept : nullptr;
            fileName = kept->getFileName();
        } else if (fileName.empty()) {
            return nullptr;
        }
        const CataloguePtr current = QBLCatalogue::read(fileName);
        if (current != nullptr)
            cache.keep(current);
        else if (kept != nullptr)
            cache.drop(fileName);
        return current != nullptr && current->isSound() ? current : nullptr;
    } catch (const std::bad_alloc&) {
        // Ignored: the caller needs less memory than a catalogue.
    } catch (const QBLThrowable&) {
        // Ignored: if the reason persists, the caller gets the same error.
    }
    return nullptr;
}
