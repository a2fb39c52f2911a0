#ifndef QBLCORE_TYPES_INTERNAL_QBLFIELDREADER_HPP
#define QBLCORE_TYPES_INTERNAL_QBLFIELDREADER_HPP

#include <cstdint>
#include <cstring>

#include "QBLCore/Types/QBLTypeCast.hpp"
#include "QBLCore/Types/internal/QBLCharacters.hpp"

/// Reads a text field by field, from its beginning. A take operation that does not find its field
/// returns false and does not move.
class QBLFieldReader {
public:
    /// @param text  null is an empty text
    explicit QBLFieldReader(const char* text) : m_pBegin(text != nullptr ? text : "") {
        m_pNext = m_pBegin;
    }

    QBLFieldReader& skipBlanks() {
        while (qblIsBlank(*m_pNext)) ++m_pNext;
        return *this;
    }
    bool atEnd() const { return *m_pNext == '\0'; }
    bool onlyBlanksLeft() { return skipBlanks().atEnd(); }

    bool take(char c) {
        if (*m_pNext != c) return false;
        ++m_pNext;
        return true;
    }

    /// Takes exactly two digits; a third digit may follow.
    bool takePair(int& value) {
        const auto tens = static_cast<unsigned char>(m_pNext[0] - '0');
        if (tens > 9) return false;
        const auto ones = static_cast<unsigned char>(m_pNext[1] - '0');
        if (ones > 9) return false;
        value = tens * 10 + ones;
        m_pNext += 2;
        return true;
    }

    /// Takes all digits, at least one.
    /// @param limit  at most 2^63
    /// @param value  receives the number, or some number above the limit if the text exceeds the
    ///     limit
    bool takeNumber(std::uint64_t& value, std::uint64_t limit) {
        if (!qblIsDigit(*m_pNext)) return false;
        for (value = 0; qblIsDigit(*m_pNext); ++m_pNext) {
            const auto digit = static_cast<unsigned char>(*m_pNext - '0');
            if (value > limit / 10)
                value = limit + 1;
            else
                value = value * 10 + digit;
        }
        return true;
    }

    /// Takes one to nine digits after a decimal point, as nanoseconds.
    bool takeNanoseconds(int& value) {
        if (!qblIsDigit(*m_pNext)) return false;
        int count = 0;
        for (value = 0; qblIsDigit(*m_pNext) && count < 9; ++count)
            value = value * 10 + (*m_pNext++ - '0');
        for (; count < 9; ++count) value *= 10;
        return true;
    }

    /// Returns the code for a text that does not have the expected form: badCharacter or badForm.
    /// @param characters  the characters that the expected form may contain besides digits and
    ///     white space
    long fault(const char* characters) const {
        for (const char* at = m_pBegin; *at != '\0'; ++at)
            if (!qblIsDigit(*at) && !qblIsBlank(*at) && std::strchr(characters, *at) == nullptr)
                return QBLTypeCast::badCharacter;
        return QBLTypeCast::badForm;
    }

private:
    const char* m_pBegin;
    const char* m_pNext;
};

struct QBLTimeFields {
    int hour = 0, minute = 0, second = 0, fraction = 0;

    /// Takes MM[:SS[.F+]], which follows the hours and their colon.
    bool takeRest(QBLFieldReader& text);
    /// Takes HH:MM[:SS[.F+]].
    bool take(QBLFieldReader& text) {
        return text.takePair(hour) && text.take(':') && takeRest(text);
    }
    bool valid() const { return hour < 24 && minute < 60 && second < 60; }
};

#endif
