#ifndef I18N_CPP_STREAM_I18N_TEXT_POSITION_HPP
#define I18N_CPP_STREAM_I18N_TEXT_POSITION_HPP

#include <cstdint>

/// Line and column of the next code point of a text, both from 1. Lines end with LF, CR, or CR LF;
/// code points count, of which a lone surrogate is one.
class I18NTextPosition {
public:
    /// Goes on over a piece of the text, at most kMost units, cut anywhere.
    void pass(const char16_t* begin, const char16_t* end);
    /// Goes on over something that is one column, whatever the text has in its place.
    void passSequence();
    std::int64_t line() const { return m_iLine; }
    std::int64_t column() const { return m_iColumn; }

    static constexpr int kMost = 0x8000;

private:
    std::int64_t m_iLine = 1;
    std::int64_t m_iColumn = 1;
    char16_t m_cBefore = 0;  // the unit passed last
};

#endif
