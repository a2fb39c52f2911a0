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
/// A table contains only answers of an ICU converter (I18NCodeQuestions). It asks about a character
/// when a text contains this character for the first time. So it converts each character as ICU
/// does. It stops before all other text: sequences that are malformed or unassigned, characters
/// with more than one UTF-16 unit, and characters that ICU may combine with the next one. The
/// caller then lets its own ICU converter convert this text. The table may continue when that
/// converter holds nothing back.
///
/// Blocks of ASCII characters are converted at once. The table also asks which ASCII characters
/// have their own bytes in the encoding. A later byte of a character may be equal to an ASCII
/// character (in Shift_JIS, GB18030 and Big5), so a block begins only where a character begins.
///
/// Threads: any number of threads may use a table. An entry is 0 until a thread has stored the
/// answer, and then never changes. A thread that still reads 0 asks again and gets the same answer,
/// so loads and stores are relaxed.

/// Entries that are 0 at first. Only pages with written entries take memory.
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

    /// Returns the table for the encoding of a converter and for its current setting for fallbacks;
    /// null if a table cannot serve the encoding.
    /// @throws QBLOutOfMemoryError
    static std::shared_ptr<I18NDecodingTable> of(const UConverter* icu);

    const I18NPlainASCII& plain() const { return m_plain; }
    /// Converts characters, and advances the pointers. Stops before a character that is truncated
    /// or that ICU must convert, and when there is no more room for text.
    void decode(const char*& bytes, const char* end, char16_t*& text, const char16_t* limit);

private:
    unsigned get(unsigned node, unsigned char byte) const;
    void set(unsigned node, unsigned char byte, unsigned entry);
    unsigned ask(const unsigned char* at, const unsigned char* end);
    bool decodeOne(const unsigned char*& at, const unsigned char* end, char16_t*& text);
    bool decodeRuns(const unsigned char*& bytes, const unsigned char* end, char16_t*& text,
                    const char16_t* limit);

    const I18NPlainASCII m_plain;
    bool m_bSingle = true;  // each character has one byte
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
    /// Converts characters, and advances the pointers. Stops before a character that ICU must
    /// convert, and when there is room for fewer than kRoom bytes.
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
