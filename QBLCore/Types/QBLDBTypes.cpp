#include "QBLCore/Types/QBLDBTypes.hpp"

#include <array>
#include <atomic>
#include <cstdint>
#include <cstring>

#include "QBLCore/Base/QBLImmortal.hpp"
#include "QBLCore/Exceptions/QBLAllocation.hpp"
#include "QBLCore/Threads/QBLThreadCriticalSection.hpp"
#include "QBLCore/Threads/QBLThreadGuard.hpp"
#include "QBLCore/Types/internal/QBLDBTypeTables.hpp"

namespace {

/// The rows of a table by their codes: the first row of a code.
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

constexpr auto kSqlColTypesByCode = byCode<sqlInterval2 + 1>(kSqlColTypes);
constexpr auto kQBLDBDatatypesByCode = byCode<qblDTypeInterval2 + 1>(kQBLDBDatatypes);
constexpr auto kXSTypesByCode = byCode<xsPositiveInteger + 1>(kXSTypes);
static_assert(complete(kSqlColTypesByCode) && complete(kQBLDBDatatypesByCode) &&
              complete(kXSTypesByCode));

/// The row of a code; that of no code, whose fields are all 0, outside the table.
template <std::size_t kCodes, class Row, class Code>
const Row& rowOf(const Row* entries, Code code) {
    static constexpr Row kNone{};
    const auto at = static_cast<unsigned>(code);
    return at < kCodes ? entries[at] : kNone;
}

constexpr std::uint32_t fourBytes(const char* at) {
    std::uint32_t out = 0;
    for (int i = 3; i >= 0; --i) out = out << 8 | static_cast<unsigned char>(at[i]);
    return out;
}

constexpr std::size_t kShortestName = 5;

/// Takes eight bytes of a name and its length, which no two names of a table share.
constexpr std::uint32_t hashOf(const char* name, std::size_t length, std::uint32_t seed) {
    const std::uint32_t middle = fourBytes(name + (length - 4) * 2 / 5);
    const std::uint32_t last = fourBytes(name + length - 4);
    std::uint32_t hash = (middle ^ seed) * 0x9E3779B1U;
    hash = ((hash >> 15 ^ hash) + last + static_cast<std::uint32_t>(length)) * 0x85EBCA77U;
    return hash >> 23;
}

constexpr std::size_t lengthOf(const char* name) {
    std::size_t length = 0;
    while (name[length] != '\0') ++length;
    return length;
}

/// Finds the rows of a table by their names. Each name has a place of its own, so that a lookup
/// compares once.
template <class Row, std::size_t kRows>
class NameIndex {
public:
    constexpr explicit NameIndex(const Row (&rows)[kRows]) : m_rows(rows) {
        while (!placeAll()) ++m_uSeed;
    }

    /// @return code 0 if there is none
    auto find(const char* name) const {
        using Code = decltype(m_rows[0].code);
        const std::size_t length = name != nullptr ? std::strlen(name) : 0;
        if (length < kShortestName) return Code{};
        const Row& row = m_rows[m_places[hashOf(name, length, m_uSeed)]];
        return std::strcmp(name, row.name) == 0 ? row.code : Code{};
    }

private:
    constexpr bool placeAll() {
        bool taken[512] = {};
        for (std::size_t i = 0; i < kRows; ++i) {
            const std::uint32_t place = hashOf(m_rows[i].name, lengthOf(m_rows[i].name), m_uSeed);
            if (taken[place]) return false;
            taken[place] = true;
            m_places[place] = static_cast<unsigned char>(i);
        }
        return true;
    }

    const Row (&m_rows)[kRows];
    unsigned char m_places[512] = {};  // an unused one leads to the first row
    std::uint32_t m_uSeed = 0;
};

constexpr NameIndex kSqlColTypeNames(kSqlColTypes);
constexpr NameIndex kQBLDBDatatypeNames(kQBLDBDatatypes);
constexpr NameIndex kXSTypeNames(kXSTypes);

struct CreationGuard : QBLThreadCriticalSection {};

}  // namespace

QBLDBTypes* QBLDBTypes::get() {
    static std::atomic<QBLDBTypes*> catalogue{nullptr};
    QBLDBTypes* one = catalogue.load(std::memory_order_acquire);
    if (one != nullptr) return one;
    QBL_ALLOC_TRY
    QBLThreadGuard guard(qblImmortal<CreationGuard>());
    one = catalogue.load(std::memory_order_relaxed);
    if (one == nullptr) {
        one = new QBLDBTypes;
        one->init();
        catalogue.store(one, std::memory_order_release);
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
