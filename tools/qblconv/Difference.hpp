#ifndef TOOLS_QBLCONV_DIFFERENCE_HPP
#define TOOLS_QBLCONV_DIFFERENCE_HPP

#include <cstdint>
#include <string>

#include "tools/qblconv/Reading.hpp"

namespace conv {

/// The first place at which two encodings give different texts for the same bytes.
struct Difference {
    std::int64_t line = 0;  // from 1; 0 if the texts are the same
    /// The text around the place in that line, in UTF-8; long lines are cut at both ends.
    std::string first, second;

    bool isFound() const { return line > 0; }
};

/// Compares the texts in two encodings.
/// Requires: strict converters; all bytes are valid in both encodings.
Difference findDifference(Passes& passes, const I18NConverter& first, const I18NConverter& second);

}  // namespace conv

#endif
