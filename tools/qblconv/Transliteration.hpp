#ifndef TOOLS_QBLCONV_TRANSLITERATION_HPP
#define TOOLS_QBLCONV_TRANSLITERATION_HPP

#include <memory>
#include <string>
#include <unordered_map>

#include "i18n/cpp/i18n_converter.hpp"

namespace conv {

/// What to write for characters that an encoding lacks, by ICU's transliterators: the letters,
/// digits and punctuation of ASCII that look or sound alike (Latin-ASCII), the characters that one
/// is a variant of (NFKC), and Latin letters for Greek, Cyrillic, Armenian, Georgian and Hangul
/// (Any-Latin). Each character stands for itself, so that the result does not depend on where a
/// text is cut; scripts whose characters need their neighbours have no transliteration.
///
/// Threads: one at a time for each object.
class Transliteration {
public:
    /// @param to  the encoding of the texts
    explicit Transliteration(const I18NConverter& to);
    ~Transliteration();
    Transliteration(const Transliteration&) = delete;
    Transliteration& operator=(const Transliteration&) = delete;

    /// @return a text of at most 8 code units, all of which the encoding has; empty for combining
    ///     marks, which are left out; null if there is none. Valid until the object is destroyed
    const std::u16string* of(char32_t codePoint);

private:
    struct Transliterators;
    struct Result {
        bool isKnown;
        std::u16string text;
    };

    Result find(char32_t codePoint);
    bool hasAll(const std::u16string& text) const;

    I18NConverter m_to;
    std::unique_ptr<Transliterators> m_pTransliterators;  // null until the first character
    std::unordered_map<char32_t, Result> m_results;
};

}  // namespace conv

#endif
