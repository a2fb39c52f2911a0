#ifndef QBLCORE_MESSAGES_INTERNAL_QBLINTEGERSTYLE_HPP
#define QBLCORE_MESSAGES_INTERNAL_QBLINTEGERSTYLE_HPP

#include <string>

/// How a locale writes integers: digits, groups, and signs. It is learnt from ICU's number format
/// and checked against it; a locale that writes them in some other way is not for us.
class QBLIntegerStyle {
public:
    /// The style of a locale, which is learnt once. It lives as long as the process.
    /// @return null when ICU has to write the locale's integers
    ///
    /// Threads: any thread.
    static const QBLIntegerStyle* get(const std::string& locale);

    void append(int value, std::string& out) const;

private:
    bool learn(const std::string& locale);

    std::string m_digits[10];  // UTF-8, as all that follows
    std::string m_separator;
    std::string m_negativePrefix;
    std::string m_negativeSuffix;
    int m_iPrimary;    // digits in the lowest group; 0 without groups
    int m_iSecondary;  // in the others
    int m_iMinimum;    // digits that must stand before the lowest group
};

#endif
