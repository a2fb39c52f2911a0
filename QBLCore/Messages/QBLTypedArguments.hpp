#ifndef QBLCORE_MESSAGES_QBLTYPEDARGUMENTS_HPP
#define QBLCORE_MESSAGES_QBLTYPEDARGUMENTS_HPP

#include <cstddef>
#include <string_view>
#include <type_traits>

#include "QBLCore/Messages/QBLMessageParm.hpp"
#include "i18n/cpp/i18n_string.hpp"

/// An argument of a typed message: a text, or a number. The functions that `qblmsgc --typed`
/// generates take the classes below, which accept only the C++ types that fit the pattern. An
/// argument refers to the caller's text, so it must not outlive the call of the function.
///
/// Threads: not synchronised.
class QBLTypedArgument {
public:
    /// An empty text, for an argument that the pattern does not use.
    QBLTypedArgument() = default;

    /// @throws QBLOutOfMemoryError
    QBLMessageParm parameter() const {
        if (m_pText != nullptr) return QBLMessageParm(*m_pText);
        if (m_kind == kInteger) return QBLMessageParm(m_iValue);
        if (m_kind == kNumber) return QBLMessageParm(m_dValue);
        return QBLMessageParm(m_bytes);
    }

protected:
    /// A character or a bool is not a number, and an enumerator is not an integer.
    template <class T>
    static constexpr bool isInteger() {
        return std::is_integral_v<T> && sizeof(T) <= sizeof(long long) &&
               !std::is_same_v<T, bool> && !std::is_same_v<T, char> &&
               !std::is_same_v<T, wchar_t> && !std::is_same_v<T, char16_t> &&
#ifdef __cpp_char8_t
               !std::is_same_v<T, char8_t> &&
#endif
               !std::is_same_v<T, char32_t>;
    }
    template <class T>
    static constexpr bool isText() {
        return !std::is_same_v<T, std::nullptr_t> &&
               (std::is_base_of_v<I18NString, T> ||
                std::is_convertible_v<const T&, std::string_view>);
    }

    void setInteger(int value) {
        m_kind = kInteger;
        m_iValue = value;
    }
    void setNumber(double value) {
        m_kind = kNumber;
        m_dValue = value;
    }
    void setText(const I18NString& text) { m_pText = &text; }
    void setText(std::string_view utf8) { m_bytes = utf8; }
    void setText(const char* utf8) {
        if (utf8 != nullptr) m_bytes = utf8;
    }
    /// Messages show only 32 bits of an integer parameter, but all digits of a double up to 2^53.
    template <class T>
    void setIntegral(T value) {
        const int narrow = static_cast<int>(value);
        if (static_cast<T>(narrow) == value && (narrow < 0) == (value < T(0)))
            setInteger(narrow);
        else
            setNumber(static_cast<double>(value));
    }

private:
    enum Kind { kBytes, kInteger, kNumber };

    Kind m_kind = kBytes;
    int m_iValue = 0;
    double m_dValue = 0;
    const I18NString* m_pText = nullptr;  // if not null, the value
    std::string_view m_bytes = "";
};

/// A text: an I18NString, a std::string, a std::string_view, or a null-terminated text in UTF-8. A
/// null pointer variable is an empty text. The argument of a select is a text too.
///
/// Threads: not synchronised.
class QBLTypedText : public QBLTypedArgument {
public:
    template <class Text, class = std::enable_if_t<isText<Text>()>>
    QBLTypedText(const Text& text) {
        if constexpr (std::is_base_of_v<I18NString, Text>)
            setText(static_cast<const I18NString&>(text));
        else if constexpr (std::is_convertible_v<const Text&, const char*>)
            setText(static_cast<const char*>(text));
        else
            setText(static_cast<std::string_view>(text));
    }
};

/// An integer of any width: for plurals, ordinals, durations and integer formats. Values of more
/// than 32 bits are shown with all their digits up to 2^53, and rounded above.
///
/// Threads: not synchronised.
class QBLTypedInteger : public QBLTypedArgument {
public:
    template <class Integer, class = std::enable_if_t<isInteger<Integer>()>>
    QBLTypedInteger(Integer value) {
        setIntegral(value);
    }
};

/// An integer, as in QBLTypedInteger, or a floating-point number.
///
/// Threads: not synchronised.
class QBLTypedNumber : public QBLTypedArgument {
public:
    template <class Number,
              class = std::enable_if_t<isInteger<Number>() || std::is_floating_point_v<Number>>>
    QBLTypedNumber(Number value) {
        if constexpr (std::is_floating_point_v<Number>)
            setNumber(static_cast<double>(value));
        else
            setIntegral(value);
    }
};

/// A date or a time of day: a time point of std::chrono::system_clock, in any unit. Unlike a
/// parameter of type QBLMsgParmDate, it reaches every date at 32 bits too.
///
/// Threads: not synchronised.
class QBLTypedDate : public QBLTypedArgument {
public:
    /// @param milliseconds  since 1970-01-01 UTC
    explicit QBLTypedDate(double milliseconds) { setNumber(milliseconds); }
    template <class Time,
              class = decltype(Time::clock::to_time_t(typename Time::clock::time_point()))>
    QBLTypedDate(const Time& time) {
        using Period = typename Time::period;
        setNumber(static_cast<double>(time.time_since_epoch().count()) *
                  (1000.0 * static_cast<double>(Period::num) / static_cast<double>(Period::den)));
    }
};

#endif
