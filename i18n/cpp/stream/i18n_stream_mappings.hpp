#ifndef I18N_CPP_STREAM_I18N_STREAM_MAPPINGS_HPP
#define I18N_CPP_STREAM_I18N_STREAM_MAPPINGS_HPP

#include <cstdint>
#include <memory>
#include <vector>

#include "i18n/cpp/i18n_converter.hpp"

/// What becomes of single characters in an encoding, found out with a converter of its own.
///
/// ICU applies some mappings that do not lead back whatever it is told: those of private-use
/// characters, for which it has no policy asked. And its converter to compound text drops what
/// that encoding lacks. Nothing but reading the bytes again shows either.
class I18NStreamMappings {
public:
    /// @param converter  must outlive this
    explicit I18NStreamMappings(const I18NConverter& converter);
    I18NStreamMappings(const I18NStreamMappings&) = delete;
    I18NStreamMappings& operator=(const I18NStreamMappings&) = delete;

    /// Whether ICU has to be kept from characters, and from any but those of private use.
    bool mayLose() const { return m_bMayLose; }
    bool mayLoseAny() const { return m_bMayLoseAny; }
    /// The first unit that may begin a character that does not come back, or the end.
    const char16_t* firstSuspect(const char16_t* text, const char16_t* end) const;
    /// Whether ICU converts a character without a policy although it does not come back.
    bool isLost(const char16_t* units, int length);
    /// Whether there is a best fit for it.
    bool hasFit(const char16_t* units, int length);

private:
    struct Answer {
        bool isKnown = false;
        bool isLost = false;
    };
    UConverter* scratch();
    bool findLost(const char16_t* units, int length);
    bool isConvertible(const char16_t* units, int length, bool fallback);

    const I18NConverter& m_converter;
    std::unique_ptr<I18NConverter> m_pScratch;
    std::vector<Answer> m_answers;  // by unit
    bool m_bMayLose;
    bool m_bMayLoseAny;
};

#endif
