#include "i18n/cpp/converter/i18n_code_tables.hpp"

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "QBLCore/Base/QBLImmortal.hpp"
#include "QBLCore/Exceptions/QBLAllocation.hpp"
#include "QBLCore/Exceptions/QBLThrow.hpp"
#include "QBLCore/Exceptions/shared/QBLThrowNoMemory.hpp"
#include "QBLCore/Threads/QBLThreadGuard.hpp"

namespace {

/// Keeps the tables that were used last, so that a table's answers serve many texts. Streams and
/// converters with the same encoding share a table. A stream keeps its table, even after the shelf
/// has dropped it.
template <class Table>
class Shelf {
public:
    std::shared_ptr<Table> find(const UConverter* icu) {
        UErrorCode status = U_ZERO_ERROR;
        const char* const name = ucnv_getName(icu, &status);
        const bool fits = ucnv_usesFallback(icu) != 0;
        QBLThreadGuard guard(m_lock);
        QBL_ALLOC_TRY
        auto at = m_shelved.begin();
        while (at != m_shelved.end() && (at->fits != fits || at->name != name)) ++at;
        if (at == m_shelved.end()) {
            if (m_shelved.size() == kMost) m_shelved.pop_back();
            at = m_shelved.insert(m_shelved.begin(), Shelved{name, fits, make(icu)});
        } else {
            std::rotate(m_shelved.begin(), at, at + 1);
            at = m_shelved.begin();
        }
        return at->table;
        QBL_ALLOC_CATCH
    }

private:
    struct Shelved {
        std::string name;
        bool fits;
        std::shared_ptr<Table> table;  // null if too many ASCII characters are different
    };
    static std::shared_ptr<Table> make(const UConverter* icu) {
        I18NCodeQuestions questions(icu);
        I18NPlainASCII plain;
        if (!questions.findPlainASCII(plain)) return nullptr;
        return std::make_shared<Table>(std::move(questions), plain);
    }

    static constexpr std::size_t kMost = 8;
    QBLThreadCriticalSection m_lock;
    std::vector<Shelved> m_shelved QBL_GUARDED_BY(m_lock);  // the table used last comes first
};

}  // namespace

template <class Entry>
I18NTableEntries<Entry>::I18NTableEntries(std::size_t count)
    : m_pEntries(static_cast<std::atomic<Entry>*>(std::calloc(count, sizeof(std::atomic<Entry>)))) {
    static_assert(sizeof(std::atomic<Entry>) == sizeof(Entry) &&
                  std::atomic<Entry>::is_always_lock_free);
    if (m_pEntries == nullptr) qblThrowNoMemory(QBL_HERE);
}
template class I18NTableEntries<std::uint16_t>;
template class I18NTableEntries<std::uint32_t>;

std::shared_ptr<I18NDecodingTable> I18NDecodingTable::of(const UConverter* icu) {
    if (!I18NCodeQuestions::mayAsk(icu)) return nullptr;
    return qblImmortal<Shelf<I18NDecodingTable>>().find(icu);
}

std::shared_ptr<I18NEncodingTable> I18NEncodingTable::of(const UConverter* icu) {
    if (!I18NCodeQuestions::mayAsk(icu)) return nullptr;
    return qblImmortal<Shelf<I18NEncodingTable>>().find(icu);
}
