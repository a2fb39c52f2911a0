#ifndef TOOLS_QBLCONV_ENCODINGS_HPP
#define TOOLS_QBLCONV_ENCODINGS_HPP

#include <memory>
#include <string>

#include "i18n/cpp/i18n_converter.hpp"
#include "tools/qblconv/Options.hpp"

namespace conv {

/// @return null, with a problem, for an encoding that there is not
std::unique_ptr<I18NConverter> openEncoding(const std::string& name, Problem& problem);

/// Sets what is done with text that cannot be converted.
void setPolicies(I18NConverter& converter, int input, int output);

/// The byte-order mark in an encoding: what can stand in front of any text in it. Empty if it has
/// none.
std::string markIn(const I18NConverter& converter);

/// Whether any bytes are a text in an encoding.
bool isAnyTextValid(const I18NConverter& converter);

/// Prints the encodings that have a pattern in any of their names, a line with all its names for
/// each. Case does not count, nor what is neither letter nor digit. @return false if there is none
bool listEncodings(const std::string& pattern);

}  // namespace conv

#endif
