#ifndef FUZZ_SUPPORT_SEARCHCHECKS_HPP
#define FUZZ_SUPPORT_SEARCHCHECKS_HPP

#include <iterator>
#include <memory>
#include <string>
#include <vector>

#include "fuzz/support/Input.hpp"
#include "i18n/cpp/i18n_pattern.hpp"

/// Searches a text and matches it with LIKE patterns, and compares each result with that of a naive
/// search over code units or code points. Text, pattern and set consist of a few characters, so
/// that matches are frequent.
namespace searchchecks {

// A byte stands for one of these units. The lone halves of a pair may become a pair.
const char16_t kUnits[] = u"ab%_\\A\u4E2D\xD83D\xDE00\xD800\xDC00";
constexpr unsigned kCount = 11;

inline std::u16string textFrom(Input& input) {
    std::u16string text(input.below(48), u'\0');
    const unsigned kinds = 1 + input.below(kCount);
    for (char16_t& unit : text) unit = kUnits[input.below(kinds)];
    return text;
}

inline I18NString stringOf(const std::u16string& text) {
    I18NString string;
    string.useNormalization(false);
    string = text;
    return string;
}

inline bool isPairAt(const std::u16string& text, std::size_t i) {
    return i + 1 < text.size() && (text[i] & 0xFC00) == 0xD800 && (text[i + 1] & 0xFC00) == 0xDC00;
}

/// A code point and its offsets.
struct Character {
    char32_t value;
    std::size_t begin, end;
};

inline std::vector<Character> charactersOf(const std::u16string& text, std::size_t from = 0) {
    std::vector<Character> all;
    for (std::size_t i = from; i < text.size(); i = all.back().end)
        if (isPairAt(text, i))
            all.push_back(
                {0x10000U + ((text[i] & 0x3FFU) << 10) + (text[i + 1] & 0x3FFU), i, i + 2});
        else
            all.push_back({text[i], i, i + 1});
    return all;
}

/// An item of a pattern.
struct Item {
    enum Kind { kCharacter, kOne, kRun } kind;
    char32_t value;
};

inline std::vector<Item> itemsOf(const std::u16string& pattern, char32_t escape) {
    std::vector<Item> items;
    const std::vector<Character> all = charactersOf(pattern);
    for (std::size_t i = 0; i < all.size(); ++i) {
        const char32_t c = all[i].value;
        const char32_t next = i + 1 < all.size() ? all[i + 1].value : 0;
        if (escape != 0 && c == escape && next != 0 &&
            (next == '%' || next == '_' || next == escape)) {
            items.push_back({Item::kCharacter, next});
            ++i;
        } else {
            items.push_back({c == '%' ? Item::kRun : c == '_' ? Item::kOne : Item::kCharacter, c});
        }
    }
    return items;
}

/// Returns, for each number of characters from the front, whether the pattern matches them.
inline std::vector<bool> matchesOf(const std::vector<Item>& items,
                                   const std::vector<Character>& text) {
    std::vector<bool> reached(text.size() + 1, false);
    reached[0] = true;
    for (const Item& item : items) {
        std::vector<bool> next(reached.size(), false);
        for (std::size_t i = 0; i < reached.size(); ++i) {
            if (item.kind == Item::kRun)
                next[i] = reached[i] || (i > 0 && next[i - 1]);
            else if (i > 0)
                next[i] =
                    reached[i - 1] && (item.kind == Item::kOne || item.value == text[i - 1].value);
        }
        reached.swap(next);
    }
    return reached;
}

inline bool matchesLike(const std::u16string& text, const std::u16string& pattern, char32_t escape,
                        int from) {
    const I18NString string = stringOf(text), like = stringOf(pattern);
    const auto wide = static_cast<wchar_t>(escape);
    const I18NPatternPtr code = i18nPattern(like, wide);
    const std::vector<Item> items = itemsOf(pattern, escape);
    const bool matches = matchesOf(items, charactersOf(text)).back();
    if (string.matchLike(like, wide) != matches || string.matchLike(*code) != matches) return false;

    int begin = -7, end = -7, expectedBegin = -7, expectedEnd = -7;
    for (std::size_t at = from < 0 ? 0 : static_cast<std::size_t>(from); at <= text.size();
         at += isPairAt(text, at) ? 2 : 1) {
        const std::vector<Character> rest = charactersOf(text, at);
        const std::vector<bool> reached = matchesOf(items, rest);
        const auto shortest = static_cast<std::size_t>(
            std::find(reached.begin(), reached.end(), true) - reached.begin());
        if (shortest == reached.size()) continue;
        expectedBegin = static_cast<int>(at);
        expectedEnd = static_cast<int>(shortest == 0 ? at : rest[shortest - 1].end);
        break;
    }
    return string.substringLike(*code, from, begin, end) == (expectedBegin >= 0) &&
           begin == expectedBegin && end == expectedEnd;
}

inline int offsetOf(std::size_t at) {
    return at == std::u16string::npos ? -1 : static_cast<int>(at);
}

inline bool finds(const std::u16string& text, const std::u16string& wanted, int start) {
    const I18NString string = stringOf(text), what = stringOf(wanted);
    const auto from = static_cast<std::size_t>(std::max(start, 0));
    const std::size_t last = start < 0 ? std::u16string::npos : from;
    return string.find(what, start) == offsetOf(text.find(wanted, from)) &&
           string.rfind(what, start) == offsetOf(text.rfind(wanted, last)) &&
           string.contains(what) == (text.find(wanted) != std::u16string::npos) &&
           string.starts_with(what) == (text.compare(0, wanted.size(), wanted) == 0) &&
           string.ends_with(what) ==
               (text.size() >= wanted.size() &&
                text.compare(text.size() - wanted.size(), wanted.size(), wanted) == 0) &&
           (string.compare(what) < 0) == (text < wanted) && (string == what) == (text == wanted);
}

inline bool findsSets(const std::u16string& text, const std::u16string& set, int start) {
    const I18NString string = stringOf(text), chosen = stringOf(set);
    const std::vector<Character> members = charactersOf(set);
    const auto isIn = [&](char32_t c) {
        return std::any_of(members.begin(), members.end(),
                           [c](const Character& member) { return member.value == c; });
    };
    int first[2] = {-1, -1}, last[2] = {-1, -1};
    for (const Character& each : charactersOf(text, static_cast<std::size_t>(std::max(start, 0)))) {
        int& found = first[isIn(each.value) ? 1 : 0];
        if (found < 0) found = static_cast<int>(each.begin);
    }
    for (const Character& each : charactersOf(text))
        if (start < 0 || static_cast<int>(each.begin) <= start)
            last[isIn(each.value) ? 1 : 0] = static_cast<int>(each.begin);
    if (string.findFirstOf(chosen, start) != first[1]) return false;
    if (string.findFirstNotOf(chosen, start) != first[0]) return false;
    // Backward searches begin with the character at the offset. An offset inside a pair is not
    // compared, because the pair is then not a whole character.
    if (start > 0 && isPairAt(text, static_cast<std::size_t>(start) - 1)) return true;
    return string.findLastOf(chosen, start) == last[1] &&
           string.findLastNotOf(chosen, start) == last[0];
}

/// The input selects the characters, the offsets and the escape character.
/// @return false if a result differs from that of the naive search
inline bool areAsNaive(Input& input) {
    const char32_t escapes[] = {0, '\\', '%', '_', 'a', 0x1F600};
    const char32_t escape = escapes[input.below(std::size(escapes))];
    const int start = static_cast<int>(input.below(52)) - 2;
    const std::u16string text = textFrom(input), other = textFrom(input);
    return matchesLike(text, other, escape, start) && finds(text, other, start) &&
           finds(text, text.substr(text.size() / 3, other.size() % 8), start) &&
           findsSets(text, other, start);
}

}  // namespace searchchecks

#endif
