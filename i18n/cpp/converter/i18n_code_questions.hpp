#ifndef I18N_CPP_CONVERTER_I18N_CODE_QUESTIONS_HPP
#define I18N_CPP_CONVERTER_I18N_CODE_QUESTIONS_HPP

#include <unicode/ucnv.h>

#include <cstdint>
#include <memory>

#include "i18n/cpp/converter/i18n_plain_ascii.hpp"

/// The meaning of a sequence of bytes at the start of a text.
struct I18NSequence {
    enum class Kind {
        kUnit,   ///< a character of one UTF-16 unit
        kLead,   ///< the beginning of a longer sequence
        kOther,  ///< anything else; ICU must convert it
        kAgain   ///< ICU lacked memory; a later call may succeed
    };
    Kind kind;
    char16_t unit;
};

/// Asks an ICU converter how it converts single characters. If the answer is a character or its
/// bytes, it is valid at every place of a text where a character begins: ICU has converted the
/// character by itself, has kept nothing, and is in its initial state again.
///
/// Threads: one thread at a time may use an object.
class I18NCodeQuestions {
public:
    /// Returns true if a character always has the same bytes: the encoding has no shift states, and
    /// ICU converts it by tables of single characters and, for some encodings, of a few
    /// combinations.
    static bool mayAsk(const UConverter* icu);

    /// Opens another converter with the same name and the same setting for fallbacks.
    /// @param icu  a converter for which mayAsk() is true
    /// @throws QBLOutOfMemoryError
    explicit I18NCodeQuestions(const UConverter* icu);

    /// Finds the ASCII characters that ICU converts to their own bytes and back.
    /// @return false if too many ASCII characters are different
    bool findPlainASCII(I18NPlainASCII& plain);
    /// @param length  1 to kMostBytes
    I18NSequence decode(const char* bytes, int length);
    /// If the converter uses no fallbacks, the bytes must also decode to the unit.
    /// @param unit  not a surrogate
    /// @param length  receives the number of bytes; 0 if ICU must convert the unit, below 0 if ICU
    ///     lacked memory
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
