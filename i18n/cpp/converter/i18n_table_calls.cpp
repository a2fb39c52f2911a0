#include "i18n/cpp/converter/i18n_table_calls.hpp"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>

#include "QBLCore/Exceptions/QBLOutOfMemoryError.hpp"
#include "i18n/cpp/converter/i18n_code_tables.hpp"
#include "i18n/cpp/converter/i18n_icu_calls.hpp"
#include "i18n/cpp/converter/i18n_icu_piece.hpp"

namespace {

// ICU converts all shorter texts. Looking for a table takes as long as ICU takes for some hundred
// bytes.
constexpr std::ptrdiff_t kLong = 2048;

bool isAligned(const char* units) {
    return reinterpret_cast<std::uintptr_t>(units) % alignof(UChar) == 0;
}

struct FromUnicode {
    using Table = I18NEncodingTable;
    using Unit = UChar;
    static constexpr auto kByIcu = i18nFromUnicode;

    static int pending(const UConverter* icu, UErrorCode& status) {
        return ucnv_fromUCountPending(icu, &status);
    }
    /// Returns true if the destination is nearly full. ICU then converts the text, because it keeps
    /// bytes that do not fit for its next call.
    static bool isNearEnd(const char* at, const char* limit) { return limit - at < Table::kRoom; }
    static void convert(Table& table, const UChar*& source, const UChar* end, char*& at,
                        char* limit) {
        table.encode(source, end, at, limit);
    }
};

struct ToUnicode {
    using Table = I18NDecodingTable;
    using Unit = char;
    static constexpr auto kByIcu = i18nToUnicode;

    static int pending(const UConverter* icu, UErrorCode& status) {
        return ucnv_toUCountPending(icu, &status);
    }
    static bool isNearEnd(const char* at, const char* limit) { return limit - at < 2; }
    static void convert(Table& table, const char*& source, const char* end, char*& at,
                        char* limit) {
        auto* text = reinterpret_cast<UChar*>(at);
        table.decode(source, end, text, text + (limit - at) / static_cast<int>(sizeof *text));
        at = reinterpret_cast<char*>(text);
    }
};

/// Returns null if there is no memory for a table: ICU then converts the text alone.
template <class Table>
std::shared_ptr<Table> tableOf(const UConverter* icu) {
    try {
        return Table::of(icu);
    } catch (const QBLOutOfMemoryError&) {
        return nullptr;
    }
}

template <class Way>
UErrorCode convert(UConverter* icu, char*& at, char* limit, const char*& source, const char* end,
                   bool flush) {
    using Unit = typename Way::Unit;
    constexpr auto kUnit = static_cast<std::ptrdiff_t>(sizeof(Unit));
    UErrorCode status = U_ZERO_ERROR;
    const bool isLong = end - source >= kLong && limit - at >= kLong;
    if (!isLong || !isAligned(source) || !isAligned(at) || Way::pending(icu, status) != 0)
        return Way::kByIcu(icu, at, limit, source, end, flush);
    const auto table = tableOf<typename Way::Table>(icu);
    if (table == nullptr) return Way::kByIcu(icu, at, limit, source, end, flush);

    I18NIcuPiece piece;
    bool isUnfinished = false;
    do {
        const auto* from = reinterpret_cast<const Unit*>(source);
        const auto* const to = reinterpret_cast<const Unit*>(end);
        if (!isUnfinished && !Way::isNearEnd(at, limit)) {
            Way::convert(*table, from, to, at, limit);
            piece.choose(from - reinterpret_cast<const Unit*>(source));
            source = reinterpret_cast<const char*>(from);
            if (from == to && !flush) break;
        }
        const std::ptrdiff_t left = to - from;
        const std::ptrdiff_t part =
            Way::isNearEnd(at, limit) ? left : std::min(left, piece.size(isUnfinished));
        status = Way::kByIcu(icu, at, limit, source, source + part * kUnit, flush && part == left);
        UErrorCode ignored = U_ZERO_ERROR;
        isUnfinished = Way::pending(icu, ignored) != 0;
    } while (U_SUCCESS(status) && source != end);
    return status;
}

}  // namespace

UErrorCode i18nFromUnicodeByTable(UConverter* converter, char*& at, char* limit,
                                  const char*& source, const char* end, bool flush) {
    return convert<FromUnicode>(converter, at, limit, source, end, flush);
}

UErrorCode i18nToUnicodeByTable(UConverter* converter, char*& at, char* limit, const char*& source,
                                const char* end, bool flush) {
    return convert<ToUnicode>(converter, at, limit, source, end, flush);
}
