#ifndef TOOLS_QBLCONV_GUESS_HPP
#define TOOLS_QBLCONV_GUESS_HPP

#include <string>
#include <vector>

#include "tools/qblconv/Detect.hpp"

namespace conv {

/// The amount of detail in the list of encodings.
enum class GuessDetail { kNames, kDifferences };

/// Adds the encodings that fit an input to the report as results, the best first. With
/// kDifferences, also shows the first place where the text in each other encoding differs from the
/// text in the best encoding.
/// @param name  the input's name, as shown() returns it
void guess(Detector& detector, Input& input, const std::string& name, std::vector<char>& block,
           GuessDetail detail, FileReport& report);

}  // namespace conv

#endif
