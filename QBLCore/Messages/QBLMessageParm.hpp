#ifndef QBLCORE_MESSAGES_QBLMESSAGEPARM_HPP
#define QBLCORE_MESSAGES_QBLMESSAGEPARM_HPP

#include "QBLCore/Frame/QBLExport.h"

class I18NString;

/// What the value of a message parameter is; the type can carry any int, only these have a meaning.
enum QBLMsgParm : int {
    QBLMsgParmUnknown = 0,
    QBLMsgParmULong = 1,
    QBLMsgParmLong = 2,
    QBLMsgParmDouble = 3,
    QBLMsgParmString = 4,
    QBLMsgParmMsgId = 5,  ///< the identifier of another message of the same file
    /// Milliseconds since 1970-01-01 UTC, in a long: where that has 32 bits they reach 24 days to
    /// either side. A text takes any date.
    QBLMsgParmDate = 6,
    QBLMsgParmOpaque = 7
};

/// A value that a message shows, with its type.
///
/// Threads: not synchronised.
///
///     const std::string now = QBLUtSystemInfo::getTimeStamp(0);
///     message << 5 << "disk" << now.c_str();  // a date parameter of 32 bits ends in January 1970
class QBL_API QBLMessageParm {
public:
    /// @name Making a parameter
    /// @{

    /// Stores both as they are, whether they belong together or not.
    QBLMessageParm(long value, QBLMsgParm type = QBLMsgParmLong);
    QBLMessageParm(int value);
    /// @param isMsgId  not 0 for a message identifier
    QBLMessageParm(unsigned long value, int isMsgId = 0);
    QBLMessageParm(unsigned value);
    /// A long or an unsigned long of that value; its digits as a text if it has more than 32 bits,
    /// which no message shows of a number.
    QBLMessageParm(long long value);
    QBLMessageParm(unsigned long long value);
    QBLMessageParm(double value);
    QBLMessageParm(const I18NString& text);
    /// @param utf8  null for an empty text
    QBLMessageParm(const char* utf8);
    QBLMessageParm(QBLMsgParm type);
    QBLMessageParm(const QBLMessageParm& other);
    QBLMessageParm& operator=(const QBLMessageParm& other);
    ~QBLMessageParm();
    /// @}

    /// @name Reading the value
    /// @{

    QBLMsgParm getType() const { return m_type; }
    /// The value, if the type is long or date.
    /// @return false, with 0 in value, for another type
    bool getValue(long& value) const;
    /// The same for unsigned longs and message identifiers.
    bool getValue(unsigned long& value) const;
    /// The same for doubles.
    bool getValue(double& value) const;
    /// The text form, of whatever type; empty for opaque values and types without a meaning.
    /// @return true
    bool getValue(I18NString& value) const;
    /// The string; null for a parameter that was not made from one.
    const I18NString* getText() const { return m_pText; }
    /// @}

    /// @name Changing and copying
    /// @{

    /// Makes it one of type unknown, with the value 0.
    void clear();
    void copy(const QBLMessageParm& other);
    /// A copy on the heap; the caller deletes it.
    QBLMessageParm* clone() const;
    /// @}

    /// @name As text
    /// @{

    /// Appends the text form. @param language  without effect on it
    void format(const char* language, I18NString& out) const;
    /// Appends a `<MessageParm>` element.
    /// @param flag  0 for type and value, else the text form. Types without a name deliberately
    ///     leave the attribute open: readers of these reports know the elements as they are.
    void toString(const char* language, I18NString& out, int flag) const;
    /// @}

private:
    QBLMsgParm m_type;
    long m_value;  // of all integers, unsigned ones by their bits
    double m_double;
    I18NString* m_pText;  // owned; null when not made from a string
};

#endif
