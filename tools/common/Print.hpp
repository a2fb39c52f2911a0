#ifndef TOOLS_COMMON_PRINT_HPP
#define TOOLS_COMMON_PRINT_HPP

#include <cstdio>
#include <string>

namespace tools {

// Printing to streams of stdio. The reason of the first write to the standard output that failed is
// kept for the end of the program; the stream only knows that there was one.
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
