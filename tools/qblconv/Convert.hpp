#ifndef TOOLS_QBLCONV_CONVERT_HPP
#define TOOLS_QBLCONV_CONVERT_HPP

#include <string>
#include <vector>

#include "i18n/cpp/i18n_converter.hpp"
#include "i18n/cpp/i18n_text_stream.hpp"
#include "tools/qblconv/Findings.hpp"
#include "tools/qblconv/Input.hpp"
#include "tools/qblconv/Output.hpp"

namespace conv {

/// What a conversion works with; one for each thread.
struct Setup {
    const I18NConverter* from;
    const I18NConverter* fromSwapped;  // in the other byte order; null if that is known
    const std::string& swappedMark;    // which that one begins with
    const I18NConverter* to;           // null only reads
    I18NByteOrderMark mark;
    Options::LineEnd lineEnd;
    bool verifies;  // that the output converts back to the input
    std::vector<char>& block;
    Progress& progress;
};

/// Converts an input from where it stands to its end, and says what is wrong in the report; only
/// reads it without an output.
/// @param name  of the input, as shown
/// @param outputName  the same of the output
/// @param encoding  receives what the input turned out to be in; may be null
/// @return whether all of it was converted, be it with replacements; not if the user broke it off
bool convertText(const Setup& setup, Input& input, const std::string& name, Output* output,
                 const std::string& outputName, Findings& findings, FileReport& report,
                 std::string* encoding = nullptr);

/// Whether an input is well-formed in an encoding from start to end. It is back at the start then.
/// @param strict  a converter that stops
/// @param mark  what it has to begin with; empty for nothing
/// @param error  receives an errno if it cannot be read, else 0
bool isValid(const I18NConverter& strict, const std::string& mark, Input& input,
             std::vector<char>& block, int& error);

/// Copies an input as it is.
bool copyText(const Setup& setup, Input& input, const std::string& name, Output& output,
              const std::string& outputName, FileReport& report);

}  // namespace conv

#endif
