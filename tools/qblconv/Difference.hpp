#ifndef TOOLS_QBLCONV_DIFFERENCE_HPP
#define TOOLS_QBLCONV_DIFFERENCE_HPP

#include <cstdint>
#include <string>

#include "tools/qblconv/Reading.hpp"

namespace conv {

/// Where two encodings first give different texts for the same bytes.
struct Difference {
    std::int64_t line = 0;  // from 1; 0 if the texts are the same
    /// What stands around it in that line, in UTF-8; shortened at either end if it is long.
    std::string first, second;

    bool isFound() const { return line > 0; }
};

/// Compares the texts.
/// Requires: strict converters, in both of which all bytes are valid.
Difference findDifference(Passes& passes, const I18NConverter& first, const I18NConverter& second);

}  // namespace conv

#endif
