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

/// The converters, options and buffer of a conversion; one per thread.
struct Setup {
    const I18NConverter* from;
    const I18NConverter* fromSwapped;  // for the other byte order; null if the order is known
    const std::string& swappedMark;    // byte-order mark for fromSwapped
    const I18NConverter* to;           // null to read only
    I18NByteOrderMark mark;
    Options::LineEnd lineEnd;
    bool verifies;  // checks that the output converts back to the input
    std::vector<char>& block;
    Progress& progress;
};

/// Converts an input from its current position to its end, and reports problems. Without an output,
/// it only reads the input.
/// @param name  the input's name, as shown() returns it
/// @param outputName  the output's name, as shown() returns it
/// @param encoding  receives the detected encoding of the input; may be null
/// @return true if the whole input was converted, even with replacements; false after an error or
///     an interrupt
bool convertText(const Setup& setup, Input& input, const std::string& name, Output* output,
                 const std::string& outputName, Findings& findings, FileReport& report,
                 std::string* encoding = nullptr);

/// Returns true if the whole input is well-formed in an encoding. Rewinds the input.
/// @param strict  a converter with the policy I18N_STOP
/// @param mark  bytes that the input must begin with; may be empty
/// @param error  receives an errno if the input cannot be read, else 0
bool isValid(const I18NConverter& strict, const std::string& mark, Input& input,
             std::vector<char>& block, int& error);

/// Copies an input unchanged.
bool copyText(const Setup& setup, Input& input, const std::string& name, Output& output,
              const std::string& outputName, FileReport& report);

}  // namespace conv

#endif
