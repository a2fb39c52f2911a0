#ifndef TOOLS_QBLCONV_DETECT_HPP
#define TOOLS_QBLCONV_DETECT_HPP

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "i18n/cpp/i18n_converter.hpp"
#include "tools/qblconv/Proposals.hpp"
#include "tools/qblconv/Reading.hpp"
#include "tools/qblconv/Report.hpp"

namespace conv {

/// The arguments of -f that request detection, for messages.
constexpr char kAutoChoices[] = "auto auto:LIST";
/// Returns true if the argument of -f requests detection: "auto" or "auto:LIST". No encoding has
/// such a name.
bool isAuto(const std::string& from);

/// The names in "auto:LIST"; empty for "auto".
std::vector<std::string> candidatesOf(const std::string& from);

/// Returns true if the list of an "auto:LIST" is not empty and names only known encodings.
bool checkAuto(const std::string& from, Problem& problem);

/// An encoding in which a whole text is valid.
struct Fit {
    std::string name;
    int confidence = -1;                  // of ICU's detector, in percent; below 0 if unknown
    bool isOdd = false;                   // its letters look like letters of another script
    std::vector<std::string> alike = {};  // other encodings that give the same text
};

/// Detects the encoding of a text. The manual describes how.
///
/// Threads: one at a time for each object.
class Detector {
public:
    /// @param from  an argument for isAuto(); any other text counts as "auto"
    /// @param block  buffer for reading inputs
    Detector(const std::string& from, std::vector<char>& block);
    Detector(const Detector&) = delete;
    Detector& operator=(const Detector&) = delete;

    /// Chooses the encoding of an input and rewinds the input.
    /// @param name  the input's name, as shown() returns it
    /// @param isGuessAllowed  whether to choose an encoding if another encoding also fits
    /// @return null, with the reason in the report, if no encoding is clear or the input cannot be
    ///     read; also null after an interrupt
    const I18NConverter* choose(Input& input, const std::string& name, bool isGuessAllowed,
                                FileReport& report);

    /// All encodings that fit, the best first; empty if the input cannot be read.
    std::vector<Fit> fits(Passes& passes) { return fits(passes, false); }
    /// A converter with the policy I18N_STOP for a known encoding.
    const I18NConverter& strict(const std::string& name);
    /// The probable encoding of the last text if the text is malformed in it, else empty: UTF-8 if
    /// the text is mostly valid UTF-8; else an encoding that ICU considers more probable than the
    /// best encoding that fits.
    const std::string& nearly() const { return m_nearly; }
    /// Reports why no encoding was found.
    void sayNone(const std::string& name, FileReport& report) const;

private:
    std::vector<Fit> fits(Passes& passes, bool isFirstEnough);
    std::vector<Fit> fitsOfList(Passes& passes, bool isFirstEnough);
    std::vector<Fit> fitsOf(Passes& passes, const std::vector<Proposal>& proposals,
                            const TextLook* utf8);
    void add(Passes& passes, const Fit& fit, std::vector<Fit>& fits);
    bool isValid(Passes& passes, const std::string& encoding);
    /// Returns true if all bytes are valid and the result looks like a text.
    bool isText(Passes& passes, const std::string& encoding, TextLook& look);
    std::string encodingOfMark(Passes& passes);
    void findNearly(const std::vector<Proposal>& proposals, const std::vector<Fit>& found);

    const std::vector<std::string> m_names;  // candidates; empty for all that ICU detects
    std::vector<char>& m_block;
    std::map<std::string, std::unique_ptr<I18NConverter>> m_converters;
    std::string m_nearly;
};

}  // namespace conv

#endif
