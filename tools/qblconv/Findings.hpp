#ifndef TOOLS_QBLCONV_FINDINGS_HPP
#define TOOLS_QBLCONV_FINDINGS_HPP

#include <string>
#include <vector>

#include "i18n/cpp/i18n_text_stream.hpp"
#include "tools/qblconv/Report.hpp"

namespace conv {

/// Collects what a text stream cannot convert, and says it in the user's language.
class Findings : public I18NTextStreamListener {
public:
    enum class Each { kCounted, kWarning, kError };
    /// Thrown out of the stream at the first character that the output's encoding lacks, of which
    /// a converter that stops would drop those that Unicode calls ignorable.
    struct Lacking {};

    /// @param name  of the file, as shown
    /// @param stops  whether to throw Lacking
    Findings(FileReport& report, std::string name, Each each, bool stops)
        : m_report(report), m_name(std::move(name)), m_each(each), m_bStops(stops) {}

    void unconvertible(const I18NUnconvertible& what) override;
    /// Says what has been found since the last time.
    void tell(const char* from, const char* to);
    /// Says, as an error, the one that ended the stream.
    void tellLast(const char* from, const char* to);
    /// Of which a code point that stands for bad input is none.
    std::int64_t count() const { return m_iCount; }
    /// Characters that became similar ones; not among the others.
    std::int64_t bestFits() const { return m_iBestFits; }

private:
    struct Place {
        std::int64_t line, column, offset;
        std::string bytes;  // in digits
        char32_t codePoint;
        bool isOutput, isCutOff, isBestFit;
    };
    void say(const Place& place, const char* from, const char* to);

    FileReport& m_report;
    const std::string m_name;
    const Each m_each;
    const bool m_bStops;
    std::vector<Place> m_places;  // of counted ones the last
    std::int64_t m_iCount = 0;
    std::int64_t m_iBestFits = 0;
    std::int64_t m_iBadInput = -1;  // where the last stands in the text
};

}  // namespace conv

#endif
