#ifndef I18N_CPP_CONVERTER_I18N_CODE_TABLES_HPP
#define I18N_CPP_CONVERTER_I18N_CODE_TABLES_HPP

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>

#include "QBLCore/Threads/QBLThreadAnnotations.hpp"
#include "QBLCore/Threads/QBLThreadCriticalSection.hpp"
#include "i18n/cpp/converter/i18n_code_questions.hpp"
#include "i18n/cpp/converter/i18n_plain_ascii.hpp"
#include "i18n/cpp/converter/i18n_single_bytes.hpp"

/// Tables that convert single characters of an encoding without ICU.
///
/// A table knows nothing but what an ICU converter has answered (I18NCodeQuestions), and asks about
/// a character when a text has it for the first time. So it converts each character as ICU does.
/// It stops before everything else: sequences that are malformed or unassigned, characters with
/// more than one UTF-16 unit, and characters that may combine with the next one. ICU has to convert
/// these, in its own state, and the table may continue when ICU holds nothing back.
///
/// Blocks of ASCII characters are converted at once. Those whose own bytes express them are also
/// found by asking. A byte of ASCII may be a later byte of a character (in Shift_JIS, GB18030 and
/// Big5), so a block begins only where a character begins.
///
/// Threads: any number of threads may use a table. An entry is 0 until a thread has the answer; it
/// then never changes, and depends on nothing else in memory. So it needs no memory order.

/// Zeroed memory, which takes pages only where entries are written.
template <class Entry>
class I18NTableEntries {
public:
    /// @throws QBLOutOfMemoryError
    explicit I18NTableEntries(std::size_t count);
    Entry get(std::size_t at) const { return m_pEntries.get()[at].load(std::memory_order_relaxed); }
    void set(std::size_t at, Entry value) {
        m_pEntries.get()[at].store(value, std::memory_order_relaxed);
    }

private:
    struct Free {
        void operator()(void* block) const { std::free(block); }
    };
    std::unique_ptr<std::atomic<Entry>, Free> m_pEntries;
};

class I18NDecodingTable {
public:
    I18NDecodingTable(I18NCodeQuestions&& questions, const I18NPlainASCII& plain);

    /// The table for a converter, with its present setting for fallbacks; null if the encoding
    /// permits none. @throws QBLOutOfMemoryError
    static std::shared_ptr<I18NDecodingTable> of(const UConverter* icu);

    const I18NPlainASCII& plain() const { return m_plain; }
    /// Converts characters, and advances the pointers. Stops before a character that is cut off or
    /// that ICU has to convert, and when the text is full.
    void decode(const char*& bytes, const char* end, char16_t*& text, const char16_t* limit);

private:
    unsigned get(unsigned node, unsigned char byte) const;
    void set(unsigned node, unsigned char byte, unsigned entry);
    unsigned ask(const unsigned char* at, const unsigned char* end);
    bool decodeOne(const unsigned char*& at, const unsigned char* end, char16_t*& text);
    bool decodeRuns(const unsigned char*& bytes, const unsigned char* end, char16_t*& text,
                    const char16_t* limit);

    const I18NPlainASCII m_plain;
    bool m_bSingle = true;  // no character has two bytes
    I18NSingleBytes m_singles;
    I18NTableEntries<std::uint16_t> m_entries;
    QBLThreadCriticalSection m_lock;
    I18NCodeQuestions m_questions QBL_GUARDED_BY(m_lock);
    unsigned m_iNodes QBL_GUARDED_BY(m_lock);
};

class I18NEncodingTable {
public:
    I18NEncodingTable(I18NCodeQuestions&& questions, const I18NPlainASCII& plain);

    /// See I18NDecodingTable::of().
    static std::shared_ptr<I18NEncodingTable> of(const UConverter* icu);

    const I18NPlainASCII& plain() const { return m_plain; }
    /// Converts characters, and advances the pointers. Stops before a character that ICU has to
    /// convert, and once fewer than kRoom bytes of room are left.
    void encode(const char16_t*& text, const char16_t* end, char*& bytes, const char* limit);

    static constexpr std::ptrdiff_t kRoom = 16;

private:
    std::uint32_t entryFor(char16_t unit);
    std::uint32_t ask(char16_t unit);

    const I18NPlainASCII m_plain;
    I18NTableEntries<std::uint32_t> m_entries;
    QBLThreadCriticalSection m_lock;
    I18NCodeQuestions m_questions QBL_GUARDED_BY(m_lock);
};

#endif
