#include <algorithm>
#include <climits>
#include <cstring>
#include <new>
#include <string>
#include <string_view>
#include <vector>

#include "QBLCore/Exceptions/QBLAllocation.hpp"
#include "i18n/cpp/i18n_string.hpp"
#include "i18n/cpp/i18n_string_iterator.hpp"
#include "i18n/cpp/string/i18n_text_view.hpp"

namespace {

I18NStringOffset findIn(const I18NTextView& text, const I18NTextView& wanted,
                        I18NStringOffset start) {
    start = std::max(start, 0);
    if (start > text.length() || wanted.length() > text.length() - start) return -1;
    if (text.ascii() != nullptr && wanted.ascii() != nullptr) {
        const std::string_view whole(text.ascii(), static_cast<std::size_t>(text.length()));
        const std::string_view what(wanted.ascii(), static_cast<std::size_t>(wanted.length()));
        const std::size_t at = whole.find(what, static_cast<std::size_t>(start));
        return at != std::string_view::npos ? static_cast<int>(at) : -1;
    }
    return text.visit([&](const auto* units, int length) {
        return wanted.visit([&](const auto* what, int count) {
            const auto* const end = units + length;
            const auto* const at = std::search(units + start, end, what, what + count);
            return at == end && count != 0 ? -1 : static_cast<int>(at - units);
        });
    });
}

I18NStringOffset rfindIn(const I18NTextView& text, const I18NTextView& wanted,
                         I18NStringOffset start) {
    const int last = text.length() - wanted.length();
    if (last < 0) return -1;
    int at = start < 0 || start > last ? last : start;
    return text.visit([&](const auto* units, int) {
        return wanted.visit([&](const auto* what, int count) {
            while (at >= 0 && !std::equal(what, what + count, units + at)) --at;
            return at;
        });
    });
}

bool contains(const I18NTextView& set, char32_t c) {
    for (int i = 0; i < set.length(); i = set.next(i))
        if (set.codePointAt(i) == c) return true;
    return false;
}

I18NStringOffset firstIn(const I18NTextView& text, const I18NTextView& set, I18NStringOffset start,
                         bool wanted) {
    for (int i = std::max(start, 0); i < text.length(); i = text.next(i))
        if (contains(set, text.codePointAt(i)) == wanted) return i;
    return -1;
}

I18NStringOffset lastIn(const I18NTextView& text, const I18NTextView& set, I18NStringOffset start,
                        bool wanted) {
    int i = start < 0 || start >= text.length() ? text.length() : text.next(start);
    while (i > 0) {
        i = text.before(i);
        if (contains(set, text.codePointAt(i)) == wanted) return i;
    }
    return -1;
}

I18NTextView viewOf(const I18NString& text) { return I18NTextView(text); }

/// Compares code units. A byte counts as a code unit, because text stored as bytes is ASCII.
template <class A, class B>
int compareUnits(const A* a, int lengthA, const B* b, int lengthB) {
    const int common = std::min(lengthA, lengthB);
    for (int i = 0; i < common; ++i)
        if (a[i] != b[i]) return a[i] < b[i] ? -1 : 1;
    return lengthA - lengthB;
}

int compareUnits(const unsigned char* a, int lengthA, const unsigned char* b, int lengthB) {
    const int order = std::memcmp(a, b, static_cast<std::size_t>(std::min(lengthA, lengthB)));
    return order != 0 ? order : lengthA - lengthB;
}

// These values are beyond Unicode, so no character has them.
constexpr char32_t kAnyOne = 0x110000;
constexpr char32_t kAnyRun = 0x110001;

}  // namespace

I18NStringOffset I18NString::find(const I18NString& text, I18NStringOffset start) const {
    return findIn(viewOf(*this), viewOf(text), start);
}

I18NStringOffset I18NString::find(const wchar_t* text, I18NStringOffset start) const {
    return findIn(viewOf(*this), I18NWideText(text).view(), start);
}

I18NStringOffset I18NString::find(wchar_t c, I18NStringOffset start) const {
    return findIn(viewOf(*this), I18NWideText(c).view(), start);
}

I18NStringOffset I18NString::rfind(const I18NString& text, I18NStringOffset start) const {
    return rfindIn(viewOf(*this), viewOf(text), start);
}

I18NStringOffset I18NString::rfind(const wchar_t* text, I18NStringOffset start) const {
    return rfindIn(viewOf(*this), I18NWideText(text).view(), start);
}

I18NStringOffset I18NString::rfind(wchar_t c, I18NStringOffset start) const {
    return rfindIn(viewOf(*this), I18NWideText(c).view(), start);
}

// The twelve searches for characters that are, or are not, in a set. They differ in the type of the
// set, the direction and the answer.
#define SET_SEARCHES(name, search, wanted)                                                   \
    I18NStringOffset I18NString::name(const I18NString& set, I18NStringOffset start) const { \
        return search(viewOf(*this), viewOf(set), start, wanted);                            \
    }                                                                                        \
    I18NStringOffset I18NString::name(const wchar_t* set, I18NStringOffset start) const {    \
        return search(viewOf(*this), I18NWideText(set).view(), start, wanted);               \
    }                                                                                        \
    I18NStringOffset I18NString::name(wchar_t c, I18NStringOffset start) const {             \
        return search(viewOf(*this), I18NWideText(c).view(), start, wanted);                 \
    }
SET_SEARCHES(findFirstOf, firstIn, true)
SET_SEARCHES(findFirstNotOf, firstIn, false)
SET_SEARCHES(findLastOf, lastIn, true)
SET_SEARCHES(findLastNotOf, lastIn, false)
#undef SET_SEARCHES

int I18NString::nCodePoints() const {
    const I18NTextView text(*this);
    if (text.ascii() != nullptr) return text.length();
    int count = 0;
    for (int i = 0; i < text.length(); i = text.next(i)) ++count;
    return count;
}

int I18NString::size() const { return empty() ? 0 : nUnits() * 2 + 2; }

I18NStringOffset I18NString::incrementOffset(I18NStringOffset offset) const {
    return offset >= 0 && offset < nUnits() ? I18NTextView(*this).next(offset) : -1;
}

I18NStringOffset I18NString::decrementOffset(I18NStringOffset offset) const {
    return offset > 0 && offset <= nUnits() ? I18NTextView(*this).before(offset) : -1;
}

wchar_t I18NString::codePointAt(I18NStringOffset offset) const {
    if (offset < 0 || offset >= nUnits()) return 0;
    return static_cast<wchar_t>(I18NTextView(*this).codePointAt(offset));
}

I18NStringIterator I18NString::begin() const { return I18NStringIterator(*this, 0); }

I18NStringIterator I18NString::end() const { return I18NStringIterator(*this, nUnits()); }

int I18NString::compare(const I18NString& other) const {
    const I18NTextView text(other);
    return I18NTextView(*this).visit([&text](const auto* a, int lengthA) {
        return text.visit(
            [=](const auto* b, int lengthB) { return compareUnits(a, lengthA, b, lengthB); });
    });
}

int I18NString::compare(const char* utf8) const {
    return compareTo(utf8 != nullptr ? std::string_view(utf8) : std::string_view());
}

int I18NString::compareTo(std::string_view utf8) const {
    const char* const bytes = utf8.data();
    const std::size_t length = utf8.size();
    if (length <= INT_MAX && i18nIsASCII(bytes, length)) {
        const I18NTextView text(bytes != nullptr ? bytes : "", static_cast<int>(length));
        return I18NTextView(*this).visit([&text](const auto* a, int lengthA) {
            return text.visit(
                [=](const auto* b, int lengthB) { return compareUnits(a, lengthA, b, lengthB); });
        });
    }
    return compare(alike(utf8));
}

// FNV-1a over the code units. So equal texts have equal hashes, however they are stored.
std::size_t std::hash<I18NString>::operator()(const I18NString& text) const noexcept {
    return I18NTextView(text).visit([](const auto* units, int length) {
        std::size_t mixed = sizeof(std::size_t) == 4 ? 2166136261U : 14695981039346656037ULL;
        const std::size_t prime = sizeof(std::size_t) == 4 ? 16777619U : 1099511628211ULL;
        for (int i = 0; i < length; ++i) mixed = (mixed ^ units[i]) * prime;
        return mixed;
    });
}

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

    /// Matches the pattern from an offset.
    /// @param whole  true if the match must reach the end of the text
    /// @return the end of the shortest match; -1 if there is no match at this offset; kNoneBehind
    ///     if there is no match at any later offset either
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

    // After a mismatch, only the last "%" takes one more code point. The text that earlier "%" took
    // need not change.
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
            // The pattern after the "%" does not match anywhere in the rest of the text.
            if (runEnd >= text.length()) return kNoneBehind;
            runEnd = text.next(runEnd);
            item = afterRun;
            // Skips to the next place where the rest of the pattern may begin.
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
