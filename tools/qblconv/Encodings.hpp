#ifndef TOOLS_QBLCONV_ENCODINGS_HPP
#define TOOLS_QBLCONV_ENCODINGS_HPP

#include <memory>
#include <string>

#include "i18n/cpp/i18n_converter.hpp"
#include "tools/qblconv/Options.hpp"

namespace conv {

/// @return null, with a problem, for an unknown encoding
std::unique_ptr<I18NConverter> openEncoding(const std::string& name, Problem& problem);

/// Sets the policies for malformed input and for characters that the output lacks.
void setPolicies(I18NConverter& converter, int input, int output);

/// The byte-order mark in an encoding that allows one at the start of any text; empty for other
/// encodings.
std::string markIn(const I18NConverter& converter);

/// Returns true if every sequence of bytes is valid in an encoding.
bool isAnyTextValid(const I18NConverter& converter);

/// Prints the encodings with a name that matches a pattern. Each line has all names of one
/// encoding. Compares only letters and digits, and ignores case.
/// @return false if no encoding matches
bool listEncodings(const std::string& pattern);

}  // namespace conv

#endif
