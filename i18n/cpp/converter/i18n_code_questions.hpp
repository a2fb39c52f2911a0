#ifndef I18N_CPP_CONVERTER_I18N_CODE_QUESTIONS_HPP
#define I18N_CPP_CONVERTER_I18N_CODE_QUESTIONS_HPP

#include <unicode/ucnv.h>

#include <cstdint>
#include <memory>

#include "i18n/cpp/converter/i18n_plain_ascii.hpp"

/// What the bytes of a character mean at the start of a text.
struct I18NSequence {
    enum class Kind {
        kUnit,   ///< a character of one UTF-16 unit
        kLead,   ///< the beginning of longer sequences
        kOther,  ///< anything else: ICU has to convert the text from here on
        kAgain   ///< ICU has no memory for the answer
    };
    Kind kind;
    char16_t unit;
};

/// Asks an ICU converter about single characters. An answer that names a character or its bytes
/// holds anywhere between two characters of a text: ICU converts the character alone, holds nothing
/// back, and is in its initial state again.
///
/// Threads: one at a time for each object.
class I18NCodeQuestions {
public:
    /// Returns true if a character always has the same bytes: the encoding has no shift states, and
    /// ICU converts it by tables of single characters, perhaps with a few combinations.
    static bool mayAsk(const UConverter* icu);

    /// @param icu  mayAsk() is true; the questions are for another converter with its name
    /// @throws QBLOutOfMemoryError
    explicit I18NCodeQuestions(const UConverter* icu);

    /// Asks about each ASCII character in both directions.
    /// @return false if the encoding has too few of them
    bool findPlainASCII(I18NPlainASCII& plain);
    /// @param length  1 to kMostBytes
    I18NSequence decode(const char* bytes, int length);
    /// Without fallback, the bytes must also decode to the unit.
    /// @param unit  not a surrogate
    /// @param length  receives the number of bytes; 0 if ICU has to convert the unit, below 0 if it
    ///     has no memory for the answer
    void encode(char16_t unit, char (&bytes)[4], int& length);

    static constexpr int kMostBytes = 4;

private:
    struct Close {
        void operator()(UConverter* icu) const { ucnv_close(icu); }
    };
    std::unique_ptr<UConverter, Close> m_pICU;
    int m_iMaxBytes;
};

#endif
