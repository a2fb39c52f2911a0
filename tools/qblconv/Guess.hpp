#ifndef TOOLS_QBLCONV_GUESS_HPP
#define TOOLS_QBLCONV_GUESS_HPP

#include <string>
#include <vector>

#include "tools/qblconv/Detect.hpp"

namespace conv {

/// How much the list of encodings says about them.
enum class GuessDetail { kNames, kDifferences };

/// Lists the encodings that an input fits, the best first, as results of its report, and where
/// their texts first differ from that in the best.
/// @param name  of the input, as shown
void guess(Detector& detector, Input& input, const std::string& name, std::vector<char>& block,
           GuessDetail detail, FileReport& report);

}  // namespace conv

#endif
