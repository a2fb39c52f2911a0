#ifndef FUZZ_SUPPORT_INPUT_HPP
#define FUZZ_SUPPORT_INPUT_HPP

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

/// Ends the program if a property does not hold, so that the input is kept as a failing input.
inline void require(bool holds) {
    if (!holds) std::abort();
}

/// The bytes that a fuzz target gets. Reads them from the front; gives zeros and empty texts after
/// the end.
class Input {
public:
    Input(const std::uint8_t* data, std::size_t size) : m_pNext(data), m_pEnd(data + size) {}

    bool atEnd() const { return m_pNext == m_pEnd; }
    unsigned byte() { return atEnd() ? 0 : *m_pNext++; }
    /// Reads a number from 0 to limit - 1.
    unsigned below(std::size_t limit) { return static_cast<unsigned>(byte() % limit); }
    std::uint32_t word() {
        std::uint32_t value = 0;
        for (int i = 0; i < 4; ++i) value = value << 8 | byte();
        return value;
    }
    /// Reads at most this many bytes.
    std::string bytes(std::size_t count) {
        const auto size = std::min(count, static_cast<std::size_t>(m_pEnd - m_pNext));
        const std::string text(m_pNext, m_pNext + size);
        m_pNext += size;
        return text;
    }
    std::string rest() { return bytes(static_cast<std::size_t>(m_pEnd - m_pNext)); }
    /// Reads up to the next null byte or the end.
    std::string line() {
        const std::string text(m_pNext, std::find(m_pNext, m_pEnd, 0));
        m_pNext += std::min<std::ptrdiff_t>(static_cast<std::ptrdiff_t>(text.size()) + 1,
                                            m_pEnd - m_pNext);
        return text;
    }

private:
    const std::uint8_t* m_pNext;
    const std::uint8_t* m_pEnd;
};

#endif
