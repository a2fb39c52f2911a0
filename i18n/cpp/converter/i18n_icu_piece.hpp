#ifndef I18N_CPP_CONVERTER_I18N_ICU_PIECE_HPP
#define I18N_CPP_CONVERTER_I18N_ICU_PIECE_HPP

#include <algorithm>
#include <cstddef>

/// How much text ICU gets where the conversion without ICU has stopped; that continues after it.
/// Calls of ICU take long. So the pieces grow while there is little between them.
class I18NIcuPiece {
public:
    /// @param passed  bytes or units converted without ICU since the last piece
    void choose(std::ptrdiff_t passed) {
        m_iSize = passed >= m_iSize ? kLeast : std::min(2 * m_iSize, kMost);
    }
    /// @param isUnfinished  ICU has kept the start of a character; it gets no more than its end
    std::ptrdiff_t size(bool isUnfinished) const { return isUnfinished ? 1 : m_iSize; }

private:
    static constexpr std::ptrdiff_t kLeast = 8, kMost = 0x1000;
    std::ptrdiff_t m_iSize = kLeast;
};

#endif
