#ifndef TOOLS_COMMON_PRINT_HPP
#define TOOLS_COMMON_PRINT_HPP

#include <cstdio>
#include <string>

namespace tools {

// What a tool prints to a stream of stdio. Why the first write to the standard output failed is
// remembered for the end, by which errno and the stream would have forgotten it.
//
// Threads: any thread may print.

/// Writes data, as it is.
void print(std::FILE* out, const std::string& bytes);
/// Writes a text for people, in the encoding of the locale, as localText() has it.
void printText(std::FILE* out, const std::string& utf8);
/// @return false if any of what was written to the stream is lost
bool flush(std::FILE* out);
/// Flushes the standard output. @return an errno; 0 if all that was printed there is written
int finishOutput();

}  // namespace tools

#endif
