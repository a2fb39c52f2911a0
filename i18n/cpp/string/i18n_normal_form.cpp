#include "i18n/cpp/string/i18n_normal_form.hpp"

#include <unicode/uchar.h>

#include <algorithm>
#include <string>
#include <vector>

#include "QBLCore/Exceptions/QBLThrow.hpp"
#include "QBLCore/Exceptions/shared/QBLThrowNoMemory.hpp"
#include "i18n/cpp/i18n_error_codes.h"
#include "i18n/cpp/i18n_errors.hpp"
#include "i18n/cpp/locale/i18n_settings.hpp"
#include "i18n/cpp/string/i18n_inert.hpp"

namespace {

const char kFailed[] = "An error occured during string normalization.";
const char kMalloc[] = "malloc failed to allocate memory.";

[[noreturn]] void throwFailure(UErrorCode status) {
    if (status == U_MEMORY_ALLOCATION_ERROR) qblThrowNoMemory(QBL_HERE, kMalloc);
    QBL_THROW(I18NRuntimeError(I18N_NORMALIZATION, kFailed));
}

void require(const icu::UnicodeString& text) {
    if (text.isBogus()) throwFailure(U_MEMORY_ALLOCATION_ERROR);
}

const icu::Normalizer2& made(const icu::Normalizer2* (*get)(UErrorCode&)) {
    UErrorCode status = U_ZERO_ERROR;
    const icu::Normalizer2* const form = get(status);
    if (status == U_MEMORY_ALLOCATION_ERROR) throwFailure(status);
    if (form == nullptr || U_FAILURE(status))
        QBL_THROW(I18NRuntimeError(I18N_NORMALIZATION, nullptr));
    return *form;
}

constexpr int kLongRun = 64;

/// Returns true if there may be a long run of characters that are not inert. Checks only a sample.
bool mayHaveLongRun(const icu::UnicodeString& text, int from) {
    const char16_t* const units = text.getBuffer();
    constexpr int kStep = kLongRun / 2;
    const auto isInert = [units](int i) { return i18nIsInert(units + i, 2); };
    for (int i = from; i + kStep + 2 <= text.length(); i += kStep)
        if (!isInert(i) && !isInert(i + kStep)) return true;
    return false;
}

/// Returns the text with the marks of long runs in canonical order. ICU moves each mark to its
/// place separately, which takes quadratic time.
icu::UnicodeString withSortedRuns(const icu::Normalizer2& form, const icu::UnicodeString& text,
                                  int from) {
    struct Mark {
        int combiningClass;
        UChar32 c;
    };
    std::vector<Mark> run;
    icu::UnicodeString sorted, decomposed;
    const auto endRun = [&](int begin, int end) {
        if (run.size() < static_cast<std::size_t>(kLongRun)) {
            sorted.append(text, begin, end - begin);
        } else {
            std::stable_sort(run.begin(), run.end(), [](const Mark& a, const Mark& b) {
                return a.combiningClass < b.combiningClass;
            });
            for (const Mark& mark : run) sorted.append(mark.c);
        }
        run.clear();
    };
    int runBegin = from;
    for (int i = from; i < text.length();) {
        const UChar32 c = text.char32At(i);
        const int next = text.moveIndex32(i, 1);
        if (u_getIntPropertyValue(c, UCHAR_LEAD_CANONICAL_COMBINING_CLASS) == 0) {
            endRun(runBegin, i);
            sorted.append(c);
            runBegin = next;
        } else {
            if (!form.getDecomposition(c, decomposed)) decomposed.setTo(c);
            for (int k = 0; k < decomposed.length(); k = decomposed.moveIndex32(k, 1))
                run.push_back(
                    {u_getCombiningClass(decomposed.char32At(k)), decomposed.char32At(k)});
        }
        i = next;
    }
    endRun(runBegin, text.length());
    require(sorted);
    return sorted;
}

/// The previous character and its class. They decide whether the next character may combine with
/// it.
struct Front {
    UChar32 last;   // -1 at the beginning of the text
    int lastClass;  // its combining class; 0 for none

    void take(UChar32 c, int combiningClass) {
        last = c;
        lastClass = combiningClass;
    }
    bool mayCombine(const icu::Normalizer2& form, UChar32 c, int combiningClass) const {
        if (last < 0) return false;
        if (lastClass != 0) return lastClass < combiningClass;
        // A composed character may have to give up its mark, and combine with a mark of a lower
        // class instead.
        const int trailing = u_getIntPropertyValue(last, UCHAR_TRAIL_CANONICAL_COMBINING_CLASS);
        return (combiningClass != 0 && combiningClass < trailing) || form.composePair(last, c) >= 0;
    }
};

int quickCheck(UChar32 c) { return u_getIntPropertyValue(c, UCHAR_NFC_QUICK_CHECK); }

}  // namespace

// The static variables order the construction of each object before its use. ICU does so, too, but
// tools that see only our code, such as race detectors, do not see ICU's order.
const icu::Normalizer2& i18nNormalizer(I18NNormalizationForms form) {
    switch (form) {
        case I18N_NFD: {
            static const icu::Normalizer2& s_nfd = made(icu::Normalizer2::getNFDInstance);
            return s_nfd;
        }
        case I18N_NFKC: {
            static const icu::Normalizer2& s_nfkc = made(icu::Normalizer2::getNFKCInstance);
            return s_nfkc;
        }
        case I18N_NFKD: {
            static const icu::Normalizer2& s_nfkd = made(icu::Normalizer2::getNFKDInstance);
            return s_nfkd;
        }
        default: {
            static const icu::Normalizer2& s_nfc = made(icu::Normalizer2::getNFCInstance);
            return s_nfc;
        }
    }
}

bool i18nNormalize(const icu::Normalizer2& form, const icu::UnicodeString& text,
                   icu::UnicodeString& result) {
    UErrorCode status = U_ZERO_ERROR;
    const int32_t kept = form.spanQuickCheckYes(text, status);
    if (status == U_MEMORY_ALLOCATION_ERROR) throwFailure(status);
    if (U_FAILURE(status)) QBL_THROW(I18NRuntimeError(I18N_NORMALIZATION, nullptr));
    if (kept == text.length()) return false;
    result.setTo(text, 0, kept);
    require(result);
    form.normalizeSecondAndAppend(
        result,
        mayHaveLongRun(text, kept) ? withSortedRuns(form, text, kept) : text.tempSubString(kept),
        status);
    if (U_FAILURE(status)) throwFailure(status);
    require(result);
    return true;
}

bool i18nSubstituteJa(icu::UnicodeString& text) {
    require(text);  // bogus if there was no memory for a copy
    std::u16string units(i18nUnits(text));
    if (!I18NSettings::now().substituteJa(units)) return false;
    text.setTo(units.data(), static_cast<int32_t>(units.size()));
    require(text);
    return true;
}

icu::UnicodeString i18nJoin(std::u16string_view before, const I18NTextView& text,
                            std::u16string_view after) {
    const auto front = static_cast<int32_t>(before.size());
    const auto back = static_cast<int32_t>(after.size());
    icu::UnicodeString all;
    char16_t* const out = all.getBuffer(front + text.length() + back);
    if (out == nullptr) throwFailure(U_MEMORY_ALLOCATION_ERROR);
    std::char_traits<char16_t>::copy(out, before.data(), before.size());
    text.copyTo(out + front);
    std::char_traits<char16_t>::copy(out + front + text.length(), after.data(), after.size());
    all.releaseBuffer(front + text.length() + back);
    return all;
}

// Two characters do not combine if a character between them has the same class as the second
// character, or a higher class.
bool i18nStaysAsItIs(const icu::Normalizer2& formC, const I18NTextView& old, int offset, int after,
                     const I18NTextView& text) {
    Front front = {-1, 0};
    if (offset > 0) {
        const auto c = static_cast<UChar32>(old.codePointAt(old.before(offset)));
        front.take(c, u_getCombiningClass(c));
    }
    bool marksOnly = offset == after;
    for (int i = 0; i < text.length(); i = text.next(i)) {
        const auto c = static_cast<UChar32>(text.codePointAt(i));
        const int combiningClass = u_getCombiningClass(c);
        const int check = quickCheck(c);
        if (check == UNORM_NO || (combiningClass != 0 && combiningClass < front.lastClass))
            return false;
        if (check == UNORM_MAYBE && front.mayCombine(formC, c, combiningClass)) return false;
        marksOnly = marksOnly && combiningClass != 0;
        front.take(c, combiningClass);
    }
    if (after == old.length()) return true;
    const auto next = static_cast<UChar32>(old.codePointAt(after));
    const int nextClass = u_getCombiningClass(next);
    return formC.hasBoundaryBefore(next) ||
           (marksOnly && (nextClass == 0 || nextClass >= front.lastClass));
}

int i18nPlaceOfMark(const I18NTextView& old, int offset, const I18NTextView& text) {
    if (text.length() == 0 || text.next(0) != text.length()) return -1;
    const auto mark = static_cast<UChar32>(text.codePointAt(0));
    const int markClass = u_getCombiningClass(mark);
    if (markClass == 0 || quickCheck(mark) == UNORM_NO) return -1;
    int at = offset, before = 0;
    for (UChar32 last = -1; at > 0;) {
        const int front = old.before(at);
        const auto c = static_cast<UChar32>(old.codePointAt(front));
        if (c != last) before = u_getCombiningClass(last = c);
        if (before <= markClass) break;
        at = front;
    }
    const bool stays = at == 0 || before == markClass || quickCheck(mark) == UNORM_YES;
    return at < offset && stays ? at : -1;
}
