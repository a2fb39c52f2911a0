#include "QBLCore/Messages/QBLMessageParm.hpp"

#include <charconv>
#include <cstdint>
#include <memory>

#include "QBLCore/Exceptions/QBLAllocation.hpp"
#include "QBLCore/Messages/internal/QBLNumberText.hpp"
#include "i18n/cpp/i18n_string.hpp"

namespace {

const char kOpaque[] = "<opaque parm>";

I18NString* copyOf(const I18NString& text) {
    QBL_ALLOC_TRY
    return new I18NString(text);
    QBL_ALLOC_CATCH
}

I18NString* copyOf(const char* utf8) {
    QBL_ALLOC_TRY
    return new I18NString(utf8);
    QBL_ALLOC_CATCH
}

/// An integer in decimal, in its own buffer.
class Digits {
public:
    template <class Integer>
    explicit Digits(Integer value) {
        *std::to_chars(m_text, m_text + sizeof m_text - 1, value).ptr = '\0';
    }
    const char* text() const { return m_text; }

private:
    char m_text[24];
};

}  // namespace

QBLMessageParm::QBLMessageParm(long value, QBLMsgParm type)
    : m_type(type), m_value(value), m_double(static_cast<double>(value)), m_pText(nullptr) {}

QBLMessageParm::QBLMessageParm(int value) : QBLMessageParm(static_cast<long>(value)) {}

QBLMessageParm::QBLMessageParm(unsigned long value, int isMsgId)
    : QBLMessageParm(static_cast<long>(value), isMsgId != 0 ? QBLMsgParmMsgId : QBLMsgParmULong) {}

QBLMessageParm::QBLMessageParm(unsigned value)
    : QBLMessageParm(static_cast<unsigned long>(value)) {}

QBLMessageParm::QBLMessageParm(long long value)
    : QBLMessageParm(value >= INT32_MIN && value <= INT32_MAX
                         ? QBLMessageParm(static_cast<long>(value))
                         : QBLMessageParm(Digits(value).text())) {}

QBLMessageParm::QBLMessageParm(unsigned long long value)
    : QBLMessageParm(value <= UINT32_MAX ? QBLMessageParm(static_cast<unsigned long>(value))
                                         : QBLMessageParm(Digits(value).text())) {}

QBLMessageParm::QBLMessageParm(double value) : QBLMessageParm(0L, QBLMsgParmDouble) {
    m_double = value;
}

QBLMessageParm::QBLMessageParm(const I18NString& text)
    : m_type(QBLMsgParmString), m_value(0), m_double(0), m_pText(copyOf(text)) {}

QBLMessageParm::QBLMessageParm(const char* utf8)
    : m_type(QBLMsgParmString), m_value(0), m_double(0), m_pText(copyOf(utf8)) {}

QBLMessageParm::QBLMessageParm(const Bytes& utf8)
    : QBLMessageParm(I18NString(std::string_view(utf8.data, utf8.size))) {}

QBLMessageParm::QBLMessageParm(QBLMsgParm type) : QBLMessageParm(0L, type) {}

QBLMessageParm::QBLMessageParm(const QBLMessageParm& other)
    : m_type(other.m_type),
      m_value(other.m_value),
      m_double(other.m_double),
      m_pText(other.m_pText != nullptr ? copyOf(*other.m_pText) : nullptr) {}

QBLMessageParm& QBLMessageParm::operator=(const QBLMessageParm& other) {
    if (this != &other) copy(other);
    return *this;
}

QBLMessageParm::~QBLMessageParm() { delete m_pText; }

bool QBLMessageParm::getValue(long& value) const {
    const bool fits = m_type == QBLMsgParmLong || m_type == QBLMsgParmDate;
    value = fits ? m_value : 0;
    return fits;
}

bool QBLMessageParm::getValue(unsigned long& value) const {
    const bool fits = m_type == QBLMsgParmULong || m_type == QBLMsgParmMsgId;
    value = fits ? static_cast<unsigned long>(m_value) : 0;
    return fits;
}

bool QBLMessageParm::getValue(double& value) const {
    const bool fits = m_type == QBLMsgParmDouble;
    value = fits ? m_double : 0;
    return fits;
}

bool QBLMessageParm::getValue(I18NString& value) const {
    value.remove();
    if (m_type != QBLMsgParmOpaque) format(nullptr, value);
    return true;
}

void QBLMessageParm::clear() {
    delete m_pText;
    m_pText = nullptr;
    m_type = QBLMsgParmUnknown;
    m_value = 0;
    m_double = 0;
}

void QBLMessageParm::copy(const QBLMessageParm& other) {
    if (this == &other) return;
    std::unique_ptr<I18NString> text(other.m_pText != nullptr ? copyOf(*other.m_pText) : nullptr);
    clear();
    m_type = other.m_type;
    m_value = other.m_value;
    m_double = other.m_double;
    m_pText = text.release();
}

QBLMessageParm* QBLMessageParm::clone() const {
    QBL_ALLOC_TRY
    return new QBLMessageParm(*this);
    QBL_ALLOC_CATCH
}

void QBLMessageParm::format(const char*, I18NString& out) const {
    switch (m_type) {
        case QBLMsgParmULong:
            out.append(QBLNumberText::decimal(static_cast<unsigned>(m_value)).c_str());
            break;
        case QBLMsgParmLong:
        case QBLMsgParmDate:
            out.append(QBLNumberText::decimal(static_cast<int>(m_value)).c_str());
            break;
        case QBLMsgParmDouble:
            out.append(QBLNumberText::fixed(m_double).c_str());
            break;
        case QBLMsgParmString:
            if (m_pText != nullptr) out.append(*m_pText);
            break;
        case QBLMsgParmMsgId:
            out.append("msgid(");
            out.append(QBLNumberText::hex(static_cast<unsigned>(m_value)).c_str()).append(")");
            break;
        case QBLMsgParmOpaque:
            out.append(kOpaque);
            break;
        default:
            break;
    }
}

void QBLMessageParm::toString(const char* language, I18NString& out, int flag) const {
    if (flag != 0) {
        out.append("<MessageParm Text=\"");
        format(language, out);
        out.append("\" />");
        return;
    }
    out.append("<MessageParm Name=\"QBLMessageParm\" Type=");
    switch (m_type) {
        case QBLMsgParmUnknown:
            out.append("\"unknown\" Value=\"");
            break;
        case QBLMsgParmMsgId:
            out.append("\"msgid\" Value=\"");
            out.append(QBLNumberText::hex(static_cast<unsigned>(m_value)).c_str()).append("\"");
            break;
        case QBLMsgParmOpaque:
            out.append("\"opaque\" Value=\"");
            out.append(QBLNumberText::hex(static_cast<unsigned>(m_value)).c_str()).append("\"");
            break;
        case QBLMsgParmString:
        case QBLMsgParmULong:
        case QBLMsgParmLong:
        case QBLMsgParmDate:
        case QBLMsgParmDouble:
            out.append(m_type == QBLMsgParmString   ? "\"string"
                       : m_type == QBLMsgParmULong  ? "\"ulong"
                       : m_type == QBLMsgParmDouble ? "\"double"
                                                    : "\"long");
            out.append("\" Value=\"");
            format(language, out);
            out.append("\"");
            break;
        default:
            out.append("\"illegal\" Value=\"");
            break;
    }
    out.append(" />");
}
