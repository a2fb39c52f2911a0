#ifndef I18N_CPP_STREAM_I18N_STREAM_MAPPINGS_HPP
#define I18N_CPP_STREAM_I18N_STREAM_MAPPINGS_HPP

#include <cstdint>
#include <memory>
#include <vector>

#include "i18n/cpp/i18n_converter.hpp"

/// Tells how an encoding converts single characters. Uses a converter of its own to find out.
///
/// ICU converts some characters without asking a policy, although they do not survive a round trip.
/// ICU always applies the best fits of private-use characters, and ICU's converter to compound text
/// drops characters that the encoding lacks. Only decoding the bytes again shows either case.
class I18NStreamMappings {
public:
    /// @param converter  must outlive this object
    explicit I18NStreamMappings(const I18NConverter& converter);
    I18NStreamMappings(const I18NStreamMappings&) = delete;
    I18NStreamMappings& operator=(const I18NStreamMappings&) = delete;

    /// mayLose() returns true if some characters must be hidden from ICU. mayLoseAny() returns true
    /// if these may be any characters, not only private-use characters.
    bool mayLose() const { return m_bMayLose; }
    bool mayLoseAny() const { return m_bMayLoseAny; }
    /// Returns the first unit that may begin a character to hide, or the end.
    const char16_t* firstSuspect(const char16_t* text, const char16_t* end) const;
    /// Returns true if ICU converts a character without asking a policy although it does not
    /// survive a round trip.
    bool isLost(const char16_t* units, int length);
    /// Returns true if the character has a best fit.
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
