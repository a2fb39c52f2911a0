#ifndef TOOLS_QBLCONV_TRANSLITERATION_HPP
#define TOOLS_QBLCONV_TRANSLITERATION_HPP

#include <memory>
#include <string>
#include <unordered_map>

#include "i18n/cpp/i18n_converter.hpp"

namespace conv {

/// Finds replacements for characters that an encoding lacks, with ICU's transliterators: similar
/// letters, digits and punctuation of ASCII (Latin-ASCII), the characters of which a character is a
/// variant (NFKC), and Latin letters for Greek, Cyrillic, Armenian, Georgian and Hangul
/// (Any-Latin). Transliterates each character separately, so that the result does not depend on
/// where a text is split. Scripts whose characters depend on their neighbours have no
/// transliteration.
///
/// Threads: one at a time for each object.
class Transliteration {
public:
    /// @param to  the encoding of the output
    explicit Transliteration(const I18NConverter& to);
    ~Transliteration();
    Transliteration(const Transliteration&) = delete;
    Transliteration& operator=(const Transliteration&) = delete;

    /// @return a text of at most 8 code units that the encoding can represent; empty for combining
    ///     marks, which are omitted; null if there is no replacement. Valid until the object is
    ///     destroyed
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
