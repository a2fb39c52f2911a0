#ifndef QBLCORE_MESSAGES_SHARED_QBLPATTERNCHECK_HPP
#define QBLCORE_MESSAGES_SHARED_QBLPATTERNCHECK_HPP

#include <unicode/messagepattern.h>
#include <unicode/unistr.h>

/// Parses a text as an ICU message pattern and finds its first fault. Programs and the catalogue
/// compiler share this check, so that each compiled text can be shown.
///
/// Finds the faults that ICU finds, and two more. A text with more than kMaxChoices choices,
/// plurals and selects is a fault, because ICU recurses if they are nested. An exponent in the
/// options of a number skeleton, such as "::scale/1E9", is a fault, because ICU would write all the
/// zeros.
struct QBLPatternCheck {
    enum Fault { kNone, kSyntax, kTooManyChoices, kExponent };
    static constexpr int kMaxChoices = 100;

    explicit QBLPatternCheck(const icu::UnicodeString& text);

    Fault fault = kNone;
    int offset = 0;                    ///< where the fault is, in code units
    UErrorCode status = U_ZERO_ERROR;  ///< ICU's result
    icu::MessagePattern pattern;       ///< empty after kSyntax and kTooManyChoices
};

#endif
