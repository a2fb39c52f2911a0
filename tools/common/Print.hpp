#ifndef TOOLS_COMMON_PRINT_HPP
#define TOOLS_COMMON_PRINT_HPP

#include <cstdio>
#include <string>

namespace tools {

// Prints to stdio streams. Keeps the reason of the first failed write to the standard output for
// the end of the program, because the stream keeps only a flag.
//
// Threads: any thread may print.

/// Writes bytes unchanged.
void print(std::FILE* out, const std::string& bytes);
/// Writes a text converted by localText().
void printText(std::FILE* out, const std::string& utf8);
/// @return false if any output to the stream is lost
bool flush(std::FILE* out);
/// Flushes the standard output.
/// @return an errno; 0 if all output was written
int finishOutput();

}  // namespace tools

#endif
