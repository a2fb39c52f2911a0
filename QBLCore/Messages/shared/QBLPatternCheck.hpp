#ifndef QBLCORE_MESSAGES_SHARED_QBLPATTERNCHECK_HPP
#define QBLCORE_MESSAGES_SHARED_QBLPATTERNCHECK_HPP

#include <unicode/messagepattern.h>
#include <unicode/unistr.h>

/// A text as the message pattern that ICU takes it for, and what is wrong with it. Programs and the
/// compiler of catalogues judge by this one check, so that what is compiled can be shown.
///
/// Refused are, besides what ICU refuses: more than kMaxChoices choices, plurals and selects, as
/// ICU calls itself for each that is in another; and exponents in the options of a number skeleton,
/// as in "::scale/1E9", for which ICU would write all the zeros.
struct QBLPatternCheck {
    enum Fault { kNone, kSyntax, kTooManyChoices, kExponent };
    static constexpr int kMaxChoices = 100;

    explicit QBLPatternCheck(const icu::UnicodeString& text);

    Fault fault = kNone;
    int offset = 0;                    ///< where the fault is, in code units
    UErrorCode status = U_ZERO_ERROR;  ///< that ICU gave
    icu::MessagePattern pattern;       ///< empty after kSyntax and kTooManyChoices
};

#endif
