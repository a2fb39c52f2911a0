#ifndef QBLCORE_FILEMANAGEMENT_INTERNAL_QBLFMCHARACTERS_HPP
#define QBLCORE_FILEMANAGEMENT_INTERNAL_QBLFMCHARACTERS_HPP

#include <cstddef>
#include <cwchar>

inline bool qblIsSeparator(char c) { return c == '/' || c == '\\'; }

/// Steps through a text in the locale's encoding. Only from its beginning on can the bytes of a
/// character be told from characters of their own: in some encodings the second byte of one has
/// the value of a backslash.
class QBLFmCharacters {
public:
    QBLFmCharacters(const char* text, std::size_t length) : m_pText(text), m_uLength(length) {}

    bool atEnd() const { return m_uPosition == m_uLength; }
    std::size_t position() const { return m_uPosition; }
    bool onSeparator() const { return !atEnd() && qblIsSeparator(m_pText[m_uPosition]); }
    bool on(char c) const { return !atEnd() && m_pText[m_uPosition] == c; }

    /// Bytes of the character here; 0 when it is not valid. Every encoding that the C library has
    /// locales for keeps ASCII where a character begins.
    std::size_t width() const {
        if (static_cast<unsigned char>(m_pText[m_uPosition]) < 0x80) return 1;
        std::mbstate_t state{};
        const std::size_t n = std::mbrlen(m_pText + m_uPosition, m_uLength - m_uPosition, &state);
        return n <= m_uLength - m_uPosition ? n : 0;
    }
    /// @return false, without moving, on a character that is not valid.
    bool step() {
        const std::size_t n = width();
        m_uPosition += n;
        return n != 0;
    }
    /// Steps over one byte where the character is not valid.
    void stepAnyhow() {
        if (!step()) ++m_uPosition;
    }

private:
    const char* m_pText;
    std::size_t m_uLength;
    std::size_t m_uPosition = 0;
};

#endif
