#ifndef TOOLS_QBLCONV_FINDINGS_HPP
#define TOOLS_QBLCONV_FINDINGS_HPP

#include <string>
#include <vector>

#include "i18n/cpp/i18n_text_stream.hpp"
#include "tools/qblconv/Report.hpp"
#include "tools/qblconv/Transliteration.hpp"

namespace conv {

/// Collects what a text stream cannot convert, and says it in the user's language.
class Findings : public I18NTextStreamListener {
public:
    enum class Each { kCounted, kWarning, kError };
    /// Thrown out of the stream at the first character that the output's encoding lacks, of which
    /// a converter that stops would drop those that Unicode calls ignorable.
    struct Lacking {};
    /// What happens to characters that the output's encoding lacks.
    struct Treatment {
        bool stops;                        // Lacking is thrown
        bool isMarked;                     // a question mark takes the place
        Transliteration* transliteration;  // asked first; may be null
        // As the command line calls them.
        const char* inputPolicy;
        const char* outputPolicy;
    };

    /// @param name  of the file, as shown
    Findings(FileReport& report, std::string name, Each each, const Treatment& treatment)
        : m_report(report), m_name(std::move(name)), m_each(each), m_treatment(treatment) {}

    /// Names the stream, which is told what to write in place of characters.
    void attach(I18NTextStream& stream) { m_pStream = &stream; }
    void unconvertible(const I18NUnconvertible& what) override;
    /// Says what has been found since the last time.
    void tell(const char* from, const char* to);
    /// Says, as an error, the one that ended the stream.
    void tellLast(const char* from, const char* to);
    /// What was replaced or left out. A code point that stands for bad input does not count.
    std::int64_t count() const { return m_iCount; }
    /// Characters that became similar ones, and those that were transliterated; neither is among
    /// the others.
    std::int64_t bestFits() const { return m_iBestFits; }
    std::int64_t transliterated() const { return m_iTransliterated; }

private:
    struct Place {
        std::int64_t line, column, offset;
        std::string bytes;  // in digits
        char32_t codePoint;
        Finding::Kind kind;
        std::string replacement;  // a transliteration
    };
    bool transliterate(const I18NUnconvertible& what, std::string& replacement);
    void say(const Place& place, const char* from, const char* to);

    FileReport& m_report;
    const std::string m_name;
    const Each m_each;
    const Treatment m_treatment;
    I18NTextStream* m_pStream = nullptr;
    std::vector<Place> m_places;  // of counted ones the last
    std::int64_t m_iCount = 0;
    std::int64_t m_iBestFits = 0;
    std::int64_t m_iTransliterated = 0;
    std::int64_t m_iBadInput = -1;  // where the last stands in the text
};

/// Bytes as digits, with spaces between them.
std::string bytesInDigits(const char* bytes, std::size_t count);

}  // namespace conv

#endif
