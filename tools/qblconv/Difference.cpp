#include "tools/qblconv/Difference.hpp"

#include <unicode/utf16.h>

#include <algorithm>

#include "i18n/cpp/i18n_text_stream.hpp"
#include "tools/common/Utf8.hpp"

namespace conv {

namespace {

constexpr std::size_t kBefore = 20, kAfter = 30;  // code units shown around the place
const char kCut[] = "...";

bool isLineEnd(char16_t unit) { return unit == u'\n' || unit == u'\r'; }

class Comparison {
public:
    Comparison(const I18NConverter& first, const I18NConverter& second)
        : m_first(&first, nullptr), m_second(&second, nullptr) {}

    /// @param bytes  empty at the end
    /// @return false if no more bytes are needed
    bool put(std::string_view bytes) {
        advance(m_first, bytes, m_firstRest);
        advance(m_second, bytes, m_secondRest);
        if (!m_bFound) skipCommon();
        if (bytes.empty()) m_bFound = m_bFound || m_firstRest != m_secondRest;
        // Collects two more units than are shown, so that no surrogate pair is cut.
        const std::size_t known = std::min(m_firstRest.size(), m_secondRest.size());
        return !bytes.empty() && !(m_bFound && known > kAfter + 2);
    }

    Difference result() const {
        if (!m_bFound) return {};
        return {m_iLine, shownAround(m_firstRest), shownAround(m_secondRest)};
    }

private:
    static void advance(I18NTextStream& stream, std::string_view bytes, std::u16string& rest) {
        if (bytes.empty())
            stream.finish();
        else
            stream.put(bytes.data(), bytes.size());
        rest.append(stream.getText(), stream.getTextLength());
    }

    /// Counts and removes the common beginning.
    void skipCommon() {
        const auto limit = std::min(m_firstRest.size(), m_secondRest.size());
        const auto end = m_firstRest.begin() + static_cast<std::ptrdiff_t>(limit);
        const auto [mine, other] = std::mismatch(m_firstRest.begin(), end, m_secondRest.begin());
        auto common = static_cast<std::size_t>(mine - m_firstRest.begin());
        m_bFound = mine != end;
        // A difference inside a surrogate pair concerns the whole character.
        if (m_bFound && common > 0 && U16_IS_LEAD(m_firstRest[common - 1])) --common;
        for (std::size_t i = 0; i < common; ++i) note(m_firstRest[i]);
        m_firstRest.erase(0, common);
        m_secondRest.erase(0, common);
    }

    void note(char16_t unit) {
        const bool isSecondOfTwo = unit == u'\n' && m_cLast == u'\r';
        m_cLast = unit;
        if (isLineEnd(unit)) {
            m_iLine += isSecondOfTwo ? 0 : 1;
            m_before.clear();
            m_bCut = false;
            return;
        }
        m_before += unit;
        if (m_before.size() < 2 * kBefore) return;
        m_before.erase(0, m_before.size() - kBefore);
        if (U16_IS_TRAIL(m_before[0])) m_before.erase(0, 1);
        m_bCut = true;
    }

    std::string shownAround(const std::u16string& rest) const {
        const bool isCutBefore = m_bCut || m_before.size() > kBefore;
        std::u16string_view before = m_before;
        if (before.size() > kBefore) before.remove_prefix(before.size() - kBefore);
        std::string text = isCutBefore ? kCut : "";
        tools::appendUtf16(text, before);
        const auto lineEnd = std::find_if(rest.begin(), rest.end(), isLineEnd);
        const auto size = static_cast<std::size_t>(lineEnd - rest.begin());
        tools::appendUtf16(text, std::u16string_view(rest).substr(0, std::min(size, kAfter)));
        return size > kAfter ? text + kCut : text;
    }

    I18NTextStream m_first, m_second;
    std::u16string m_firstRest, m_secondRest;  // not compared yet, or from the difference on
    std::u16string m_before;                   // common text before the difference, in its line
    std::int64_t m_iLine = 1;
    char16_t m_cLast = 0;
    bool m_bCut = false;
    bool m_bFound = false;
};

}  // namespace

Difference findDifference(Passes& passes, const I18NConverter& first, const I18NConverter& second) {
    Comparison comparison(first, second);
    passes.begin();
    while (true) {
        const std::string_view bytes = passes.next();
        if (passes.error() != 0) return {};
        if (!comparison.put(bytes)) return comparison.result();
    }
}

}  // namespace conv
