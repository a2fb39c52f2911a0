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

/// Whether the argument of -f asks for detection: "auto" or "auto:LIST". No encoding has such a
/// name.
bool isAuto(const std::string& from);

/// The names in "auto:LIST"; none for "auto".
std::vector<std::string> candidatesOf(const std::string& from);

/// Whether the list of an "auto:LIST" has a name, and all its names are those of encodings.
bool checkAuto(const std::string& from, Problem& problem);

/// An encoding that a whole text fits.
struct Fit {
    std::string name;
    int confidence = -1;                  // of ICU's detector, in percent; below 0 without one
    bool isOdd = false;                   // its letters look like those of another script
    std::vector<std::string> alike = {};  // others, in which the text is the same
};

/// Finds out what encoding a text is in. The manual describes the choice.
///
/// Threads: one at a time for each object.
class Detector {
public:
    /// @param from  as of isAuto(); anything else is "auto"
    /// @param block  what inputs are read into
    Detector(const std::string& from, std::vector<char>& block);
    Detector(const Detector&) = delete;
    Detector& operator=(const Detector&) = delete;

    /// The encoding of an input, which is back at its start then.
    /// @param name  of the input, as shown
    /// @param isGuessAllowed  whether an encoding may be chosen while another one fits
    /// @return null, with the reason in the report, if there is none that is clear, or if the
    ///     input cannot be read; also if the work is to end
    const I18NConverter* choose(Input& input, const std::string& name, bool isGuessAllowed,
                                FileReport& report);

    /// All that fit, the best first; none if the input cannot be read.
    std::vector<Fit> fits(Passes& passes) { return fits(passes, false); }
    /// A converter that stops, for an encoding that there is.
    const I18NConverter& strict(const std::string& name);
    /// What the last text would have been more probably in than in all that it fits, if it were
    /// not malformed there; else empty.
    const std::string& nearly() const { return m_nearly; }
    /// Says why a text has no encoding.
    void sayNone(const std::string& name, FileReport& report) const;

private:
    std::vector<Fit> fits(Passes& passes, bool isFirstEnough);
    std::vector<Fit> fitsOfList(Passes& passes, bool isFirstEnough);
    std::vector<Fit> fitsOf(Passes& passes, const std::vector<Proposal>& proposals,
                            const TextLook* utf8);
    void add(Passes& passes, const Fit& fit, std::vector<Fit>& fits);
    bool isValid(Passes& passes, const std::string& encoding);
    /// Whether all bytes are valid, and their text looks like one.
    bool isText(Passes& passes, const std::string& encoding, TextLook& look);
    std::string encodingOfMark(Passes& passes);
    void findNearly(const std::vector<Proposal>& proposals, const std::vector<Fit>& found);

    const std::vector<std::string> m_names;  // that are considered; empty for those that ICU knows
    std::vector<char>& m_block;
    std::map<std::string, std::unique_ptr<I18NConverter>> m_converters;
    std::string m_nearly;
};

}  // namespace conv

#endif
