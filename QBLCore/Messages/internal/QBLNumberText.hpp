#ifndef QBLCORE_MESSAGES_INTERNAL_QBLNUMBERTEXT_HPP
#define QBLCORE_MESSAGES_INTERNAL_QBLNUMBERTEXT_HPP

#include <charconv>
#include <limits>

/// A number as text, in its own buffer. No form depends on the process's locale.
class QBLNumberText {
public:
    /// Writes the number as printf's "%d" or "%u" does.
    template <class Integer>
    static QBLNumberText decimal(Integer value) {
        return QBLNumberText(
            [value](char* first, char* last) { return std::to_chars(first, last, value).ptr; });
    }
    /// Writes the number as printf's "%f" does.
    static QBLNumberText fixed(double value) {
        return QBLNumberText([value](char* first, char* last) {
            return std::to_chars(first, last, value, std::chars_format::fixed, 6).ptr;
        });
    }
    /// Writes the number as printf's "%#04x" does: 0 as 0000, 5 as 0x05.
    static QBLNumberText hex(unsigned value) {
        return QBLNumberText([value](char* first, char* last) {
            *first++ = '0';
            *first++ = value != 0 ? 'x' : '0';
            if (value < 0x10) *first++ = '0';
            return std::to_chars(first, last, value, 16).ptr;
        });
    }

    const char* c_str() const { return m_text; }

private:
    template <class Writer>
    explicit QBLNumberText(const Writer& write) {
        *write(m_text, m_text + sizeof m_text - 1) = '\0';
    }

    // Room for a sign, the digits of the largest double, a point, six decimals and a terminating
    // NUL.
    char m_text[std::numeric_limits<double>::max_exponent10 + 11];
};

#endif
