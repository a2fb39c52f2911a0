#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

#include "QBLCore/Exceptions/QBLAllocation.hpp"
#include "i18n/cpp/i18n_string.hpp"
#include "i18n/cpp/locale/i18n_settings.hpp"
#include "i18n/cpp/string/i18n_allocation.hpp"
#include "i18n/cpp/string/i18n_inert.hpp"
#include "i18n/cpp/string/i18n_normal_form.hpp"
#include "i18n/cpp/string/i18n_text_view.hpp"

// How a string replaces a part of its text.
//
// splice() limits the part to the text, checks the length, and decides how the text is stored.
// spliceUnits() replaces units directly if none of them can combine with another. Otherwise it
// calls combine(), which calls changeOf() to compute the change, and then makes the change.
//
// Checks: everything that can fail comes before the change, which put() makes in one step. So an
// error leaves the text, its form and its conversions as they were. If the text to insert is the
// string itself, splice() copies the string first.
//
// Storage: a text stored as ASCII stays so while only ASCII is added. Otherwise it moves to UTF-16
// and stays there. Memory is reused while the text fits. Memory grows by half and does not shrink.
// A caller's buffer is never replaced: a change throws if the new text is too long for the buffer.
//
// Form: a text in form C stays in form C. Only the text between the nearest normalisation
// boundaries is examined. A text with an exempt character is not normalised. This depends on the
// whole text, not only on the changed part. After a text has gained its first exempt character, its
// form is unknown. When a text loses its last exempt character, the whole text is brought to form
// C. The flags record whether the text has an exempt character, so that not every change has to
// search the whole text. With normalisation off, units are replaced as they are.
//
// Conversions: the last step of a change calls changed(), which makes all conversions stale.
// i18n_string_convert.cpp describes what happens to stale conversions.

namespace {

/// Moves the tail of a text so that the gap fits the new part.
template <class Unit>
void openGap(Unit* text, int length, int offset, int count, int fill) {
    std::char_traits<Unit>::move(text + offset + fill, text + offset + count,
                                 static_cast<std::size_t>(length - offset - count));
}

bool isInert(const I18NTextView& text, int from, int to) {
    return text.ascii() != nullptr ||
           i18nIsInert(text.units() + from, static_cast<std::size_t>(to - from));
}

/// Returns true if a text has a character that must not be normalised.
bool isExempt(std::u16string_view text) { return I18NSettings::now().isNonNormalizable(text); }

bool isExempt(const I18NTextView& text) {
    if (text.ascii() == nullptr)
        return isExempt(std::u16string_view(text.units(), static_cast<std::size_t>(text.length())));
    const std::vector<char32_t>& all = I18NSettings::now().nonNormalizable;
    if (all.empty() || all.front() > 0x7F) return false;
    return std::any_of(text.ascii(), text.ascii() + text.length(), [&](char c) {
        return std::binary_search(all.begin(), all.end(), static_cast<char32_t>(c));
    });
}

/// A replacement of a part of the old text by another text. The old text is stored as UTF-16.
struct Splice {
    const I18NTextView& old;
    int offset, end;  // of the part
    const I18NTextView& text;

    int length() const { return old.length(); }
    bool isWhole() const { return offset == 0 && end == length(); }
    bool isInsertion() const { return offset == end; }
    std::u16string_view units(int from, int to) const {
        return {old.units() + from, static_cast<std::size_t>(to - from)};
    }
    /// Returns the old text between two offsets, with the part replaced.
    icu::UnicodeString joined(int from, int to) const {
        return i18nJoin(units(from, offset), text, units(end, to));
    }
};

/// Returns true if the change joins two lone surrogates to a pair, which is a new character.
bool joinsHalves(const Splice& at) {
    const bool endsHigh = at.offset > 0 && i18nIsHigh(at.old[at.offset - 1]);
    const bool beginsLow = at.end < at.length() && i18nIsLow(at.old[at.end]);
    if (at.text.length() == 0) return endsHigh && beginsLow;
    return (endsHigh && (beginsLow || i18nIsLow(at.text[0]))) ||
           (i18nIsHigh(at.text[at.text.length() - 1]) && beginsLow);
}

/// Returns true if neither the text nor the character after it can combine with anything.
bool isInert(const Splice& at) {
    const int next = at.end < at.length() ? at.old.next(at.end) : at.end;
    return isInert(at.old, at.end, next) && isInert(at.text, 0, at.text.length());
}

/// What is known about a change before the text is examined.
struct Known {
    bool isFormC;
    bool substitutes;  // Japanese substitutions apply to the text
    bool joinsHalves;
    int exempt;  // as knownExempt(), but 0 if the settings have no exempt characters

    /// Returns true if the new text has all characters of the old text.
    bool keepsAll(const Splice& at) const { return at.isInsertion() && !joinsHalves; }
};

enum class Form { kAsBefore, kC, kUnknown };

/// A change of a string: put() replaces a part, and then the flags are set.
struct Change {
    int offset, count;
    I18NTextView text;
    Form form;
    int exempt;  // after the change: 1 if the string has exempt characters, 0 if not, -1 if unknown
};

/// Returns the form of the string once the text and its surroundings are in form C.
Form formOf(const Splice& at) { return at.isWhole() ? Form::kC : Form::kAsBefore; }

/// Returns 1 if the string has exempt characters after the change, 0 if not, -1 if that is not
/// known.
int exemptAfter(const Splice& at, int exempt, bool keepsAll) {
    const bool isKnown = exempt == 0 || (exempt == 1 && keepsAll);
    return isKnown ? exempt | (isExempt(at.text) ? 1 : 0) : -1;
}

/// Inserts the text as it is given, because of an exempt character.
Change givenExempt(const Splice& at) {
    return {at.offset, at.end - at.offset, at.text, Form::kUnknown, 1};
}

/// Inserts the text as it is given, because the text is in form C at that place.
Change givenInForm(const Splice& at, const Known& known) {
    const int exempt = known.joinsHalves ? -1 : exemptAfter(at, known.exempt, known.keepsAll(at));
    return {at.offset, at.end - at.offset, at.text, formOf(at), exempt};
}

/// Returns true if the whole string has to be brought to form C. There are two reasons. Japanese
/// substitutions apply to the whole string. A string that loses its last exempt character has not
/// been normalised before.
bool concernsAll(const Splice& at, const Known& known) {
    if (known.substitutes) return true;
    if (known.isFormC || at.isWhole() || known.keepsAll(at) || known.exempt == 0) return false;
    return isExempt(at.units(std::max(at.offset - 1, 0), std::min(at.end + 1, at.length())));
}

Change changeOfAll(const Splice& at, const Known& known, icu::UnicodeString& result) {
    const icu::UnicodeString all = at.joined(0, at.length());
    if (!i18nNormalize(i18nNormalizer(I18N_NFC), all, result)) {
        Change change = givenInForm(at, known);
        change.form = Form::kC;
        return change;
    }
    const bool isFormC = !isExempt(i18nUnits(all));
    if (!isFormC) result = all;
    if (known.substitutes) i18nSubstituteJa(result);
    return {0, at.length(), I18NTextView(result.getBuffer(), result.length()),
            isFormC ? Form::kC : Form::kUnknown, -1};
}

/// The changed part and everything that may combine with it on both sides.
struct Slice {
    int begin, end;
};

Slice sliceAround(const Splice& at, bool joinsHalves) {
    const icu::Normalizer2& form = i18nNormalizer(I18N_NFC);
    const I18NTextView& old = at.old;
    const auto isBoundary = [&](int i) {
        return form.hasBoundaryBefore(static_cast<UChar32>(old.codePointAt(i)));
    };
    // A high surrogate before the part becomes a part of another character if the halves join.
    int begin = at.offset > 0 ? old.before(at.offset) : at.offset;
    while (begin > 0 && ((joinsHalves && begin + 1 == at.offset) || !isBoundary(begin)))
        begin = old.before(begin);
    int end = at.end < at.length() && i18nIsLow(old[at.end]) ? at.end + 1 : at.end;
    while (end < at.length() && !isBoundary(end)) end = old.next(end);
    return {begin, end};
}

Change changeOfSlice(const Splice& at, const Known& known, icu::UnicodeString& result) {
    const Slice slice = sliceAround(at, known.joinsHalves);
    const icu::UnicodeString given = at.joined(slice.begin, slice.end);
    if (!i18nNormalize(i18nNormalizer(I18N_NFC), given, result)) return givenInForm(at, known);
    const auto isAroundExempt = [&] {
        return isExempt(at.units(0, slice.begin)) || isExempt(at.units(slice.end, at.length()));
    };
    if (isExempt(i18nUnits(given)) || (known.exempt != 0 && isAroundExempt()))
        return givenExempt(at);
    return {slice.begin, slice.end - slice.begin, I18NTextView(result.getBuffer(), result.length()),
            formOf(at), isExempt(i18nUnits(result)) ? 1 : 0};
}

/// Returns where to insert the text if it is a single mark that only moves before other marks;
/// otherwise -1.
int placeOfMark(const Splice& at, const Known& known) {
    if (!known.keepsAll(at) || known.exempt != 0 || isExempt(at.text)) return -1;
    return i18nPlaceOfMark(at.old, at.offset, at.text);
}

/// Finds the change in the cheapest way that applies.
/// @param result  owns the text of the change, unless that is `at.text`
Change changeOf(const Splice& at, const Known& known, icu::UnicodeString& result) {
    if (concernsAll(at, known)) return changeOfAll(at, known, result);
    if (known.exempt == 1 && known.keepsAll(at)) return givenExempt(at);
    if (known.isFormC && !known.joinsHalves) {
        if (i18nStaysAsItIs(i18nNormalizer(I18N_NFC), at.old, at.offset, at.end, at.text))
            return givenInForm(at, known);
        const int place = placeOfMark(at, known);
        if (place >= 0) return {place, 0, at.text, formOf(at), 0};
    }
    return changeOfSlice(at, known, result);
}

}  // namespace

// Replaces a part of the text by another text.
void I18NString::splice(I18NStringOffset offset, int count, const I18NTextView& text) {
    if (text.owner() == this) {
        const I18NString copy(*this);
        return splice(offset, count, I18NTextView(copy));
    }
    const int length = nUnits();
    if (offset < 0) offset = 0;
    if (offset > length) offset = length;
    if (count < 0 || count > length - offset) count = length - offset;
    const std::int64_t newLength = std::int64_t{length} - count + text.length();
    i18nRequireLength(newLength);
    if (!isUsingAsciiBuffer() || isForceUnicodeString() || !text.isASCII()) {
        leaveAscii();
        return spliceUnits(offset, count, text);
    }
    reserveAscii(static_cast<int>(newLength));
    openGap(m_pAsciiBuffer, length, offset, count, text.length());
    text.copyTo(m_pAsciiBuffer + offset);
    m_asciiBufLength = static_cast<int>(newLength);
    m_pAsciiBuffer[newLength] = '\0';
    changed();
}

// Replaces units as they are, without examining the form.
void I18NString::put(int offset, int count, const I18NTextView& text) {
    const int length = m_unitLength, newLength = length - count + text.length();
    reserveUnits(newLength);
    openGap(m_pCodeUnits, length, offset, count, text.length());
    text.copyTo(m_pCodeUnits + offset);
    m_unitLength = newLength;
    alias();
    changed();
}

// Returns 1 if the text has a character that must not be normalised, 0 if it has none, -1 if this
// is not known.
int I18NString::knownExempt() const {
    const int known = m_flags.load(std::memory_order_relaxed) >> kExemptShift;
    return known != 0 && known / 2 == I18NSettings::now().nonNormalizableID ? known % 2 : -1;
}

void I18NString::setExempt(int found) {
    if (found < 0) return;  // changed() has already cleared the bits
    const int list = I18NSettings::now().nonNormalizableID;
    if (list == 0) return;
    const int known = (list * 2 + found) << kExemptShift;
    m_flags.store(static_cast<unsigned char>(m_flags.load(std::memory_order_relaxed) | known),
                  std::memory_order_release);
}

// Replaces units, and keeps the text in its normalisation form.
void I18NString::spliceUnits(int offset, int count, const I18NTextView& text) {
    const I18NTextView old(*this);
    const Splice at = {old, offset, offset + count, text};
    int exempt = -1;
    if (!hasFlag(kI18NNoNormalization)) {
        const bool joins = joinsHalves(at);
        const bool mayConcernAll = !hasFlag(kI18NNormalized) &&
                                   ((count != 0 && !at.isWhole()) || hasJapaneseSubstitutions());
        if (joins || mayConcernAll || !isInert(at)) return combine(offset, count, text, joins);
        exempt = exemptAfter(at, knownExempt(), at.isInsertion());
    }
    put(offset, count, text);
    if (at.isWhole()) setFlag(kI18NNormalized, true);
    setExempt(exempt);
}

// Does the same for a text that may combine with its surroundings. Nothing changes before put().
void I18NString::combine(int offset, int count, const I18NTextView& text, bool pairs) {
    const I18NTextView old(*this);
    const Splice at = {old, offset, offset + count, text};
    QBL_ALLOC_TRY
    const bool hasExemptions = !I18NSettings::now().nonNormalizable.empty();
    const Known known = {hasFlag(kI18NNormalized), hasJapaneseSubstitutions(), pairs,
                         hasExemptions ? knownExempt() : 0};
    icu::UnicodeString result;
    const Change change = changeOf(at, known, result);
    put(change.offset, change.count, change.text);
    if (change.form != Form::kAsBefore) setFlag(kI18NNormalized, change.form == Form::kC);
    setExempt(change.exempt);
    I18N_ALLOC_CATCH
}
