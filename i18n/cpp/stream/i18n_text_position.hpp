#ifndef I18N_CPP_STREAM_I18N_TEXT_POSITION_HPP
#define I18N_CPP_STREAM_I18N_TEXT_POSITION_HPP

#include <cstddef>
#include <cstdint>

/// The line and column of the next code point of a text, both from 1. Lines end with LF, CR or CR
/// LF. A column is a code point or a lone surrogate.
class I18NTextPosition {
public:
    /// Advances over a piece of the text: at most kMost units, cut anywhere.
    void pass(const char16_t* begin, const char16_t* end);
    /// Advances over ASCII bytes.
    /// @param lines  number of line ends in the bytes; an LF after a CR is not another line end
    void passASCII(const char* begin, const char* end, std::size_t lines);
    bool isAfterCR() const { return m_cBefore == u'\r'; }
    /// Advances over a sequence that counts as one column, whatever replaces it in the text.
    void passSequence();
    std::int64_t line() const { return m_iLine; }
    std::int64_t column() const { return m_iColumn; }

    static constexpr int kMost = 0x8000;

private:
    std::int64_t m_iLine = 1;
    std::int64_t m_iColumn = 1;
    char16_t m_cBefore = 0;  // the last unit passed
};

#endif
