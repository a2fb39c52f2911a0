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

namespace {

/// Moves the tail of a text so that a gap has the size of what is to come.
template <class Unit>
void openGap(Unit* text, int length, int offset, int count, int fill) {
    std::char_traits<Unit>::move(text + offset + fill, text + offset + count,
                                 static_cast<std::size_t>(length - offset - count));
}

std::u16string_view view(const char16_t* units, int length) {
    return std::u16string_view(units, static_cast<std::size_t>(length));
}

/// Whether a text has a character that must not be normalised.
bool isExempt(std::u16string_view text) { return I18NSettings::now().isNonNormalizable(text); }

bool isExempt(const I18NTextView& text) {
    if (text.ascii() == nullptr) return isExempt(view(text.units(), text.length()));
    const std::vector<char32_t>& all = I18NSettings::now().nonNormalizable;
    if (all.empty() || all.front() > 0x7F) return false;
    return std::any_of(text.ascii(), text.ascii() + text.length(), [&](char c) {
        return std::binary_search(all.begin(), all.end(), static_cast<char32_t>(c));
    });
}

}  // namespace

// Puts a text in the place of a part of this one.
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

// Replaces units as they are, without a look at the normal form.
void I18NString::put(int offset, int count, const I18NTextView& text) {
    const int length = m_unitLength, newLength = length - count + text.length();
    reserveUnits(newLength);
    std::char_traits<char16_t>::move(m_pCodeUnits + offset + text.length(),
                                     m_pCodeUnits + offset + count,
                                     static_cast<std::size_t>(length - offset - count));
    text.copyTo(m_pCodeUnits + offset);
    m_unitLength = newLength;
    alias();
    changed();
}

// 1 if the text has a character that must not be normalised, 0 if it has none, -1 if that is not
// known.
int I18NString::knownExempt() const {
    const int known = m_flags.load(std::memory_order_relaxed) >> kExemptShift;
    return known != 0 && known / 2 == I18NSettings::now().nonNormalizableID ? known % 2 : -1;
}

void I18NString::setExempt(int found) {
    if (found < 0) return;  // the change has cleared what was known
    const int list = I18NSettings::now().nonNormalizableID;
    if (list == 0) return;
    const int known = (list * 2 + found) << kExemptShift;
    m_flags.store(static_cast<unsigned char>(m_flags.load(std::memory_order_relaxed) | known),
                  std::memory_order_release);
}

// Replaces units, and brings what is around them to form C. Only what is between the nearest
// characters that nothing before them can combine with needs to be looked at. The one change comes
// last, so that a failure leaves the string as it was.
//
// A text with a character that must not be normalised stays as it is given. The whole text decides
// that, not the part that changes: so a text that gains such a character is in no form, and one
// that loses its last is brought to form C as a whole. What a look at all of it has found is kept
// in the flags, so that text made piece by piece is looked at once.
void I18NString::spliceUnits(int offset, int count, const I18NTextView& text) {
    const I18NTextView old(*this);
    const int length = m_unitLength, behind = offset + count;
    const bool whole = offset == 0 && behind == length;
    if (hasFlag(kI18NNoNormalization)) {
        put(offset, count, text);
        if (whole) setFlag(kI18NNormalized, true);
        return;
    }
    // Halves of a pair that come together are another character, and those that part are none.
    const char16_t before = offset > 0 ? old[offset - 1] : u'\0';
    const char16_t after = behind < length ? old[behind] : u'\0';
    const bool empty = text.length() == 0;
    const bool pairs =
        (i18nIsHigh(before) && (i18nIsLow(after) || (!empty && i18nIsLow(text[0])))) ||
        (!empty && i18nIsHigh(text[text.length() - 1]) && i18nIsLow(after));
    const bool mayLose =
        !hasFlag(kI18NNormalized) && ((count != 0 && !whole) || hasJapaneseSubstitutions());
    const auto isInert = [](const char16_t* units, int n) {
        return i18nIsInert(units, static_cast<std::size_t>(n));
    };
    const int next = behind < length ? old.next(behind) : behind;
    if (pairs || mayLose || !isInert(m_pCodeUnits + behind, next - behind) ||
        (text.ascii() == nullptr && !isInert(text.units(), text.length())))
        return combine(offset, count, text, pairs);
    const int exempt = knownExempt();
    put(offset, count, text);
    if (whole) setFlag(kI18NNormalized, true);
    if (exempt == 0 || (exempt == 1 && count == 0)) setExempt(exempt | (isExempt(text) ? 1 : 0));
}

// The same for text that may combine with what is around it.
void I18NString::combine(int offset, int count, const I18NTextView& text, bool pairs) {
    const I18NTextView old(*this);
    const int length = m_unitLength, behind = offset + count;
    const bool whole = offset == 0 && behind == length;
    const bool isForm = hasFlag(kI18NNormalized);
    const bool keepsAll = count == 0 && !pairs;
    const auto units = [this](int from, int to) { return view(m_pCodeUnits + from, to - from); };
    const auto finish = [&](int at, int replaced, const I18NTextView& with, bool isNormalized,
                            int exempt) {
        put(at, replaced, with);
        if (whole || !isNormalized) setFlag(kI18NNormalized, isNormalized);
        setExempt(exempt);
    };
    const int exempt = I18NSettings::now().nonNormalizable.empty() ? 0 : knownExempt();
    const auto finishAsItIs = [&] {
        const bool known = !pairs && (exempt == 0 || (exempt == 1 && keepsAll));
        finish(offset, count, text, true, known ? exempt | (isExempt(text) ? 1 : 0) : -1);
    };
    QBL_ALLOC_TRY
    const icu::Normalizer2& form = i18nNormalizer(I18N_NFC);
    icu::UnicodeString result;
    // Substitutions are made in all of a text that is not in form C.
    const bool substitutes = hasJapaneseSubstitutions();
    if (substitutes || (!isForm && !whole && !keepsAll && exempt != 0 &&
                        isExempt(units(std::max(offset - 1, 0), std::min(behind + 1, length))))) {
        const icu::UnicodeString all = i18nJoin(units(0, offset), text, units(behind, length));
        if (!i18nNormalize(form, all, result)) {
            finishAsItIs();
            return setFlag(kI18NNormalized, true);
        }
        const bool isNormalized = !isExempt(i18nUnits(all));
        if (!isNormalized) result = all;
        if (substitutes) i18nSubstituteJa(result);
        finish(0, length, I18NTextView(result.getBuffer(), result.length()), isNormalized, -1);
        return setFlag(kI18NNormalized, isNormalized);
    }
    if (exempt == 1 && keepsAll) return finish(offset, count, text, false, 1);
    if (isForm && !pairs) {
        if (i18nStaysAsItIs(form, old, offset, behind, text)) return finishAsItIs();
        const int place =
            keepsAll && exempt == 0 && !isExempt(text) ? i18nPlaceOfMark(old, offset, text) : -1;
        if (place >= 0) return finish(place, 0, text, true, 0);
    }
    const auto isBoundary = [&](int i) {
        return form.hasBoundaryBefore(static_cast<UChar32>(old.codePointAt(i)));
    };
    // Half of a pair in front becomes another character.
    int begin = offset > 0 ? old.before(offset) : offset;
    while (begin > 0 && ((pairs && begin + 1 == offset) || !isBoundary(begin)))
        begin = old.before(begin);
    int end = behind < length && i18nIsLow(old[behind]) ? behind + 1 : behind;
    while (end < length && !isBoundary(end)) end = old.next(end);
    const icu::UnicodeString slice = i18nJoin(units(begin, offset), text, units(behind, end));
    if (!i18nNormalize(form, slice, result)) return finishAsItIs();
    if (isExempt(i18nUnits(slice)) ||
        (exempt != 0 && (isExempt(units(0, begin)) || isExempt(units(end, length)))))
        return finish(offset, count, text, false, 1);
    finish(begin, end - begin, I18NTextView(result.getBuffer(), result.length()), true,
           isExempt(i18nUnits(result)) ? 1 : 0);
    I18N_ALLOC_CATCH
}
