#ifndef QBLCORE_FILEMANAGEMENT_INTERNAL_QBLFMCHARACTERS_HPP
#define QBLCORE_FILEMANAGEMENT_INTERNAL_QBLFMCHARACTERS_HPP

#include <cstddef>
#include <cwchar>

inline bool qblIsSeparator(char c) { return c == '/' || c == '\\'; }

/// Steps through a text in the locale's encoding, from its beginning. There is no other way to find
/// separators: in some encodings, the second byte of a character has the value of a backslash.
class QBLFmCharacters {
public:
    QBLFmCharacters(const char* text, std::size_t length) : m_pText(text), m_uLength(length) {}

    bool atEnd() const { return m_uPosition == m_uLength; }
    std::size_t position() const { return m_uPosition; }
    bool onSeparator() const { return !atEnd() && qblIsSeparator(m_pText[m_uPosition]); }
    bool on(char c) const { return !atEnd() && m_pText[m_uPosition] == c; }

    /// Returns the number of bytes of the current character; 0 if it is invalid. At the beginning
    /// of a character, bytes below 0x80 are ASCII in all encodings of the C library's locales.
    std::size_t width() const {
        if (static_cast<unsigned char>(m_pText[m_uPosition]) < 0x80) return 1;
        std::mbstate_t state{};
        const std::size_t n = std::mbrlen(m_pText + m_uPosition, m_uLength - m_uPosition, &state);
        return n <= m_uLength - m_uPosition ? n : 0;
    }
    /// @return false, without moving, on an invalid character
    bool step() {
        const std::size_t n = width();
        m_uPosition += n;
        return n != 0;
    }
    /// Steps over a character; over one byte if the character is invalid.
    void stepAnyhow() {
        if (!step()) ++m_uPosition;
    }

private:
    const char* m_pText;
    std::size_t m_uLength;
    std::size_t m_uPosition = 0;
};

#endif
