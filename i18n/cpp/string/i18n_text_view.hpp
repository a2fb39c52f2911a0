#ifndef I18N_CPP_STRING_I18N_TEXT_VIEW_HPP
#define I18N_CPP_STRING_I18N_TEXT_VIEW_HPP

#include <climits>
#include <cstdint>
#include <memory>

#include "i18n/cpp/i18n_string.hpp"
#include "i18n/cpp/utf/i18n_utf.hpp"

/// A read-only view of a text in ASCII bytes or in UTF-16 units.
class I18NTextView {
public:
    explicit I18NTextView(const I18NString& text)
        : m_pOwner(&text),
          m_pAscii(text.m_pUnicodeString == nullptr ? text.ascii() : nullptr),
          m_pUnits(text.m_pCodeUnits),
          m_iLength(text.nUnits()) {}
    I18NTextView(const char16_t* units, int length) : m_pUnits(units), m_iLength(length) {}
    I18NTextView(const char* ascii, int length) : m_pAscii(ascii), m_iLength(length) {}

    /// The string whose text is viewed; null for a view of other memory.
    const I18NString* owner() const { return m_pOwner; }
    const char* ascii() const { return m_pAscii; }  ///< null for a text in units
    const char16_t* units() const { return m_pUnits; }
    int length() const { return m_iLength; }
    bool isASCII() const {
        return m_pAscii != nullptr || i18nIsASCII(m_pUnits, static_cast<std::size_t>(m_iLength));
    }
    char16_t operator[](int i) const {
        return m_pAscii != nullptr ? static_cast<unsigned char>(m_pAscii[i]) : m_pUnits[i];
    }
    char32_t codePointAt(int i) const {
        const char16_t unit = (*this)[i];
        const bool pair = i18nIsHigh(unit) && i + 1 < m_iLength && i18nIsLow((*this)[i + 1]);
        return pair ? i18nCombine(unit, (*this)[i + 1]) : unit;
    }
    /// next() returns the offset after the code point at an offset. before() returns the offset of
    /// the code point before an offset.
    int next(int i) const { return i + (codePointAt(i) > 0xFFFF ? 2 : 1); }
    int before(int i) const {
        return i - (i > 1 && i18nIsLow((*this)[i - 1]) && i18nIsHigh((*this)[i - 2]) ? 2 : 1);
    }

    /// Requires: the text is ASCII.
    void copyTo(char* out) const {
        const auto n = static_cast<std::size_t>(m_iLength);
        if (m_pAscii == nullptr)
            i18nNarrow(m_pUnits, n, out);
        else
            std::char_traits<char>::copy(out, m_pAscii, n);
    }
    void copyTo(char16_t* out) const {
        const auto n = static_cast<std::size_t>(m_iLength);
        if (m_pAscii != nullptr)
            i18nWiden(m_pAscii, n, out);
        else
            std::char_traits<char16_t>::copy(out, m_pUnits, n);
    }
    /// Calls a body with a pointer to the bytes or units of the text, and with their number.
    template <class Body>
    auto visit(Body body) const {
        return m_pAscii != nullptr
                   ? body(reinterpret_cast<const unsigned char*>(m_pAscii), m_iLength)
                   : body(m_pUnits, m_iLength);
    }

private:
    const I18NString* m_pOwner = nullptr;
    const char* m_pAscii = nullptr;
    const char16_t* m_pUnits = nullptr;
    int m_iLength;
};

/// Throws QBLOutOfMemoryError for a text with more units than a string can have.
[[noreturn]] void i18nThrowTooLong();

/// @throws QBLOutOfMemoryError if a string cannot have that many units
inline void i18nRequireLength(std::int64_t units) {
    constexpr std::int64_t kMostUnits = INT_MAX / 2 - 2;
    if (units > kMostUnits) i18nThrowTooLong();
}

/// A text of wide characters, converted to UTF-16.
class I18NWideText {
public:
    /// @param text  null is an empty text
    explicit I18NWideText(const wchar_t* text);
    explicit I18NWideText(wchar_t c)
        : m_iLength(i18nPutCodePoint(m_small, static_cast<char32_t>(c))) {}
    I18NTextView view() const {
        return I18NTextView(m_pLarge != nullptr ? m_pLarge.get() : m_small, m_iLength);
    }

private:
    static constexpr int kSmall = 64;

    char16_t m_small[kSmall] = {};
    std::unique_ptr<char16_t[]> m_pLarge;
    int m_iLength = 0;
};

#endif
