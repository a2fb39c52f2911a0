#include <new>
#include <vector>

#include "QBLCore/Exceptions/QBLAllocation.hpp"
#include "i18n/cpp/i18n_string.hpp"
#include "i18n/cpp/string/i18n_text_view.hpp"

namespace {

// Beyond Unicode, so that no character is one of them.
constexpr char32_t kAnyOne = 0x110000;
constexpr char32_t kAnyRun = 0x110001;

}  // namespace

/// A pattern: code points, kAnyOne and kAnyRun.
class I18NPatternCode {
public:
    I18NPatternCode(const I18NTextView& pattern, char32_t escape) {
        for (int i = 0; i < pattern.length(); i = pattern.next(i)) {
            const char32_t c = pattern.codePointAt(i);
            const int next = pattern.next(i);
            if (c == escape && escape != 0 && next < pattern.length()) {
                const char32_t escaped = pattern.codePointAt(next);
                if (escaped == '%' || escaped == '_' || escaped == escape) {
                    m_items.push_back(escaped);
                    i = next;
                    continue;
                }
            }
            m_items.push_back(c == '%' ? kAnyRun : c == '_' ? kAnyOne : c);
        }
    }

    /// Matches the pattern from an offset on.
    /// @param whole  the match must reach the end of the text
    /// @return the end of the shortest match; -1 for none, kNoneBehind for none from any later
    ///     offset either
    static constexpr int kNoneBehind = -2;
    int match(const I18NTextView& text, int at, bool whole) const {
        return text.ascii() != nullptr ? matchIn(Bytes(text), at, whole) : matchIn(text, at, whole);
    }

private:
    /// A text of one-byte characters.
    class Bytes {
    public:
        explicit Bytes(const I18NTextView& text)
            : m_pBytes(text.ascii()), m_iLength(text.length()) {}
        int length() const { return m_iLength; }
        char32_t codePointAt(int i) const { return static_cast<unsigned char>(m_pBytes[i]); }
        static int next(int i) { return i + 1; }

    private:
        const char* m_pBytes;
        int m_iLength;
    };

    // A mismatch goes back to the last run only, which takes one code point more: what earlier runs
    // took need not change.
    template <class Text>
    int matchIn(const Text& text, int at, bool whole) const {
        const char32_t* const end = m_items.data() + m_items.size();
        const char32_t* item = m_items.data();
        const char32_t* afterRun = nullptr;
        int runEnd = 0;
        for (;;) {
            if (item == end) {
                if (!whole || at == text.length()) return at;
            } else if (*item == kAnyRun) {
                afterRun = ++item;
                runEnd = at;
                if (item == end) return whole ? text.length() : at;
                continue;
            } else if (at < text.length() && (*item == text.codePointAt(at) || *item == kAnyOne)) {
                at = text.next(at);
                ++item;
                continue;
            }
            if (afterRun == nullptr) return -1;
            // What follows a run is nowhere in the rest of the text.
            if (runEnd >= text.length()) return kNoneBehind;
            runEnd = text.next(runEnd);
            item = afterRun;
            // Straight on to the next place that the rest may begin at.
            if (*item < kAnyOne)
                while (runEnd < text.length() && text.codePointAt(runEnd) != *item)
                    runEnd = text.next(runEnd);
            at = runEnd;
        }
    }

    std::vector<char32_t> m_items;
};

I18NPatternCode* I18NString::getPatternCode(const I18NString& pattern, wchar_t escape) {
    QBL_ALLOC_TRY
    return new I18NPatternCode(I18NTextView(pattern), static_cast<char32_t>(escape));
    QBL_ALLOC_CATCH
}

void I18NString::deletePatternCode(I18NPatternCode* code) { delete code; }

bool I18NString::matchLike(const I18NString& pattern, wchar_t escape) const {
    QBL_ALLOC_TRY
    return matchLike(I18NPatternCode(I18NTextView(pattern), static_cast<char32_t>(escape)));
    QBL_ALLOC_CATCH
}

bool I18NString::matchLike(const I18NPatternCode& pattern) const {
    return pattern.match(I18NTextView(*this), 0, true) >= 0;
}

bool I18NString::substringLike(const I18NString& pattern, wchar_t escape, I18NStringOffset from,
                               I18NStringOffset& start, I18NStringOffset& end) const {
    QBL_ALLOC_TRY
    const I18NPatternCode code(I18NTextView(pattern), static_cast<char32_t>(escape));
    return substringLike(code, from, start, end);
    QBL_ALLOC_CATCH
}

bool I18NString::substringLike(const I18NPatternCode& pattern, I18NStringOffset from,
                               I18NStringOffset& start, I18NStringOffset& end) const {
    const I18NTextView text(*this);
    for (int at = from < 0 ? 0 : from; at <= text.length(); at = text.next(at)) {
        const int found = pattern.match(text, at, false);
        if (found >= 0) {
            start = at;
            end = found;
            return true;
        }
        if (found == I18NPatternCode::kNoneBehind || at == text.length()) break;
    }
    return false;
}
