// The entries form a trie. A node has an entry for each value of a byte. The entry is the unit of a
// character XOR kMark, or the number of the node for the next byte. Only a surrogate XOR kMark is
// below kNodes, and a unit is never a surrogate, so an entry below kNodes is not a unit. The number
// of the node after a first byte is kPairs plus this byte. It need not be looked up, so a character
// of two bytes takes only one access to the entries. Two numbers do not lead to another node:
// kUnknown, the value of all entries at first, and kByIcu, for sequences that ICU must convert.

#include <utility>

#include "QBLCore/Threads/QBLThreadGuard.hpp"
#include "i18n/cpp/converter/i18n_code_tables.hpp"

namespace {

constexpr unsigned kBranches = 0x100;
constexpr std::ptrdiff_t kBlock = 16;

constexpr unsigned kUnknown = 0, kByIcu = 1, kRoot = 2, kPairs = 3, kNodes = 0x800;
constexpr unsigned kMark = 0xD800;

bool isUnit(unsigned entry) { return entry >= kNodes; }
char16_t unitOf(unsigned entry) { return static_cast<char16_t>(entry ^ kMark); }

__m128i load(const void* p) { return _mm_loadu_si128(static_cast<const __m128i*>(p)); }
void store(void* p, __m128i v) { _mm_storeu_si128(static_cast<__m128i*>(p), v); }

void widen(__m128i block, char16_t* to) {
    store(to, _mm_unpacklo_epi8(block, _mm_setzero_si128()));
    store(to + kBlock / 2, _mm_unpackhi_epi8(block, _mm_setzero_si128()));
}

}  // namespace

I18NDecodingTable::I18NDecodingTable(I18NCodeQuestions&& questions, const I18NPlainASCII& plain)
    : m_plain(plain),
      m_entries(kNodes * kBranches),
      m_questions(std::move(questions)),
      m_iNodes(kPairs + kBranches) {
    for (unsigned i = 0; i < kBranches; ++i) {
        const auto byte = static_cast<unsigned char>(i);
        set(kByIcu, byte, kByIcu);
        const unsigned entry = ask(&byte, &byte + 1);
        m_bSingle = m_bSingle && (isUnit(entry) || entry == kByIcu);
        const char16_t unit = isUnit(entry) ? unitOf(entry) : I18NSingleBytes::kNone;
        m_singles.set(byte, m_plain.has(byte) ? byte : unit);
    }
}

inline unsigned I18NDecodingTable::get(unsigned node, unsigned char byte) const {
    return m_entries.get(node * kBranches + byte);
}

void I18NDecodingTable::set(unsigned node, unsigned char byte, unsigned entry) {
    m_entries.set(node * kBranches + byte, static_cast<std::uint16_t>(entry));
}

/// Asks about a sequence whose entry was kUnknown, and stores the answer unless ICU lacks memory.
/// @return the entry
unsigned I18NDecodingTable::ask(const unsigned char* at, const unsigned char* end) {
    QBLThreadGuard guard(m_lock);
    unsigned node = kRoot;
    const unsigned char* byte = at;
    while (byte != end - 1) node = get(node, *byte++);
    if (const unsigned entry = get(node, *byte)) return entry;  // another thread has asked
    const I18NSequence answer =
        m_questions.decode(reinterpret_cast<const char*>(at), static_cast<int>(end - at));
    unsigned entry = kByIcu;
    if (answer.kind == I18NSequence::Kind::kAgain) return entry;
    if (answer.kind == I18NSequence::Kind::kUnit) entry = answer.unit ^ kMark;
    if (answer.kind == I18NSequence::Kind::kLead && byte == at)
        entry = kPairs + *byte;
    else if (answer.kind == I18NSequence::Kind::kLead && m_iNodes < kNodes)
        entry = m_iNodes++;
    set(node, *byte, entry);
    return entry;
}

/// Decodes one character.
/// @return false if ICU must convert the character, or if the character is truncated
bool I18NDecodingTable::decodeOne(const unsigned char*& at, const unsigned char* end,
                                  char16_t*& text) {
    if (m_plain.has(*at)) {
        *text++ = *at++;
        return true;
    }
    const unsigned char* next = at;
    unsigned entry = kRoot;
    while (!isUnit(entry) && entry != kByIcu && next != end) {
        entry = get(entry, *next++);
        if (entry == kUnknown) entry = ask(at, next);
    }
    if (!isUnit(entry)) return false;
    *text++ = unitOf(entry);
    at = next;
    return true;
}

/// Decodes most of a text: runs of ASCII at once, and characters of two bytes in few instructions.
/// @return false if it has stopped where decodeOne() returns false
bool I18NDecodingTable::decodeRuns(const unsigned char*& bytes, const unsigned char* end,
                                   char16_t*& text, const char16_t* limit) {
    const I18NPlainBlocks plain(m_plain);
    const unsigned char* at = bytes;
    char16_t* to = text;
    bool isByTable = true;
    while (isByTable && end - at >= 2 * kBlock && limit - to >= 2 * kBlock) {
        const __m128i block = load(at);
        widen(block, to);
        const unsigned others = plain.others(block);
        // This branch lets the processor start the next block before it has counted this run.
        if (others == 0) {
            at += kBlock;
            to += kBlock;
            continue;
        }
        const int run = __builtin_ctz(others);
        at += run;
        to += run;
        const unsigned char* const last = at + kBlock - 2;
        bool isFound = true;
        do {
            unsigned entry = get(kPairs + *at, at[1]);
            const unsigned char* next = at + 2;
            if (!isUnit(entry)) {
                entry = get(kRoot, *at);
                next = at + 1;
                isFound = isUnit(entry);
                if (!isFound) break;
            }
            *to++ = unitOf(entry);
            at = next;
        } while (*at >= 0x80 && at <= last);
        if (isFound) continue;
        // Copies, so that the loop keeps its variables in registers.
        const unsigned char* place = at;
        char16_t* out = to;
        isByTable = decodeOne(place, end, out);
        at = place;
        to = out;
    }
    bytes = at;
    text = to;
    return isByTable;
}

void I18NDecodingTable::decode(const char*& bytes, const char* end, char16_t*& text,
                               const char16_t* limit) {
    const auto* const endByte = reinterpret_cast<const unsigned char*>(end);
    const auto* at = reinterpret_cast<const unsigned char*>(bytes);
    bool isByTable = true;
    if (m_bSingle) {
        static const I18NSinglesDecoder kDecoder = i18nSinglesDecoder();
        I18NSinglesDecoding decoding = {at, endByte, text, const_cast<char16_t*>(limit)};
        kDecoder(decoding, m_singles);
        at = decoding.at;
        text = decoding.out;
    } else {
        isByTable = decodeRuns(at, endByte, text, limit);
    }
    while (isByTable && at != endByte && text != limit) isByTable = decodeOne(at, endByte, text);
    bytes = reinterpret_cast<const char*>(at);
}
