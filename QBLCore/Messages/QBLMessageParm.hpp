#ifndef QBLCORE_MESSAGES_QBLMESSAGEPARM_HPP
#define QBLCORE_MESSAGES_QBLMESSAGEPARM_HPP

#include "QBLCore/Frame/QBLExport.h"
#include "QBLCore/Frame/QBLLanguage.hpp"

class I18NString;

/// The type of a message parameter. Any int is possible, but only these values have a meaning.
enum QBLMsgParm : int {
    QBLMsgParmUnknown = 0,
    QBLMsgParmULong = 1,
    QBLMsgParmLong = 2,
    QBLMsgParmDouble = 3,
    QBLMsgParmString = 4,
    QBLMsgParmMsgId = 5,  ///< the identifier of another message of the same file
    /// Milliseconds since 1970-01-01 UTC, in a long. A 32-bit long only reaches 24 days before and
    /// after that date. Pass other dates as text.
    QBLMsgParmDate = 6,
    QBLMsgParmOpaque = 7
};

/// Tells whether a text of the standard library converts to none of the older parameter types.
/// Does not use `<type_traits>`, which would triple the cost of this header.
///
/// Threads: not called at run time.
struct QBLMessageTextCheck {
    static char test(const char*);
    static char test(const I18NString&);
    static char test(double);
    static int test(...);
    template <class Text>
    static const Text& text();
};
template <class Chars, unsigned long kSize>
struct QBLMessageTextType {};
template <>
struct QBLMessageTextType<const char*, sizeof(int)> {
    typedef int Type;
};

/// A value that a message shows, with its type.
///
/// Threads: not synchronised.
///
///     const std::string now = QBLUtSystemInfo::getTimeStamp(0);
///     message << 5 << "disk" << now;  // a 32-bit date parameter ends in January 1970
class QBL_API QBLMessageParm {
public:
    /// @name Making a parameter
    /// @{

    /// Stores value and type unchanged, even if they do not match.
    QBLMessageParm(long value, QBLMsgParm type = QBLMsgParmLong);
    QBLMessageParm(int value);
    /// @param isMsgId  not 0 for a message identifier
    QBLMessageParm(unsigned long value, int isMsgId = 0);
    QBLMessageParm(unsigned value);
    /// Stores a long or an unsigned long. Stores a value of more than 32 bits as a text with its
    /// digits, because messages show only 32 bits of a number.
    QBLMessageParm(long long value);
    QBLMessageParm(unsigned long long value);
    QBLMessageParm(double value);
    QBLMessageParm(long double value) : QBLMessageParm(static_cast<double>(value)) {}
    QBLMessageParm(const I18NString& text);
    /// @param utf8  null stands for an empty text
    QBLMessageParm(const char* utf8);
    /// Takes a std::string or std::string_view, as a whole.
    template <class Text, class = typename Text::traits_type,
              class = typename QBLMessageTextType<
                  decltype(QBLMessageTextCheck::text<Text>().data()),
                  sizeof(QBLMessageTextCheck::test(QBLMessageTextCheck::text<Text>()))>::Type>
    QBLMessageParm(const Text& utf8) : QBLMessageParm(Bytes(utf8.data(), utf8.size())) {}
    QBLMessageParm(QBLMsgParm type);
    QBLMessageParm(const QBLMessageParm& other);
    QBLMessageParm& operator=(const QBLMessageParm& other);
    ~QBLMessageParm();
    /// @}

    /// @name Reading the value
    /// @{

    QBLMsgParm getType() const { return m_type; }
    /// Reads the value if the type is long or date.
    /// @return false, with the value 0, for another type
    bool getValue(long& value) const;
    /// Does the same for unsigned longs and message identifiers.
    bool getValue(unsigned long& value) const;
    /// Does the same for doubles.
    bool getValue(double& value) const;
    /// Reads the text form of any type; empty for opaque values and types without a meaning.
    /// @return true
    bool getValue(I18NString& value) const;
    /// Returns the string; null if the parameter was not made from a string.
    const I18NString* getText() const { return m_pText; }
    /// @}

    /// @name Changing and copying
    /// @{

    /// Sets the type to QBLMsgParmUnknown and the value to 0.
    void clear();
    void copy(const QBLMessageParm& other);
    /// Returns a copy; the caller deletes it.
    QBLMessageParm* clone() const;
    /// @}

    /// @name As text
    /// @{

    /// Appends the text form. @param language  ignored
    void format(const char* language, I18NString& out) const;
    /// Appends a `<MessageParm>` element.
    /// @param flag  if 0, shows type and value; otherwise shows the text form. For
    ///     QBLMsgParmUnknown and types without a meaning, the value deliberately lacks its closing
    ///     quote: existing readers of these reports expect this form.
    void toString(const char* language, I18NString& out, int flag) const;
    /// @}

private:
    struct Bytes {
        explicit Bytes(const char* from, decltype(sizeof 0) length) : data(from), size(length) {}
        const char* data;
        decltype(sizeof 0) size;
    };
    explicit QBLMessageParm(const Bytes& utf8);

    QBLMsgParm m_type;
    long m_value;  // for all integer types; an unsigned value keeps its bits
    double m_double;
    I18NString* m_pText;  // owned; null if not made from a string
};

#endif
