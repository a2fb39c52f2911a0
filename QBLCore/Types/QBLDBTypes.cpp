#include "QBLCore/Types/QBLDBTypes.hpp"

#include <algorithm>
#include <array>
#include <atomic>
#include <cstring>
#include <string_view>

#include "QBLCore/Base/QBLImmortal.hpp"
#include "QBLCore/Exceptions/QBLAllocation.hpp"
#include "QBLCore/Threads/QBLThreadCriticalSection.hpp"
#include "QBLCore/Threads/QBLThreadGuard.hpp"
#include "QBLCore/Types/internal/QBLDBTypeTables.hpp"

namespace {

/// Returns a table that is indexed by code and has the first row of each code.
template <std::size_t kCodes, class Row, std::size_t kRows>
constexpr std::array<Row, kCodes> byCode(const Row (&rows)[kRows]) {
    std::array<Row, kCodes> out{};
    for (const Row& row : rows) {
        Row& entry = out[static_cast<std::size_t>(row.code)];
        if (entry.name == nullptr) entry = row;
    }
    return out;
}

template <class Row, std::size_t kCodes>
constexpr bool complete(const std::array<Row, kCodes>& entries) {
    for (const Row& entry : entries)
        if (entry.name == nullptr) return false;
    return true;
}

constexpr auto kSqlColTypesByCode = byCode<kSqlColTypeCodes>(kSqlColTypes);
constexpr auto kQBLDBDatatypesByCode = byCode<kQBLDBDatatypeCodes>(kQBLDBDatatypes);
constexpr auto kXSTypesByCode = byCode<kXSTypeCodes>(kXSTypes);
static_assert(complete(kSqlColTypesByCode) && complete(kQBLDBDatatypesByCode) &&
              complete(kXSTypesByCode));

/// Returns the row of a code, or a row whose fields are all 0 if the code is not in the table.
template <std::size_t kCodes, class Row, class Code>
const Row& rowOf(const Row* entries, Code code) {
    static constexpr Row kNone{};
    const auto at = static_cast<unsigned>(code);
    return at < kCodes ? entries[at] : kNone;
}

/// Finds rows of a table by name, with a binary search.
template <class Row, std::size_t kRows>
class NameIndex {
    static_assert(kRows <= 256);

public:
    constexpr explicit NameIndex(const Row (&rows)[kRows]) : m_rows(rows) {
        for (std::size_t i = 0; i < kRows; ++i) {
            std::size_t place = i;
            for (; place > 0 && isLess(rows[i].name, rows[m_sorted[place - 1]].name); --place)
                m_sorted[place] = m_sorted[place - 1];
            m_sorted[place] = static_cast<unsigned char>(i);
        }
        const char* const first = rows[m_sorted[0]].name;
        const char* const last = rows[m_sorted[kRows - 1]].name;
        while (first[m_uPrefix] == last[m_uPrefix] && first[m_uPrefix] != '\0') ++m_uPrefix;
    }

    /// @return the code of the name; 0 if no row has it
    auto find(const char* name) const {
        using Code = decltype(m_rows[0].code);
        if (name == nullptr || std::strncmp(name, m_rows[0].name, m_uPrefix) != 0) return Code{};
        name += m_uPrefix;
        // The first character after the prefix decides most comparisons.
        const auto isBefore = [this](unsigned char row, const char* wanted) {
            const char* const has = m_rows[row].name + m_uPrefix;
            if (*has == *wanted) return std::strcmp(has, wanted) < 0;
            return static_cast<unsigned char>(*has) < static_cast<unsigned char>(*wanted);
        };
        const unsigned char* const end = m_sorted + kRows;
        const unsigned char* const found = std::lower_bound(m_sorted, end, name, isBefore);
        if (found == end || std::strcmp(m_rows[*found].name + m_uPrefix, name) != 0) return Code{};
        return m_rows[*found].code;
    }

private:
    static constexpr bool isLess(std::string_view a, std::string_view b) { return a < b; }

    const Row (&m_rows)[kRows];
    unsigned char m_sorted[kRows] = {};  // row numbers, sorted by name
    std::size_t m_uPrefix = 0;           // length of the prefix that all names share
};

constexpr NameIndex kSqlColTypeNames(kSqlColTypes);
constexpr NameIndex kQBLDBDatatypeNames(kQBLDBDatatypes);
constexpr NameIndex kXSTypeNames(kXSTypes);

struct CreationGuard : QBLThreadCriticalSection {};

}  // namespace

QBLDBTypes* QBLDBTypes::get() {
    static std::atomic<QBLDBTypes*> s_catalogue{nullptr};
    QBLDBTypes* one = s_catalogue.load(std::memory_order_acquire);
    if (one != nullptr) return one;
    QBL_ALLOC_TRY
    QBLThreadGuard guard(qblImmortal<CreationGuard>());
    one = s_catalogue.load(std::memory_order_relaxed);
    if (one == nullptr) {
        one = new QBLDBTypes;
        one->init();
        s_catalogue.store(one, std::memory_order_release);
    }
    QBL_ALLOC_CATCH
    return one;
}

void QBLDBTypes::init() {
    if (m_pSqlColTypes != nullptr) return;
    m_pSqlColTypes = kSqlColTypesByCode.data();
    m_pQBLDBDatatypes = kQBLDBDatatypesByCode.data();
    m_pXSTypes = kXSTypesByCode.data();
}

XSType QBLDBTypes::SqlColType2XSType(SqlColType type) const {
    return rowOf<kSqlColTypesByCode.size()>(m_pSqlColTypes, type).xsType;
}

QBLDBDatatype QBLDBTypes::SqlColType2QBLDBDatatype(SqlColType type) const {
    return rowOf<kSqlColTypesByCode.size()>(m_pSqlColTypes, type).datatype;
}

SqlColType QBLDBTypes::QBLDBDatatype2SqlColType(QBLDBDatatype type) const {
    return rowOf<kQBLDBDatatypesByCode.size()>(m_pQBLDBDatatypes, type).sqlColType;
}

XSType QBLDBTypes::QBLDBDatatype2XSType(QBLDBDatatype type) const {
    return rowOf<kQBLDBDatatypesByCode.size()>(m_pQBLDBDatatypes, type).xsType;
}

SqlColType QBLDBTypes::XSType2SqlColType(XSType type) const {
    return rowOf<kXSTypesByCode.size()>(m_pXSTypes, type).sqlColType;
}

QBLDBDatatype QBLDBTypes::XSType2QBLDBDatatype(XSType type) const {
    return rowOf<kXSTypesByCode.size()>(m_pXSTypes, type).datatype;
}

const char* QBLDBTypes::getName(SqlColType type) const {
    return rowOf<kSqlColTypesByCode.size()>(m_pSqlColTypes, type).name;
}

const char* QBLDBTypes::getName(QBLDBDatatype type) const {
    return rowOf<kQBLDBDatatypesByCode.size()>(m_pQBLDBDatatypes, type).name;
}

const char* QBLDBTypes::getName(XSType type) const {
    return rowOf<kXSTypesByCode.size()>(m_pXSTypes, type).name;
}

SqlColType QBLDBTypes::getSqlColTypeCode(const char* name) const {
    return kSqlColTypeNames.find(name);
}

QBLDBDatatype QBLDBTypes::getQBLDBDatatypeCode(const char* name) const {
    return kQBLDBDatatypeNames.find(name);
}

XSType QBLDBTypes::getXSTypeCode(const char* name) const { return kXSTypeNames.find(name); }
