#ifndef QBLCORE_TYPES_INTERNAL_QBLFIELDWRITER_HPP
#define QBLCORE_TYPES_INTERNAL_QBLFIELDWRITER_HPP

#include <cstdint>

#include "QBLCore/Types/internal/QBLCharacters.hpp"

/// Writes a text field by field. The destructor writes the terminating NUL.
class QBLFieldWriter {
public:
    explicit QBLFieldWriter(char* text) : m_pNext(text) {}
    ~QBLFieldWriter() { *m_pNext = '\0'; }
    QBLFieldWriter(const QBLFieldWriter&) = delete;
    QBLFieldWriter& operator=(const QBLFieldWriter&) = delete;

    QBLFieldWriter& put(char c) {
        *m_pNext++ = c;
        return *this;
    }

    /// Writes a number with leading zeros up to `width` characters, including a minus sign, as
    /// "%0*lld" of printf(3) does.
    QBLFieldWriter& number(std::int64_t value, int width) {
        if (width == 2 && value >= 0 && value < 100)
            m_pNext = qblWritePair(m_pNext, static_cast<std::uint32_t>(value));
        else if (width == 4 && value >= 0 && value < 10000)
            m_pNext = qblWriteFour(m_pNext, static_cast<std::uint32_t>(value));
        else
            any(value, width);
        return *this;
    }

    /// Writes a time; omits the seconds if both the seconds and the fraction are 0.
    void time(std::int64_t hours, int minutes, int seconds, int fraction) {
        number(hours, 2).put(':').number(minutes, 2);
        if (seconds != 0 || fraction != 0) put(':').number(seconds, 2);
        if (fraction > 0) put('.').any(fraction, 9);
    }

private:
    QBLFieldWriter& any(std::int64_t value, int width);

    char* m_pNext;
};

#endif
