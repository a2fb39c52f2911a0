#ifndef QBLCORE_MESSAGES_INTERNAL_QBLINTEGERSTYLE_HPP
#define QBLCORE_MESSAGES_INTERNAL_QBLINTEGERSTYLE_HPP

#include <string>

/// How a locale writes integers: digits, groups and signs. The style is read from ICU's number
/// format. If the style writes some sample integers differently than ICU does, the locale has no
/// style.
class QBLIntegerStyle {
public:
    /// Returns the style of a locale. Each style is read once and exists until the process ends.
    /// @return null if ICU must write the locale's integers
    /// @throws QBLOutOfMemoryError, std::bad_alloc; a later call tries again
    ///
    /// Threads: any thread may call it.
    static const QBLIntegerStyle* get(const std::string& locale);

    void append(int value, std::string& out) const;

private:
    enum Result { kLearnt, kDiffers, kFailed };

    Result learn(const std::string& locale);

    std::string m_digits[10];  // UTF-8, like the other texts
    std::string m_separator;
    std::string m_negativePrefix;
    std::string m_negativeSuffix;
    int m_iPrimary;    // digits in the lowest group; 0 without groups
    int m_iSecondary;  // digits in the other groups
    int m_iMinimum;    // minimum number of digits before the lowest group
};

#endif
