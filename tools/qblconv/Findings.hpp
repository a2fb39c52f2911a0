#ifndef TOOLS_QBLCONV_FINDINGS_HPP
#define TOOLS_QBLCONV_FINDINGS_HPP

#include <string>
#include <vector>

#include "i18n/cpp/i18n_text_stream.hpp"
#include "tools/qblconv/Report.hpp"
#include "tools/qblconv/Transliteration.hpp"

namespace conv {

/// Collects the problems that a text stream finds and reports them in the user's language.
class Findings : public I18NTextStreamListener {
public:
    enum class Each { kCounted, kWarning, kError };
    /// Thrown out of the stream at the first character that the output's encoding lacks. A
    /// converter with I18N_STOP would silently drop such a character if it is default-ignorable.
    struct Lacking {};
    /// The treatment of characters that the output's encoding lacks.
    struct Treatment {
        bool stops;                        // throws Lacking
        bool isMarked;                     // writes a question mark
        Transliteration* transliteration;  // tried first; may be null
        // Names of the policies on the command line.
        const char* inputPolicy;
        const char* outputPolicy;
    };

    /// @param name  the file's name, as shown() returns it
    Findings(FileReport& report, std::string name, Each each, const Treatment& treatment)
        : m_report(report), m_name(std::move(name)), m_each(each), m_treatment(treatment) {}

    /// Sets the stream that receives the replacements.
    void attach(I18NTextStream& stream) { m_pStream = &stream; }
    void unconvertible(const I18NUnconvertible& what) override;
    /// Reports the problems found since the last call.
    void tell(const char* from, const char* to);
    /// Reports the problem that ended the stream as an error.
    void tellLast(const char* from, const char* to);
    /// The number of replaced or omitted sequences and characters. Malformed input counts once,
    /// even if the output's encoding also lacks the code point that replaces it.
    std::int64_t count() const { return m_iCount; }
    /// The numbers of characters that were replaced by similar characters, and of transliterated
    /// characters. count() does not include them.
    std::int64_t bestFits() const { return m_iBestFits; }
    std::int64_t transliterated() const { return m_iTransliterated; }

private:
    struct Place {
        std::int64_t line, column, offset;
        std::string bytes;  // in hexadecimal
        char32_t codePoint;
        Finding::Kind kind;
        std::string replacement;  // the transliteration
    };
    bool transliterate(const I18NUnconvertible& what, std::string& replacement);
    void say(const Place& place, const char* from, const char* to);

    FileReport& m_report;
    const std::string m_name;
    const Each m_each;
    const Treatment m_treatment;
    I18NTextStream* m_pStream = nullptr;
    std::vector<Place> m_places;  // with Each::kCounted only the last place
    std::int64_t m_iCount = 0;
    std::int64_t m_iBestFits = 0;
    std::int64_t m_iTransliterated = 0;
    std::int64_t m_iBadInput = -1;  // position of the last malformed input in the text
};

/// Bytes in hexadecimal, separated by spaces.
std::string bytesInDigits(const char* bytes, std::size_t count);

}  // namespace conv

#endif
