#ifndef I18N_CPP_CONVERTER_I18N_ICU_PIECE_HPP
#define I18N_CPP_CONVERTER_I18N_ICU_PIECE_HPP

#include <algorithm>
#include <cstddef>

/// The size of the next piece of text for ICU. Where the conversion without ICU stops, ICU converts
/// one piece, and then the conversion without ICU continues. A call of ICU takes long, so the
/// pieces grow while little text is converted between them.
class I18NIcuPiece {
public:
    /// @param passed  bytes or units converted without ICU since the last piece
    void choose(std::ptrdiff_t passed) {
        m_iSize = passed >= m_iSize ? kLeast : std::min(2 * m_iSize, kMost);
    }
    /// @param isUnfinished  true if ICU keeps the start of a character. ICU then gets one byte or
    ///     unit at a time, so that it gets nothing after this character
    std::ptrdiff_t size(bool isUnfinished) const { return isUnfinished ? 1 : m_iSize; }

private:
    static constexpr std::ptrdiff_t kLeast = 8, kMost = 0x1000;
    std::ptrdiff_t m_iSize = kLeast;
};

#endif
