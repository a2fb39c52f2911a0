#ifndef TOOLS_COMMON_BUILTINTEXTS_HPP
#define TOOLS_COMMON_BUILTINTEXTS_HPP

#include <cstddef>

namespace tools {

/// A message of a tool's English catalogue, in UTF-8.
struct BuiltInText {
    unsigned id;
    const char* text;
};

/// Sets the texts that the process uses for messages which the catalogue lacks.
/// @param texts  sorted by identifier; not copied
/// Requires: no message is being formatted.
void setBuiltInTexts(const BuiltInText* texts, std::size_t count);
/// Sets the texts of the program's own English catalogue. The build generates the source that
/// defines this function, one for each program.
void useBuiltInTexts();
/// @return null if there is no such text
const char* builtInText(unsigned id);

}  // namespace tools

#endif
