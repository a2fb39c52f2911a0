// An entry contains the bytes of a character, the first byte in the lowest bits. No byte is 0, so
// the highest byte that is not 0 shows how many bytes there are.

#include <algorithm>
#include <cstring>
#include <utility>

#include "QBLCore/Threads/QBLThreadGuard.hpp"
#include "i18n/cpp/converter/i18n_code_tables.hpp"
#include "i18n/cpp/utf/i18n_utf.hpp"

namespace {

constexpr std::size_t kUnits = 0x10000;
constexpr std::ptrdiff_t kBlock = 16;

constexpr std::uint32_t kUnknown = 0;
constexpr std::uint32_t kByIcu = 0x100;  // the lowest byte is 0

bool hasBytes(std::uint32_t entry) { return (entry & 0xFF) != 0; }

void put(std::uint32_t entry, char*& bytes) {
    std::memcpy(bytes, &entry, sizeof entry);
    // Branches are faster than arithmetic here: with arithmetic, the place of each character would
    // depend on the entry of the previous character.
    bytes += entry < 0x10000 ? (entry < 0x100 ? 1 : 2) : entry < 0x1000000 ? 3 : 4;
}

__m128i load(const void* p) { return _mm_loadu_si128(static_cast<const __m128i*>(p)); }
void store(void* p, __m128i v) { _mm_storeu_si128(static_cast<__m128i*>(p), v); }

}  // namespace

I18NEncodingTable::I18NEncodingTable(I18NCodeQuestions&& questions, const I18NPlainASCII& plain)
    : m_plain(plain), m_entries(kUnits), m_questions(std::move(questions)) {}

std::uint32_t I18NEncodingTable::ask(char16_t unit) {
    char bytes[I18NCodeQuestions::kMostBytes] = {};
    int length = 0;
    QBLThreadGuard guard(m_lock);
    // Two threads may ask about the same unit, and then get the same answer.
    if (!i18nIsHigh(unit) && !i18nIsLow(unit)) m_questions.encode(unit, bytes, length);
    std::uint32_t entry = kByIcu;
    if (length > 0) std::memcpy(&entry, bytes, sizeof entry);
    if (length >= 0) m_entries.set(unit, entry);
    return entry;
}

inline std::uint32_t I18NEncodingTable::entryFor(char16_t unit) {
    const std::uint32_t entry = m_entries.get(unit);
    return entry != kUnknown ? entry : ask(unit);
}

void I18NEncodingTable::encode(const char16_t*& text, const char16_t* end, char*& bytes,
                               const char* limit) {
    const I18NPlainBlocks plain(m_plain);
    const char16_t* at = text;
    char* to = bytes;
    const char* const last = limit - kRoom;
    bool isByTable = true;
    while (isByTable && end - at >= kBlock && to <= last) {
        const __m128i low = load(at), high = load(at + kBlock / 2);
        // Packing turns a unit above 0xFF into 0xFF, and a unit above 0x7FFF, which is negative,
        // into 0. `signs` detects the latter.
        const __m128i packed = _mm_packus_epi16(low, high);
        const auto signs = static_cast<unsigned>(_mm_movemask_epi8(_mm_packs_epi16(low, high)));
        store(to, packed);
        const unsigned others = plain.others(packed) | signs;
        // This branch lets the processor start the next block before it has counted this run.
        if (others == 0) {
            at += kBlock;
            to += kBlock;
            continue;
        }
        const int run = __builtin_ctz(others);
        at += run;
        to += run;
        if (to > last) continue;
        std::uint32_t entry = 0;
        do {
            entry = entryFor(*at);
            if (!hasBytes(entry)) break;
            put(entry, to);
        } while (++at != end && *at >= 0x80 && to <= last);
        isByTable = hasBytes(entry);
    }
    for (; isByTable && at != end && to <= last; ++at) {
        const bool isPlain = m_plain.has(*at);
        const std::uint32_t entry = isPlain ? *at : entryFor(*at);
        if (!isPlain && !hasBytes(entry)) break;
        put(entry, to);
    }
    text = at;
    bytes = to;
}
