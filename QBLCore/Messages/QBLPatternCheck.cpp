#include "QBLCore/Messages/shared/QBLPatternCheck.hpp"

#include <unicode/uchar.h>
#include <unicode/ustring.h>

namespace {

bool isWhiteSpace(char16_t c) { return u_hasBinaryProperty(c, UCHAR_PATTERN_WHITE_SPACE) != 0; }

int skipWhiteSpace(const icu::UnicodeString& text, int i) {
    while (i < text.length() && isWhiteSpace(text[i])) ++i;
    return i;
}

int skipLetters(const icu::UnicodeString& text, int i) {
    const auto isLetter = [](char16_t c) {
        return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z');
    };
    while (i < text.length() && isLetter(text[i])) ++i;
    return i;
}

/// Returns true if the comma begins ", choice,", ", plural,", ", select," or ", selectordinal,".
bool beginsChoice(const icu::UnicodeString& text, int comma) {
    const int begin = skipWhiteSpace(text, comma + 1), end = skipLetters(text, begin);
    const int next = skipWhiteSpace(text, end);
    if (next == text.length() || text[next] != u',') return false;
    for (const char16_t* kind : {u"choice", u"plural", u"select", u"selectordinal"})
        if (text.caseCompareBetween(begin, end, kind, 0, u_strlen(kind), U_FOLD_CASE_DEFAULT) == 0)
            return true;
    return false;
}

/// Returns the offset of the first choice above the limit, or -1. Counts every choice that ICU
/// might find, even in quotes. The check comes before ICU parses the text, because ICU would
/// exhaust the stack while parsing.
int findTooManyChoices(const icu::UnicodeString& text) {
    int choices = 0;
    for (int i = text.indexOf(u','); i >= 0; i = text.indexOf(u',', i + 1))
        if (beginsChoice(text, i) && ++choices > QBLPatternCheck::kMaxChoices) return i;
    return -1;
}

/// Returns true if a style, trimmed as ICU does it, is a skeleton with an exponent in an option.
bool hasExponent(const icu::UnicodeString& style) {
    const int begin = skipWhiteSpace(style, 0);
    if (style.compare(begin, 2, u"::", 0, 2) != 0) return false;
    bool inNumber = false;
    for (int i = begin + 2; i < style.length(); ++i) {
        const char16_t c = style[i];
        if (c == u'/')
            inNumber = true;
        else if (inNumber && style[i - 1] != u'/' && (c == u'e' || c == u'E'))
            return true;
        else if (c != u'.' && c != u'+' && c != u'-' && (c < u'0' || c > u'9'))
            inNumber = false;
    }
    return false;
}

}  // namespace

QBLPatternCheck::QBLPatternCheck(const icu::UnicodeString& text) : pattern(status) {
    offset = findTooManyChoices(text);
    if (offset >= 0) {
        fault = kTooManyChoices;
        return;
    }
    UParseError place = {};
    pattern.parse(text, &place, status);
    offset = place.offset;
    if (U_FAILURE(status)) {
        fault = kSyntax;
        return;
    }
    for (int i = 0; i < pattern.countParts(); ++i) {
        const icu::MessagePattern::Part& part = pattern.getPart(i);
        if (part.getType() != UMSGPAT_PART_TYPE_ARG_STYLE) continue;
        if (!hasExponent(pattern.getSubstring(part))) continue;
        fault = kExponent;
        offset = part.getIndex();
        return;
    }
}
