#ifndef TOOLS_COMMON_BUILTINTEXTS_HPP
#define TOOLS_COMMON_BUILTINTEXTS_HPP

#include <cstddef>

namespace tools {

/// A message of a tool's English catalogue, in UTF-8.
struct BuiltInText {
    unsigned id;
    const char* text;
};

/// Gives the process the texts that messages have where the catalogue has none.
/// @param texts  sorted by identifier; not copied
/// Requires: no message is being formatted.
void setBuiltInTexts(const BuiltInText* texts, std::size_t count);
/// The same with the texts of the program's own English catalogue. The source that defines it is
/// made by the build, for each program.
void useBuiltInTexts();
/// @return null if there is no such text
const char* builtInText(unsigned id);

}  // namespace tools

#endif
